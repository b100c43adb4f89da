#include "platform/linux_/low/hardware_text.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace pulsebar {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::int64_t> factorOf(std::string_view unit)
{
    if (unit.empty())
        return 1;
    if (unit == "K")
        return 1LL << 10;
    if (unit == "M")
        return 1LL << 20;
    if (unit == "G")
        return 1LL << 30;
    return std::nullopt;
}

std::optional<std::int64_t> product(std::uint64_t value, std::int64_t factor)
{
    if (value > static_cast<std::uint64_t>(largest / factor))
        return std::nullopt;
    return static_cast<std::int64_t>(value) * factor;
}

/// Length of the well-formed UTF-8 sequence at the start of `text`; 0 when it is malformed.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80)
            return 0;
    }
    // Overlong forms, surrogates, and what lies beyond the last code point.
    const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool outside = (lead == 0xED && byte(1) > 0x9F) || (lead == 0xF4 && byte(1) > 0x8F);
    return overlong || outside ? 0 : length;
}

std::string cleaned(std::string_view text)
{
    std::string name;
    while (!text.empty()) {
        const auto length = sequenceLength(text);
        if (length == 0)
            name += "\xEF\xBF\xBD";
        else if (static_cast<unsigned char>(text[0]) >= 0x20 && text[0] != 0x7F)
            name += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return name;
}

bool isPlaceholder(std::string_view name)
{
    constexpr std::array<std::string_view, 8> placeholders{
        "To Be Filled By O.E.M.", "To be filled by O.E.M.", "System Product Name", "Default string",
        "Not Applicable",         "Not Specified",          "Product Name",        "None"};
    return std::find(placeholders.begin(), placeholders.end(), name) != placeholders.end();
}

} // namespace

std::optional<std::int64_t> parseCacheSize(std::string_view text)
{
    Scan scan(trimmed(text));
    const auto value = scan.number();
    const auto factor = factorOf(scan.rest());
    return value && factor ? product(*value, *factor) : std::nullopt;
}

std::optional<std::int64_t> parseSysNumber(std::string_view text)
{
    Scan scan(trimmed(text));
    const auto value = scan.number();
    return value && scan.atEnd() ? product(*value, 1) : std::nullopt;
}

std::optional<std::int64_t> parseDeviceTreeCell(std::string_view bytes)
{
    if (bytes.size() != 4 && bytes.size() != 8)
        return std::nullopt;
    std::uint64_t value = 0;
    for (const char byte : bytes)
        value = value << 8U | static_cast<unsigned char>(byte);
    return product(value, 1);
}

std::optional<std::int64_t> parseCpuMegahertz(std::string_view cpuinfo)
{
    constexpr double hertzPerMegahertz = 1e6;
    constexpr double tooFast = 1e6; // a terahertz: the text is damaged
    Scan scan(cpuinfo);
    while (const auto line = scan.line()) {
        const auto colon = line->find(':');
        if (colon == std::string_view::npos || trimmed(line->substr(0, colon)) != "cpu MHz")
            continue;
        const auto text = trimmed(line->substr(colon + 1));
        double megahertz = 0;
        const auto end = text.data() + text.size();
        const auto result = std::from_chars(text.data(), end, megahertz, std::chars_format::fixed);
        const bool sound = result.ec == std::errc() && result.ptr == end;
        if (!sound || !(megahertz > 0 && megahertz < tooFast))
            return std::nullopt;
        return std::llround(megahertz * hertzPerMegahertz);
    }
    return std::nullopt;
}

std::optional<std::string> parseFirmwareName(std::string_view text)
{
    const std::string name = cleaned(trimmed(text.substr(0, text.find_first_of({"\0\n", 2}))));
    if (name.empty() || isPlaceholder(name))
        return std::nullopt;
    return name;
}

} // namespace pulsebar
