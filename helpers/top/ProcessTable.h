#pragma once

#include "top/Options.h"
#include "top/Process.h"

#include <cstddef>
#include <vector>

namespace pulsebar::top {

/// When a walk takes place.
struct WalkTime
{
    std::uint64_t elapsed = 0; ///< ns since the walk before; 0 at the first
    /// Moment of the walk before, in ticks since boot, suspended time included.
    std::uint64_t lastWalkTicks = 0;
    unsigned processors = 1;
};

/// Processes by what they do.
struct StateCounts
{
    std::uint64_t total = 0;
    std::uint64_t running = 0;
    std::uint64_t sleeping = 0;
    std::uint64_t stuck = 0; ///< uninterruptible, waiting for a disk or a dead server
    std::uint64_t stopped = 0;
    std::uint64_t zombie = 0;
    std::uint64_t threads = 0;
};

/// All processes, brought up to date walk by walk at the least cost: each one's CPU clock is
/// asked; only those that have run since, and a rotating share of the others (whose resident size
/// may change while they sleep), have their `stat` read.
class ProcessTable
{
public:
    /// `sizesMatter`: the rotating share is larger because rows are sorted by resident size.
    ProcessTable(ProcessSource &source, bool sizesMatter);
    ~ProcessTable();
    ProcessTable(const ProcessTable &) = delete;
    ProcessTable &operator=(const ProcessTable &) = delete;

    void walk(const WalkTime &time, const ListHint &hint);

    /// Ascending by number.
    const std::vector<Process> &processes() const { return m_processes; }
    const StateCounts &counts() const { return m_counts; }

    /// Indices into processes() of the first `limit` rows in the order asked for.
    const std::vector<std::uint32_t> &sorted(SortKey key, std::size_t limit);
    /// Reads the sizes of a process anew; it is about to be shown.
    void refreshSizes(std::uint32_t index);

private:
    void updateList(const ListHint &hint);
    void mergeAll(const std::vector<pid_t> &pids);
    void mergeNew(const std::vector<pid_t> &pids);
    bool measure(Process &process, const WalkTime &time);
    bool readStat(Process &process, std::uint64_t clock, const WalkTime &time);
    bool isDue(pid_t pid) const;
    void noteRan(Process &process, bool ran);
    bool shouldKeepOpen(const Process &process) const;
    void closeFile(Process &process);
    void count(const Process &process);

    ProcessSource &m_source;
    std::vector<Process> m_processes;
    std::vector<Process> m_merged;
    std::vector<pid_t> m_pids;
    std::vector<std::uint32_t> m_order;
    StateCounts m_counts;
    unsigned m_share;
    unsigned m_walks = 0;
    unsigned m_walksToListing = 0;
    unsigned m_openFiles = 0;
};

} // namespace pulsebar::top
