#include "common/Utf8.h"

#include <array>

namespace pulsebar {

namespace {

struct Lead
{
    std::size_t length;
    char32_t bits;
    char32_t smallest; ///< below it the sequence is overlong
};

Lead leadOf(unsigned char byte)
{
    if (byte < 0x80U)
        return {1, byte, 0};
    if (byte >= 0xC0U && byte < 0xE0U)
        return {2, byte & 0x1FU, 0x80};
    if (byte >= 0xE0U && byte < 0xF0U)
        return {3, byte & 0x0FU, 0x800};
    if (byte >= 0xF0U && byte < 0xF8U)
        return {4, byte & 0x07U, 0x10000};
    return {0, 0, 0};
}

bool isScalarValue(char32_t c)
{
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

char tail(char32_t c, unsigned shift)
{
    return static_cast<char>(0x80U | ((c >> shift) & 0x3FU));
}

} // namespace

char32_t Utf8Reader::next()
{
    const auto lead = leadOf(static_cast<unsigned char>(m_rest.front()));
    auto c = lead.bits;
    bool valid = lead.length > 0 && lead.length <= m_rest.size();
    for (std::size_t i = 1; valid && i < lead.length; ++i) {
        const auto byte = static_cast<unsigned char>(m_rest[i]);
        valid = (byte & 0xC0U) == 0x80U;
        c = (c << 6U) | (byte & 0x3FU);
    }
    if (!valid || c < lead.smallest || !isScalarValue(c)) {
        m_rest.remove_prefix(1);
        return replacementCharacter;
    }
    m_rest.remove_prefix(lead.length);
    return c;
}

void appendUtf8(std::string &bytes, char32_t c)
{
    if (c < 0x80) {
        bytes.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        bytes.push_back(static_cast<char>(0xC0U | (c >> 6U)));
        bytes.push_back(tail(c, 0));
    } else if (c < 0x10000) {
        bytes.push_back(static_cast<char>(0xE0U | (c >> 12U)));
        bytes.push_back(tail(c, 6));
        bytes.push_back(tail(c, 0));
    } else {
        bytes.push_back(static_cast<char>(0xF0U | (c >> 18U)));
        bytes.push_back(tail(c, 12));
        bytes.push_back(tail(c, 6));
        bytes.push_back(tail(c, 0));
    }
}

} // namespace pulsebar
