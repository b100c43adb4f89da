#pragma once

#include "platform/linux_/low/proc_pid_stat.h"

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace pulsebar::top {

/// What tells whether the list of processes may have changed, read before the list.
struct ListHint
{
    std::optional<pid_t> lastPid;       ///< number given out last, from /proc/loadavg
    std::optional<std::uint64_t> forks; ///< processes and threads made since boot
};

/// A process's `stat` file that is kept open; nothing when `descriptor` is negative.
struct KeptFile
{
    int descriptor = -1;
};

/// Where processes are asked for. One implementation asks the running kernel, one reads a recorded
/// machine's files.
class ProcessSource
{
public:
    virtual ~ProcessSource() = default;

    /// Adds the numbers of all processes, ascending. False when they cannot be listed.
    virtual bool listAll(const ListHint &hint, std::vector<pid_t> &pids) = 0;
    /// Adds the numbers of processes that may be new since the last listing, ascending (known ones
    /// may be among them). False when only listAll can tell.
    virtual bool listNew(const ListHint &hint, std::vector<pid_t> &pids) = 0;

    /// CPU time that the process has used, in ns; absent when there is no such process.
    virtual std::optional<std::uint64_t> cpuTime(pid_t pid) = 0;

    /// The process's `stat`, valid until the next call; absent when it cannot be read. With
    /// `keep`, the file stays open in `file` if the source can afford it.
    virtual std::optional<PidStat> stat(pid_t pid, KeptFile &file, bool keep) = 0;
    virtual void close(KeptFile &file) = 0;

    /// Start times (PidStat::startTicks) count on the clock that WalkTime::bootTicks tells.
    virtual bool startTimesAreLive() const = 0;
};

} // namespace pulsebar::top
