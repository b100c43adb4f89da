#include "top/LiveProcesses.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/process_clock.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace pulsebar::top {

namespace {

constexpr std::uint64_t nsPerTick = 10'000'000; // USER_HZ is 100 for every program

/// "PID/stat"
struct StatPath
{
    explicit StatPath(pid_t pid)
    {
        constexpr std::string_view file = "/stat";
        char *end = std::to_chars(text.data(), text.data() + text.size(), pid).ptr;
        std::copy(file.begin(), file.end(), end);
    }
    std::array<char, 24> text{};
};

} // namespace

Folder::Folder(const char *path)
    : m_descriptor(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
}

Folder::~Folder()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

LiveProcesses::LiveProcesses()
    : m_folder("/proc")
    , m_lister(m_folder.descriptor())
{
}

bool LiveProcesses::works()
{
    return processClocksMatchProc();
}

bool LiveProcesses::listAll(const ListHint &hint, std::vector<pid_t> &pids)
{
    return m_lister.listAll(hint, pids);
}

bool LiveProcesses::listNew(const ListHint &hint, std::vector<pid_t> &pids)
{
    return m_lister.listNew(hint, pids);
}

std::optional<std::uint64_t> LiveProcesses::cpuTime(pid_t pid)
{
    return readProcessClock(pid);
}

std::optional<PidStat> LiveProcesses::readKept(KeptFile &file)
{
    const auto size = ::pread(file.descriptor, m_text.data(), m_text.size(), 0);
    if (size <= 0)
        return std::nullopt;
    return parsePidStat({m_text.data(), static_cast<std::size_t>(size)});
}

std::optional<PidStat> LiveProcesses::stat(pid_t pid, KeptFile &file, bool keep)
{
    if (file.descriptor >= 0) {
        if (const auto stat = readKept(file))
            return stat;
        // Its process is gone; the number may have gone to another.
        close(file);
    }
    file.descriptor =
        ::openat(m_folder.descriptor(), StatPath(pid).text.data(), O_RDONLY | O_CLOEXEC);
    if (file.descriptor < 0)
        return std::nullopt;
    const auto stat = readKept(file);
    if (!keep || !stat)
        close(file);
    return stat;
}

void LiveProcesses::close(KeptFile &file)
{
    if (file.descriptor >= 0)
        ::close(file.descriptor);
    file.descriptor = -1;
}

FileProcesses::FileProcesses(std::string folder)
    : m_path(std::move(folder))
{
}

bool FileProcesses::listAll(const ListHint & /*hint*/, std::vector<pid_t> &pids)
{
    DIR *folder = ::opendir(m_path.c_str());
    if (!folder)
        return false;
    while (const dirent *entry = ::readdir(folder)) {
        const std::string_view name(entry->d_name);
        const char *end = name.data() + name.size();
        pid_t pid = 0;
        const auto [stop, error] = std::from_chars(name.data(), end, pid);
        if (error == std::errc() && stop == end && pid > 0)
            pids.push_back(pid);
    }
    ::closedir(folder);
    std::sort(pids.begin(), pids.end());
    return true;
}

bool FileProcesses::listNew(const ListHint & /*hint*/, std::vector<pid_t> & /*pids*/)
{
    return false;
}

bool FileProcesses::read(pid_t pid)
{
    m_readPid = pid;
    m_stat.reset();
    const auto text = readWholeFile(m_path + '/' + std::to_string(pid) + "/stat");
    m_text = text.value_or(std::string());
    m_stat = parsePidStat(m_text);
    return m_stat.has_value();
}

std::optional<std::uint64_t> FileProcesses::cpuTime(pid_t pid)
{
    if (!read(pid))
        return std::nullopt;
    return (m_stat->userTicks + m_stat->kernelTicks) * nsPerTick;
}

std::optional<PidStat> FileProcesses::stat(pid_t pid, KeptFile & /*file*/, bool /*keep*/)
{
    // The CPU time was just taken from the same file: both figures are of one moment.
    if (pid != m_readPid)
        read(pid);
    return m_stat;
}

void FileProcesses::close(KeptFile & /*file*/) {}

} // namespace pulsebar::top
