#pragma once

#include "platform/linux_/low/desktop_entry.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pulsebar {

/// The icons of the installed applications, by the names under which their processes are known.
/// Read at the first question; read anew when a folder has changed, which is looked at no more
/// often than the time between looks. Only names and icons are kept, some ten kilobytes on a
/// desktop; a library's list of all entries takes megabytes and a thread.
class DesktopEntries
{
public:
    struct Application
    {
        std::string icon;
        bool shown = true;     ///< stands in menus
        std::size_t words = 0; ///< of its command line
    };

    /// @param folders the `applications` folders, the most important first
    explicit DesktopEntries(
        std::vector<std::string> folders,
        std::chrono::steady_clock::duration timeBetweenLooks = std::chrono::seconds(30));

    /// The folders of $XDG_DATA_HOME and $XDG_DATA_DIRS (XDG Base Directory Specification).
    static std::vector<std::string> standardFolders();

    /// By the entry's identifier (its file's name without ".desktop"); nullptr when unknown.
    /// The pointer holds until the next question.
    const Application *byId(const std::string &id);
    /// By a program's path or its last part, compared as it stands; nullptr when unknown.
    const Application *byProgram(const std::string &program);

    /// Reads the files anew, for what is asked rarely and not worth keeping.
    /// @param languages as parseDesktopEntry() has them
    /// @return among the entries that `matches` accepts the one that is the application itself
    std::optional<DesktopEntry> find(const std::function<bool(const DesktopEntry &entry)> &matches,
                                     const std::vector<std::string> &languages = {}) const;

    /// The word of an entry's command that names the application: not what only starts it. Empty
    /// when no word does.
    static std::string programOf(const std::vector<std::string> &command);

private:
    using Index = std::unordered_map<std::string, Application>;

    void refresh();
    void readEntry(const std::string &path, const std::string &id);
    void indexProgram(const std::string &name, const Application &application);
    bool foldersChanged() const;

    std::vector<std::string> m_folders;
    std::chrono::steady_clock::duration m_timeBetweenLooks;
    std::chrono::steady_clock::time_point m_lastLook;
    bool m_read = false;
    /// Each folder that was read, with the time of its last change.
    std::vector<std::pair<std::string, std::int64_t>> m_readFolders;
    Index m_byId;
    Index m_byProgram;
};

} // namespace pulsebar
