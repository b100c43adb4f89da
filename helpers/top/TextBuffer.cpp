#include "top/TextBuffer.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pulsebar::top {

namespace {

bool beginsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

} // namespace

TextBuffer &TextBuffer::add(std::string_view text)
{
    m_text.append(text);
    return *this;
}

TextBuffer &TextBuffer::add(std::uint64_t number)
{
    return padded(number, 1);
}

TextBuffer &TextBuffer::padded(std::uint64_t number, unsigned digits)
{
    std::array<char, 24> space{};
    const auto result = std::to_chars(space.data(), space.data() + space.size(), number);
    const auto length = static_cast<std::size_t>(result.ptr - space.data());
    if (length < digits)
        m_text.append(digits - length, '0');
    m_text.append(space.data(), length);
    return *this;
}

TextBuffer &TextBuffer::decimal(std::uint64_t scaled, unsigned decimals)
{
    std::uint64_t unit = 1;
    for (unsigned i = 0; i < decimals; ++i)
        unit *= 10;
    return add(scaled / unit).add(".").padded(scaled % unit, decimals);
}

TextBuffer &TextBuffer::padTo(std::size_t start, unsigned width)
{
    const auto characters = static_cast<std::size_t>(std::count_if(
        m_text.begin() + static_cast<std::ptrdiff_t>(start), m_text.end(), beginsCharacter));
    m_text.append(characters < width ? width - characters + 1 : 1, ' ');
    return *this;
}

void TextBuffer::trimEnd()
{
    while (m_text.ends_with(' '))
        m_text.pop_back();
}

} // namespace pulsebar::top
