#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pulsebar {

struct DesktopEntry;

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

private:
    using Index = std::unordered_map<std::string, Application>;

    void refresh();
    void readFolder(const std::string &folder, const std::string &idPrefix, int depth);
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
