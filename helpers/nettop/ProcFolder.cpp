#include "nettop/ProcFolder.h"

#include "platform/linux_/low/directory_entries.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "platform/linux_/low/process_clock.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>

namespace pulsebar::nettop {

namespace {

constexpr std::size_t entriesSpace = 32U << 10U;
constexpr std::size_t cmdlineLimit = 4096;

/// "PID/file" or "PID/fd/N", relative to /proc.
struct Path
{
    Path(pid_t pid, std::string_view file)
    {
        char *end = std::to_chars(text.data(), text.data() + text.size(), pid).ptr;
        *end++ = '/';
        end = std::copy(file.begin(), file.end(), end);
        *end = '\0';
    }
    std::array<char, 48> text{};
};

std::optional<std::uint32_t> socketInodeAt(int folder, const char *path)
{
    std::array<char, 64> target{};
    errno = 0;
    const auto length = ::readlinkat(folder, path, target.data(), target.size());
    if (length <= 0)
        return std::nullopt;
    return socketInodeOf({target.data(), static_cast<std::size_t>(length)});
}

/// Calls take(number) for each entry that is a number.
template <typename Take> void forEachNumber(int folder, std::vector<char> &space, Take take)
{
    space.resize(entriesSpace);
    for (;;) {
        const auto size = readDirectoryEntries(folder, space.data(), space.size());
        if (size <= 0)
            return;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto entry = directoryEntryAt(space.data() + at);
            if (const auto number = numberOfEntry(entry.name))
                take(*number);
            at += entry.length;
        }
    }
}

} // namespace

std::optional<std::uint32_t> socketInodeOf(std::string_view target)
{
    constexpr std::string_view prefix = "socket:[";
    if (!target.starts_with(prefix))
        return std::nullopt;
    target.remove_prefix(prefix.size());
    std::uint32_t inode = 0;
    const char *end = target.data() + target.size();
    const auto [stop, error] = std::from_chars(target.data(), end, inode);
    if (error != std::errc() || stop == end || *stop != ']' || inode == 0)
        return std::nullopt;
    return inode;
}

ProcFolder::ProcFolder(const Sysroot &sysroot)
    : m_folder(::open(sysroot.path("/proc").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    , m_hasClocks(!sysroot.isRecorded() && processClocksMatchProc())
{
}

ProcFolder::~ProcFolder()
{
    if (m_folder >= 0)
        ::close(m_folder);
}

std::vector<pid_t> ProcFolder::list()
{
    std::vector<pid_t> pids;
    if (::lseek(m_folder, 0, SEEK_SET) < 0)
        return pids;
    pids.reserve(512);
    forEachNumber(m_folder, m_entries, [&](int number) {
        if (number > 0)
            pids.push_back(number);
    });
    return pids;
}

std::optional<std::uint64_t> ProcFolder::clock(pid_t pid)
{
    return m_hasClocks ? readProcessClock(pid) : std::nullopt;
}

std::size_t ProcFolder::readFile(pid_t pid, const char *file, char *space, std::size_t size,
                                 std::uint32_t *uid) const
{
    const int descriptor = ::openat(m_folder, Path(pid, file).text.data(),
                                    O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0)
        return 0;
    struct stat about
    {
    };
    if (uid && ::fstat(descriptor, &about) == 0)
        *uid = about.st_uid;
    const auto count = ::read(descriptor, space, size);
    ::close(descriptor);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::optional<ProcessSource::Facts> ProcFolder::facts(pid_t pid)
{
    std::array<char, 1024> text{};
    Facts facts;
    const auto size = readFile(pid, "stat", text.data(), text.size(), &facts.uid);
    const auto stat = parsePidStat({text.data(), size});
    if (!stat)
        return std::nullopt;
    facts.startTicks = stat->startTicks;
    facts.comm = stat->comm;
    return facts;
}

std::string ProcFolder::commandLine(pid_t pid)
{
    std::string text(cmdlineLimit, '\0');
    text.resize(readFile(pid, "cmdline", text.data(), text.size()));
    return text;
}

ProcessSource::Look ProcFolder::lookAtSockets(pid_t pid, const SocketTaker &take)
{
    const int folder =
        ::openat(m_folder, Path(pid, "fd").text.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return Look::Whole;
    m_descriptors.clear();
    forEachNumber(folder, m_entries,
                  [&](int number) { m_descriptors.push_back(static_cast<std::uint32_t>(number)); });
    auto look = Look::Whole;
    std::array<char, 16> name{};
    for (auto i = m_descriptors.size(); i > 0 && look == Look::Whole; --i) {
        const auto descriptor = m_descriptors[i - 1];
        *std::to_chars(name.data(), name.data() + name.size(), descriptor).ptr = '\0';
        const auto inode = socketInodeAt(folder, name.data());
        if (inode && !take(*inode, descriptor))
            look = Look::Stopped;
        // Where the list may be read but no entry of it, there is nothing to see.
        if (!inode && errno == EACCES)
            break;
    }
    ::close(folder);
    return look;
}

bool ProcFolder::holds(pid_t pid, std::uint32_t descriptor, std::uint32_t inode)
{
    std::array<char, 16> name{'f', 'd', '/'};
    *std::to_chars(name.data() + 3, name.data() + name.size(), descriptor).ptr = '\0';
    return socketInodeAt(m_folder, Path(pid, name.data()).text.data()) == inode;
}

} // namespace pulsebar::nettop
