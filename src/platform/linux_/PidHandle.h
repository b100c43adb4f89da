#pragma once

#include "platform/Processes.h"

#include <sys/types.h>

namespace pulsebar {

/// A running process, held by a descriptor that means this process and no other.
class PidHandle : public HeldProcess
{
public:
    /// @param startTime as /proc/PID/stat told after the descriptor was there
    /// @param descriptor of pidfd_open(2), owned from here on; -1 where the kernel gives none
    PidHandle(pid_t pid, quint64 startTime, int descriptor);
    ~PidHandle() override;
    PidHandle(const PidHandle &) = delete;
    PidHandle &operator=(const PidHandle &) = delete;

    qint64 pid() const override { return m_pid; }
    quint64 startTime() const override { return m_startTime; }
    bool isRunning() const override;
    bool askToEnd() override;
    int endDescriptor() const override { return m_descriptor; }

private:
    bool descriptorSaysEnded() const;

    pid_t m_pid;
    quint64 m_startTime;
    int m_descriptor;
};

/// A running process by its number: null when there is none, or none of which the start time can
/// be learned. Without the system call (older kernels, filters), or without descriptors left, the
/// start time alone tells processes apart.
std::shared_ptr<PidHandle> openPidHandle(pid_t pid);

} // namespace pulsebar
