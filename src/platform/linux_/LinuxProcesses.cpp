#include "platform/linux_/LinuxProcesses.h"

#include "platform/linux_/PidHandle.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "platform/linux_/low/proc_pid_status.h"
#include "platform/linux_/low/process_origin.h"
#include "util/ProcessNumber.h"

#include <sys/stat.h>

#include <array>
#include <ctime>
#include <dirent.h>
#include <limits>
#include <string>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

// Command lines can be megabytes long; the programs stand at the start.
constexpr std::size_t longestRead = 16U << 10U;

std::string file(qint64 pid, const char *name)
{
    const std::string path = "/proc/" + std::to_string(pid) + '/' + name;
    return readWholeFile(path, longestRead).value_or(std::string());
}

std::optional<std::uint32_t> userOf(qint64 pid)
{
    return parsePidStatus(file(pid, "status")).effectiveUid;
}

std::string executableOf(qint64 pid)
{
    std::array<char, 4096> target{};
    const auto path = "/proc/" + std::to_string(pid) + "/exe";
    const auto length = ::readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : "";
}

/// Whether paths mean the same files to a process as to this one. A program in a sandbox has a
/// mount namespace of its own; who may not ask gets no for an answer.
bool seesTheSameFiles(qint64 pid)
{
    struct stat theirs = {};
    struct stat ours = {};
    const auto path = "/proc/" + std::to_string(pid) + "/ns/mnt";
    return ::stat(path.c_str(), &theirs) == 0 && ::stat("/proc/self/ns/mnt", &ours) == 0 &&
           theirs.st_ino == ours.st_ino && theirs.st_dev == ours.st_dev;
}

} // namespace

LinuxProcesses::LinuxProcesses(Sysroot root)
    : m_root(std::move(root))
{
}

quint64 LinuxProcesses::now() const
{
    static const auto ticksPerSecond = static_cast<quint64>(::sysconf(_SC_CLK_TCK));
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    constexpr quint64 second = 1'000'000'000;
    return static_cast<quint64>(time.tv_sec) * ticksPerSecond +
           static_cast<quint64>(time.tv_nsec) * ticksPerSecond / second;
}

std::shared_ptr<HeldProcess> LinuxProcesses::hold(const QString &pid, quint64 listedAt)
{
    const auto number = processNumber(pid);
    if (!number)
        return nullptr;
    auto handle = openPidHandle(static_cast<pid_t>(*number));
    if (!handle || handle->startTime() > listedAt)
        return nullptr;
    if (m_root.isRecorded()) {
        const auto path = m_root.path("/proc/" + std::to_string(*number) + "/stat");
        const auto text = readWholeFile(path, longestRead);
        const auto stat = text ? parsePidStat(*text) : std::nullopt;
        if (!stat || stat->startTicks != handle->startTime())
            return nullptr;
    }
    return handle;
}

std::optional<QStringList> LinuxProcessTable::shortNames() const
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir("/proc"), &::closedir);
    if (!folder)
        return std::nullopt;
    QStringList names;
    while (const dirent *entry = ::readdir(folder.get())) {
        if (entry->d_name[0] < '1' || entry->d_name[0] > '9')
            continue;
        const std::string path = std::string("/proc/") + entry->d_name + "/stat";
        const auto text = readWholeFile(path, longestRead);
        if (const auto stat = text ? parsePidStat(*text) : std::nullopt)
            names.append(QString::fromUtf8(stat->comm.data(), qsizetype(stat->comm.size())));
    }
    return names;
}

std::shared_ptr<HeldProcess> LinuxProcessTable::parent(const HeldProcess &process)
{
    const std::string text = file(process.pid(), "stat");
    const auto stat = parsePidStat(text);
    if (!stat || stat->parent > std::numeric_limits<pid_t>::max())
        return nullptr;
    auto handle = openPidHandle(static_cast<pid_t>(stat->parent));
    if (!handle)
        return nullptr;
    const auto user = userOf(process.pid());
    const bool sameUser = user && user == userOf(handle->pid());
    return sameUser && process.isRunning() && handle->isRunning() ? handle : nullptr;
}

QStringList LinuxProcessTable::programs(const HeldProcess &process) const
{
    const qint64 pid = process.pid();
    if (userOf(pid) != ::geteuid() || !seesTheSameFiles(pid))
        return {};
    const std::string executable = executableOf(pid);
    if (!executable.starts_with('/'))
        return {};
    QStringList programs{QString::fromStdString(executable)};
    for (const auto &program : programsOfCommandLine(file(pid, "cmdline")))
        programs.append(QString::fromStdString(program));
    return process.isRunning() ? programs : QStringList();
}

} // namespace pulsebar
