#include "common/ProcessName.h"

#include "common/Utf8.h"

#include <array>
#include <vector>

namespace pulsebar {

namespace {

constexpr std::size_t longestName = 64;
constexpr std::size_t cutByKernel = 15;
constexpr char32_t noBreakSpace = 0xA0;
constexpr char32_t openBox = 0x2423;
constexpr char32_t divisionSlash = 0x2215;

/// Characters that may not reach a report: they would end a line or turn the direction of text.
bool isHarmful(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 || c == 0x61C ||
           c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
}

/// The blanks of Unicode, which a reader may skip at the beginning of a word.
bool isBlank(char32_t c)
{
    return c == ' ' || c == noBreakSpace || c == 0x1680 || (c >= 0x2000 && c <= 0x200B) ||
           c == 0x202F || c == 0x205F || c == 0x3000;
}

bool isAsciiLetter(char32_t c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool startsLike(std::u32string_view word, std::u32string_view lowerCase)
{
    if (word.size() < lowerCase.size())
        return false;
    for (std::size_t i = 0; i < lowerCase.size(); ++i) {
        if ((word[i] | 0x20U) != lowerCase[i])
            return false;
    }
    return true;
}

/// Could a reader take the word for the number that follows the name, or lose a part of it?
bool mayNotFollowABlank(std::u32string_view word)
{
    if (word.find(U'%') != std::u32string_view::npos || isBlank(word.front()))
        return true;
    if (word.find_first_of(U".,") == std::u32string_view::npos)
        return false;
    const bool spelledNumber = startsLike(word, U"inf") || startsLike(word, U"nan");
    return spelledNumber || !isAsciiLetter(word.front());
}

std::u32string cleaned(std::string_view name)
{
    std::u32string text;
    Utf8Reader reader(name);
    while (text.size() < longestName && !reader.atEnd()) {
        const auto c = reader.next();
        text.push_back(isHarmful(c) ? replacementCharacter : c);
    }
    return text;
}

/// Shows blanks at both ends, so that they neither get lost nor hide the name.
void showOuterBlanks(std::u32string &text)
{
    for (auto c = text.begin(); c != text.end() && isBlank(*c); ++c)
        *c = openBox;
    for (auto c = text.rbegin(); c != text.rend() && isBlank(*c); ++c)
        *c = openBox;
}

void bindRunsOfBlanks(std::u32string &text)
{
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == ' ' && (text[i - 1] == ' ' || text[i - 1] == noBreakSpace))
            text[i - 1] = text[i] = noBreakSpace;
    }
}

/// Joins words from the right: a word that may not stand alone is bound to the one before it,
/// and what came of it is judged anew. The first word is safe: nothing is expected there but a
/// name.
void bindDoubtfulWords(std::u32string &text)
{
    auto end = text.size();
    for (;;) {
        const auto blank = end == 0 ? std::u32string::npos : text.rfind(U' ', end - 1);
        if (blank == std::u32string::npos)
            return;
        auto wordEnd = text.find(U' ', blank + 1);
        if (wordEnd == std::u32string::npos)
            wordEnd = text.size();
        const auto word = std::u32string_view(text).substr(blank + 1, wordEnd - blank - 1);
        if (mayNotFollowABlank(word))
            text[blank] = noBreakSpace;
        end = blank;
    }
}

/// What stands for an unknown value may be somebody's name.
void showAsKnown(std::u32string &text)
{
    if (text == U"N/A")
        text[1] = divisionSlash;
}

std::string encoded(const std::u32string &text)
{
    std::string bytes;
    for (const auto c : text)
        appendUtf8(bytes, c);
    return bytes;
}

std::string_view lastPathComponent(std::string_view argument)
{
    // A program that rewrites its title leaves its options in the same argument.
    argument = argument.substr(0, argument.find(" -"));
    const auto slash = argument.rfind('/');
    return slash == std::string_view::npos ? argument : argument.substr(slash + 1);
}

} // namespace

std::string completeName(std::string_view comm, std::string_view commandLine)
{
    if (comm.size() != cutByKernel)
        return std::string(comm);
    for (int argument = 0; argument < 2 && !commandLine.empty(); ++argument) {
        const auto end = commandLine.find('\0');
        const auto name = lastPathComponent(commandLine.substr(0, end));
        if (name.starts_with(comm))
            return std::string(name);
        if (end == std::string_view::npos)
            break;
        commandLine.remove_prefix(end + 1);
    }
    return std::string(comm);
}

std::string nameForRow(std::string_view name)
{
    auto text = cleaned(name);
    if (text.empty())
        return "?";
    showOuterBlanks(text);
    bindRunsOfBlanks(text);
    bindDoubtfulWords(text);
    showAsKnown(text);
    if (text.starts_with(U"N/A "))
        text[3] = noBreakSpace;
    return encoded(text);
}

std::string wordForRow(std::string_view text)
{
    auto word = cleaned(text);
    if (word.empty())
        return "?";
    for (auto &c : word) {
        if (isBlank(c))
            c = U'_';
    }
    showAsKnown(word);
    return encoded(word);
}

} // namespace pulsebar
