#include "platform/linux_/PidHandle.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_pid_stat.h"

#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace pulsebar {

namespace {

/// When the process that has this number now was started; absent without one, and for one that
/// only waits to be collected by its parent.
std::optional<quint64> startTimeOf(pid_t pid)
{
    const auto text = readWholeFile("/proc/" + std::to_string(pid) + "/stat");
    const auto stat = text ? parsePidStat(*text) : std::nullopt;
    // A main thread that has ended looks so as well while others of its process run on.
    if (!stat || stat->state == 'X' || (stat->state == 'Z' && stat->threads <= 1))
        return std::nullopt;
    return stat->startTicks;
}

/// The descriptor is closed on exec, as the system call promises.
int openDescriptor(pid_t pid)
{
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

bool isWithoutDescriptors(int error)
{
    return error == ENOSYS || error == EPERM || error == EMFILE || error == ENFILE ||
           error == ENOMEM;
}

} // namespace

PidHandle::PidHandle(pid_t pid, quint64 startTime, int descriptor)
    : m_pid(pid)
    , m_startTime(startTime)
    , m_descriptor(descriptor)
{
}

PidHandle::~PidHandle()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool PidHandle::descriptorSaysEnded() const
{
    pollfd end{m_descriptor, POLLIN, 0};
    int count = 0;
    do {
        count = ::poll(&end, 1, 0);
    } while (count < 0 && errno == EINTR);
    return count != 0;
}

bool PidHandle::isRunning() const
{
    if (m_descriptor >= 0 && descriptorSaysEnded())
        return false;
    return startTimeOf(m_pid) == m_startTime;
}

bool PidHandle::askToEnd()
{
    if (!isRunning())
        return false;
    if (m_descriptor >= 0)
        return ::syscall(SYS_pidfd_send_signal, m_descriptor, SIGTERM, nullptr, 0) == 0;
    return ::kill(m_pid, SIGTERM) == 0;
}

std::shared_ptr<PidHandle> openPidHandle(pid_t pid)
{
    if (pid <= 1)
        return nullptr;
    const int descriptor = openDescriptor(pid);
    if (descriptor < 0 && !isWithoutDescriptors(errno))
        return nullptr;
    const auto startTime = startTimeOf(pid);
    auto handle = std::make_shared<PidHandle>(pid, startTime.value_or(0), descriptor);
    // Asked last: if it runs now, the start time was its own.
    return startTime && handle->isRunning() ? handle : nullptr;
}

} // namespace pulsebar
