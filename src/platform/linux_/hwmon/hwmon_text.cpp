#include "platform/linux_/hwmon/hwmon_text.h"

#include <charconv>
#include <system_error>

namespace pulsebar {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view withoutBlanks(std::string_view text)
{
    const auto start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

/// Takes a decimal number without sign, and nothing that begins with more than its digits.
std::optional<int> takeNumber(std::string_view &text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0 || text.front() == '-')
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0U) == 0x80U;
}

/// Bytes of the character that a text begins with; 0 when it is not valid UTF-8.
std::size_t lengthOfCharacter(std::string_view text)
{
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(byteAt(i)))
            return 0;
    }
    const unsigned second = byteAt(1);
    const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool beyond = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
    return overlong || beyond ? 0 : length;
}

/// C0, DEL and C1.
bool isControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character.front());
    if (character.size() == 1)
        return first < 0x20 || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

} // namespace

std::optional<std::int64_t> parseHwmonNumber(std::string_view text)
{
    text = withoutBlanks(text);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::string readableText(std::string_view text, std::size_t longest)
{
    text = withoutBlanks(text);
    text = withoutBlanks(text.substr(0, text.find('\n')));
    std::string readable;
    std::size_t lastCharacter = 0;
    std::size_t count = 0;
    while (!text.empty() && count < longest) {
        lastCharacter = readable.size();
        const auto length = lengthOfCharacter(text);
        const auto character = text.substr(0, length);
        readable += length == 0 || isControl(character) ? std::string_view("\uFFFD") : character;
        text.remove_prefix(length == 0 ? 1 : length);
        ++count;
    }
    if (!text.empty())
        readable.replace(lastCharacter, std::string::npos, "…");
    return readable;
}

std::optional<HwmonFile> parseHwmonFileName(std::string_view name)
{
    HwmonFile file;
    if (name.starts_with("temp")) {
        file.kind = HwmonFile::Kind::Temperature;
        name.remove_prefix(4);
    } else if (name.starts_with("fan")) {
        file.kind = HwmonFile::Kind::Fan;
        name.remove_prefix(3);
    } else {
        return std::nullopt;
    }
    const auto number = name.empty() ? std::nullopt : takeNumber(name);
    if (!number || !name.starts_with('_'))
        return std::nullopt;
    file.number = *number;
    file.detail = name.substr(1);
    return file;
}

std::optional<int> parseHwmonFolderName(std::string_view name)
{
    if (!name.starts_with("hwmon"))
        return std::nullopt;
    name.remove_prefix(5);
    const auto number = name.empty() ? std::nullopt : takeNumber(name);
    return name.empty() ? number : std::nullopt;
}

} // namespace pulsebar
