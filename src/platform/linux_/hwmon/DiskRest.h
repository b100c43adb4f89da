#pragma once

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/block_stat.h"

#include <chrono>
#include <optional>
#include <string>

namespace pulsebar {

/// How long a disk has had nothing to do, judged by its counters.
class IdleTime
{
public:
    using Clock = std::chrono::steady_clock;

    /// @param stat what the disk has done so far
    /// @return since when nothing was seen to be done. Between two looks that are far apart nobody
    /// knows when it was; then it is taken for the later one.
    Clock::duration look(const BlockStat &stat, Clock::time_point now);

private:
    std::optional<BlockStat> m_last;
    Clock::time_point m_lastWork{};
};

/// Whether a rotating disk may have stopped turning. Nobody but the disk knows, and asking it for
/// its temperature may start it, or keep it from stopping: one that had nothing to do for two
/// minutes is left alone. (The kernel does not count the asking as work.)
class DiskRest
{
public:
    static constexpr auto kLeftAloneAfter = std::chrono::minutes(2);

    explicit DiskRest(std::string statFile);

    /// False where the counters cannot be read.
    bool mayHaveStopped(IdleTime::Clock::time_point now);

private:
    SmallFile m_file;
    IdleTime m_idle;
};

} // namespace pulsebar
