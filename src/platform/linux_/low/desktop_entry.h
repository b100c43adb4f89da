#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// What a desktop entry file (freedesktop.org's Desktop Entry Specification) says about the
/// program that it starts.
struct DesktopEntry
{
    /// The words of Exec without quotes and field codes; a leading `env` and what it sets are
    /// left out, so that the first word is the program.
    std::vector<std::string> command;
    std::string name;           ///< untranslated; empty without one
    std::string localName;      ///< in the best of the languages asked for; else as `name`
    std::string icon;           ///< a themed icon's name or an absolute path; empty without one
    std::string startupWmClass; ///< what its windows call themselves; empty when not told
    bool shown = true;          ///< false for NoDisplay: not meant for menus
    bool removed =
        false; ///< Hidden: as if the file, and those of its name after it, were not there
    bool autostart = true; ///< false when switched off in the desktop's list of start-up programs
};

/// Parses the [Desktop Entry] group. Malformed lines, other translations, actions and unknown keys
/// are left out. What starts no program (a link, a folder) has no command.
/// @param languages the best first, as the keys have them, such as "pt_BR" and "pt"
DesktopEntry parseDesktopEntry(std::string_view text,
                               const std::vector<std::string> &languages = {});

/// A word of a command line as it stands in Exec, before desktopEntryString(): in quotes where it
/// needs them, and without field codes.
std::string desktopEntryWord(std::string_view word);

/// A text as the value of a key of type string.
std::string desktopEntryString(std::string_view text);

} // namespace pulsebar
