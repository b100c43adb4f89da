#include "platform/linux_/DesktopEntries.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/desktop_entry.h"
#include "platform/linux_/low/process_origin.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <unordered_set>

namespace pulsebar {

namespace {

constexpr std::string_view suffix = ".desktop";
// Far more than the deepest menu of a desktop, and an end for links that go in circles.
constexpr int deepest = 4;

/// Time of the last change of a folder in nanoseconds, -1 without the folder.
std::int64_t changeTime(const std::string &folder)
{
    struct stat facts = {};
    if (::stat(folder.c_str(), &facts) != 0)
        return -1;
    return facts.st_mtim.tv_sec * 1'000'000'000LL + facts.st_mtim.tv_nsec;
}

std::vector<std::string> sortedEntries(const std::string &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(folder.c_str()), &::closedir);
    std::vector<std::string> names;
    while (const dirent *entry = stream ? ::readdir(stream.get()) : nullptr) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isFolder(const std::string &path)
{
    struct stat facts = {};
    return ::stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

/// Which of two entries for one program is the application itself: one that is shown before one
/// that is not, then the one with the plainer command line.
bool isBetter(const DesktopEntries::Application &left, const DesktopEntries::Application &right)
{
    return left.shown != right.shown ? left.shown : left.words < right.words;
}

std::optional<DesktopEntry> readEntryFile(const std::string &path,
                                          const std::vector<std::string> &languages)
{
    constexpr std::size_t longest = 256U << 10U;
    const auto text = readWholeFile(path, longest);
    return text ? std::optional(parseDesktopEntry(*text, languages)) : std::nullopt;
}

/// What is met on a walk through a folder and those below it.
struct Visitor
{
    std::function<void(const std::string &folder)> folder;
    /// Also called for what a more important folder has; the identifier tells.
    std::function<void(const std::string &path, const std::string &id)> entry;
};

void visitFolder(const std::string &folder, const std::string &idPrefix, int depth,
                 const Visitor &visitor)
{
    visitor.folder(folder);
    for (const auto &name : sortedEntries(folder)) {
        std::string path = folder;
        path.append("/").append(name);
        if (name.ends_with(suffix))
            visitor.entry(path, idPrefix + name.substr(0, name.size() - suffix.size()));
        else if (depth < deepest && isFolder(path))
            visitFolder(path, idPrefix + name + '-', depth + 1, visitor);
    }
}

void appendFolders(std::vector<std::string> &folders, std::string_view list)
{
    while (!list.empty()) {
        const auto folder = list.substr(0, list.find(':'));
        list.remove_prefix(std::min(folder.size() + 1, list.size()));
        // Relative ones are to be ignored.
        if (folder.starts_with('/'))
            folders.push_back(std::string(folder) + "/applications");
    }
}

} // namespace

DesktopEntries::DesktopEntries(std::vector<std::string> folders,
                               std::chrono::steady_clock::duration timeBetweenLooks)
    : m_folders(std::move(folders))
    , m_timeBetweenLooks(timeBetweenLooks)
{
}

std::vector<std::string> DesktopEntries::standardFolders()
{
    const auto variable = [](const char *name) {
        const char *value = std::getenv(name);
        return std::string(value ? value : "");
    };
    std::string home = variable("XDG_DATA_HOME");
    if (home.empty() && !variable("HOME").empty())
        home = variable("HOME") + "/.local/share";
    std::string others = variable("XDG_DATA_DIRS");
    if (others.empty())
        others = "/usr/local/share:/usr/share";
    std::vector<std::string> folders;
    appendFolders(folders, home);
    appendFolders(folders, others);
    return folders;
}

bool DesktopEntries::foldersChanged() const
{
    return std::any_of(m_readFolders.begin(), m_readFolders.end(), [](const auto &folder) {
        return changeTime(folder.first) != folder.second;
    });
}

void DesktopEntries::refresh()
{
    const auto now = std::chrono::steady_clock::now();
    if (m_read && now - m_lastLook < m_timeBetweenLooks)
        return;
    m_lastLook = now;
    if (m_read && !foldersChanged())
        return;
    m_read = true;
    m_readFolders.clear();
    m_byId.clear();
    m_byProgram.clear();
    const Visitor visitor{
        [this](const std::string &folder) {
            m_readFolders.emplace_back(folder, changeTime(folder));
        },
        [this](const std::string &path, const std::string &id) { readEntry(path, id); }};
    for (const auto &folder : m_folders)
        visitFolder(folder, {}, 0, visitor);
    // Many processes are called as their application's entry is.
    for (const auto &[id, application] : m_byId)
        m_byProgram.emplace(id, application);
}

void DesktopEntries::readEntry(const std::string &path, const std::string &id)
{
    // A more important folder has said what this identifier is, be it that it is not there.
    if (m_byId.contains(id))
        return;
    const auto entry = readEntryFile(path, {});
    if (!entry)
        return;
    const Application application{entry->removed ? std::string() : entry->icon, entry->shown,
                                  entry->command.size()};
    m_byId.emplace(id, application);
    if (application.icon.empty())
        return;
    const std::string program = programOf(entry->command);
    indexProgram(program, application);
    indexProgram(std::string(baseName(program)), application);
    indexProgram(entry->startupWmClass, application);
}

std::string DesktopEntries::programOf(const std::vector<std::string> &command)
{
    if (command.empty())
        return {};
    const auto first = baseName(command[0]);
    if (first == "flatpak" || first == "snap")
        return {};
    const bool starter = first == "pkexec" || first == "sudo" || isInterpreter(first);
    if (!starter)
        return command[0];
    return command.size() > 1 && !command[1].starts_with('-') ? command[1] : std::string();
}

std::optional<DesktopEntry>
DesktopEntries::find(const std::function<bool(const DesktopEntry &)> &matches,
                     const std::vector<std::string> &languages) const
{
    std::optional<DesktopEntry> best;
    std::unordered_set<std::string> seen;
    const auto look = [&](const std::string &path, const std::string &id) {
        if (!seen.insert(id).second)
            return;
        auto entry = readEntryFile(path, languages);
        if (!entry || entry->removed || !matches(*entry))
            return;
        if (!best || isBetter({{}, entry->shown, entry->command.size()},
                              {{}, best->shown, best->command.size()}))
            best = std::move(entry);
    };
    const Visitor visitor{[](const std::string &) {}, look};
    for (const auto &folder : m_folders)
        visitFolder(folder, {}, 0, visitor);
    return best;
}

void DesktopEntries::indexProgram(const std::string &name, const Application &application)
{
    if (name.empty())
        return;
    const auto [place, isNew] = m_byProgram.emplace(name, application);
    if (!isNew && isBetter(application, place->second))
        place->second = application;
}

const DesktopEntries::Application *DesktopEntries::byId(const std::string &id)
{
    refresh();
    const auto found = m_byId.find(id);
    return found == m_byId.end() || found->second.icon.empty() ? nullptr : &found->second;
}

const DesktopEntries::Application *DesktopEntries::byProgram(const std::string &program)
{
    refresh();
    for (const auto &name : {program, std::string(baseName(program))}) {
        const auto found = m_byProgram.find(name);
        if (found != m_byProgram.end() && !found->second.icon.empty())
            return &found->second;
    }
    return nullptr;
}

} // namespace pulsebar
