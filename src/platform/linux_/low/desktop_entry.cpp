#include "platform/linux_/low/desktop_entry.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>

namespace pulsebar {

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Undoes the escapes that every value of type string may hold.
std::string unescaped(std::string_view value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        constexpr std::string_view codes = "sntr";
        constexpr std::string_view meanings = " \n\t\r";
        const auto code = codes.find(value[++i]);
        // Others (such as \") belong to the quoting of the command line.
        if (code != std::string_view::npos)
            text += meanings[code];
        else if (value[i] == '\\')
            text += '\\';
        else
            text.append("\\").append(1, value[i]);
    }
    return text;
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\n';
}

/// Takes the next word of a command line; false at its end.
bool takeWord(std::string_view &line, std::string &word)
{
    line.remove_prefix(std::min(line.find_first_not_of(" \t\n"), line.size()));
    if (line.empty())
        return false;
    word.clear();
    bool quoted = false;
    while (!line.empty() && (quoted || !isBlank(line[0]))) {
        if (quoted && line[0] == '\\' && line.size() > 1)
            line.remove_prefix(1);
        else if (line[0] == '"') {
            quoted = !quoted;
            line.remove_prefix(1);
            continue;
        }
        word += line[0];
        line.remove_prefix(1);
    }
    return true;
}

bool isFieldCode(const std::string &word)
{
    return word.size() == 2 && word[0] == '%' && word[1] != '%';
}

bool isAssignment(const std::string &word)
{
    return word.find('=') != std::string::npos;
}

std::vector<std::string> commandOf(const std::string &exec)
{
    std::vector<std::string> words;
    std::string_view rest = exec;
    std::string word;
    while (takeWord(rest, word)) {
        if (!word.empty() && !isFieldCode(word))
            words.push_back(word);
    }
    if (!words.empty() && (words[0] == "env" || words[0] == "/usr/bin/env")) {
        const auto program = std::find_if_not(words.begin() + 1, words.end(), isAssignment);
        words.erase(words.begin(), program);
    }
    return words;
}

void readKey(std::string_view key, std::string_view value, DesktopEntry &entry)
{
    if (key == "Name")
        entry.name = unescaped(value);
    else if (key == "Icon")
        entry.icon = unescaped(value);
    else if (key == "Exec")
        entry.command = commandOf(unescaped(value));
    else if (key == "StartupWMClass")
        entry.startupWmClass = unescaped(value);
    else if (key == "NoDisplay")
        entry.shown = value != "true";
    else if (key == "Hidden")
        entry.removed = value == "true";
    else if (key == "X-GNOME-Autostart-enabled")
        entry.autostart = value != "false";
}

/// How good a translation of the name the key is: 0 is the best, the number of languages is none.
std::size_t rankOfName(std::string_view key, const std::vector<std::string> &languages)
{
    constexpr std::string_view before = "Name[";
    if (!key.starts_with(before) || !key.ends_with(']'))
        return languages.size();
    const auto language = key.substr(before.size(), key.size() - before.size() - 1);
    const auto found = std::find(languages.begin(), languages.end(), language);
    return static_cast<std::size_t>(found - languages.begin());
}

} // namespace

DesktopEntry parseDesktopEntry(std::string_view text, const std::vector<std::string> &languages)
{
    DesktopEntry entry;
    std::size_t bestName = languages.size();
    bool inside = false;
    Scan scan(text);
    while (const auto line = scan.line()) {
        if (line->starts_with('[')) {
            // It is the first group of the file; nothing after it is for us.
            if (inside)
                break;
            inside = trimmed(*line) == "[Desktop Entry]";
            continue;
        }
        const auto equals = line->find('=');
        if (!inside || equals == std::string_view::npos || line->starts_with('#'))
            continue;
        const auto key = trimmed(line->substr(0, equals));
        const auto value = trimmed(line->substr(equals + 1));
        readKey(key, value, entry);
        if (const auto rank = rankOfName(key, languages); rank < bestName) {
            bestName = rank;
            entry.localName = unescaped(value);
        }
    }
    if (entry.localName.empty())
        entry.localName = entry.name;
    return entry;
}

std::string desktopEntryWord(std::string_view word)
{
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    constexpr std::string_view escapedInQuotes = "\"`$\\";
    const bool quoted = word.empty() || word.find_first_of(reserved) != std::string_view::npos;
    std::string text = quoted ? "\"" : "";
    for (const char character : word) {
        if (quoted && escapedInQuotes.find(character) != std::string_view::npos)
            text += '\\';
        // A single one would begin a field code.
        if (character == '%')
            text += '%';
        text += character;
    }
    return quoted ? text + '"' : text;
}

std::string desktopEntryString(std::string_view text)
{
    constexpr std::string_view codes = "\\ntr";
    constexpr std::string_view meanings = "\\\n\t\r";
    std::string value;
    for (const char character : text) {
        const auto code = meanings.find(character);
        if (code != std::string_view::npos)
            value.append("\\").append(1, codes[code]);
        else if (character == ' ' && value.empty())
            value += "\\s";
        else
            value += character;
    }
    return value;
}

} // namespace pulsebar
