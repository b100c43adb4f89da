#include "top/ProcessTable.h"

#include "top/Rounding.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace pulsebar::top {

namespace {

/// One sleeper in so many is read again at each walk.
constexpr unsigned usualShare = 32;
constexpr unsigned shareBySize = 8;
/// Listing new processes only relies on how the kernel numbers its folder: the whole list is taken
/// now and then, whatever happened.
constexpr unsigned walksPerListing = 30;
/// Each kept file costs kernel memory and a descriptor.
constexpr unsigned mostOpenFiles = 256;
constexpr std::uint8_t awakeToKeep = 2;
constexpr std::uint8_t asleepToClose = 8;

Process newProcess(pid_t pid)
{
    Process process;
    process.pid = pid;
    return process;
}

void takeName(Process &process, std::string_view comm)
{
    process.commLength = static_cast<std::uint8_t>(std::min<std::size_t>(comm.size(), 255));
    std::copy_n(comm.data(), std::min(comm.size(), Process::commSpace), process.comm.data());
}

void takeSizes(Process &process, const PidStat &stat)
{
    process.residentPages = stat.residentPages;
    process.virtualBytes = stat.virtualBytes;
}

void takeStat(Process &process, const PidStat &stat)
{
    takeName(process, stat.comm);
    takeSizes(process, stat);
    process.state = stat.state;
    process.threads = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(stat.threads, std::numeric_limits<std::uint32_t>::max()));
    process.majorFaults = stat.majorFaults;
    process.startTicks = stat.startTicks;
    process.known = true;
}

/// CPU used in the interval, in 1/1000 of one core, rounded; never more than the machine has.
std::uint32_t tenthsOfPercent(std::uint64_t used, const WalkTime &time)
{
    if (time.elapsed == 0)
        return 0;
    const auto share = static_cast<double>(used) * 1000.0 / static_cast<double>(time.elapsed);
    return static_cast<std::uint32_t>(rounded(std::min(share, time.processors * 1000.0)));
}

} // namespace

ProcessTable::ProcessTable(ProcessSource &source, bool sizesMatter)
    : m_source(source)
    , m_share(sizesMatter ? shareBySize : usualShare)
{
}

ProcessTable::~ProcessTable()
{
    for (auto &process : m_processes)
        closeFile(process);
}

void ProcessTable::walk(const WalkTime &time, const ListHint &hint)
{
    ++m_walks;
    updateList(hint);
    m_counts = {};
    auto kept = m_processes.begin();
    for (auto &process : m_processes) {
        if (measure(process, time)) {
            count(process);
            *kept++ = process;
        } else {
            closeFile(process);
        }
    }
    m_processes.erase(kept, m_processes.end());
}

void ProcessTable::updateList(const ListHint &hint)
{
    m_pids.clear();
    if (m_walksToListing > 0 && m_source.listNew(hint, m_pids)) {
        --m_walksToListing;
        mergeNew(m_pids);
        return;
    }
    m_pids.clear();
    if (m_source.listAll(hint, m_pids)) {
        m_walksToListing = walksPerListing;
        mergeAll(m_pids);
    }
}

/// Both lists ascend. Processes that are listed no more go, unknown ones come.
void ProcessTable::mergeAll(const std::vector<pid_t> &pids)
{
    m_merged.clear();
    m_merged.reserve(pids.size());
    auto known = m_processes.begin();
    for (const auto pid : pids) {
        for (; known != m_processes.end() && known->pid < pid; ++known)
            closeFile(*known);
        const bool isKnown = known != m_processes.end() && known->pid == pid;
        m_merged.push_back(isKnown ? *known++ : newProcess(pid));
    }
    for (; known != m_processes.end(); ++known)
        closeFile(*known);
    m_processes.swap(m_merged);
    // Two tables of thousands would stand in memory for a list that is taken rarely.
    std::vector<Process>().swap(m_merged);
}

void ProcessTable::mergeNew(const std::vector<pid_t> &pids)
{
    const auto before = static_cast<std::ptrdiff_t>(m_processes.size());
    const auto byPid = [](const Process &left, const Process &right) {
        return left.pid < right.pid;
    };
    for (const auto pid : pids) {
        const auto end = m_processes.begin() + before;
        const auto candidate = newProcess(pid);
        const auto place = std::lower_bound(m_processes.begin(), end, candidate, byPid);
        if (place == end || place->pid != pid)
            m_processes.push_back(candidate);
    }
    std::inplace_merge(m_processes.begin(), m_processes.begin() + before, m_processes.end(), byPid);
}

bool ProcessTable::isDue(pid_t pid) const
{
    return (static_cast<unsigned>(pid) + m_walks) % m_share == 0;
}

bool ProcessTable::measure(Process &process, const WalkTime &time)
{
    const auto clock = m_source.cpuTime(process.pid);
    if (!clock)
        return false;
    const bool ran = !process.known || *clock != process.cpuTime;
    noteRan(process, ran);
    if (ran || isDue(process.pid))
        return readStat(process, *clock, time);
    process.tenthsOfPercent = 0;
    return true;
}

bool ProcessTable::readStat(Process &process, std::uint64_t clock, const WalkTime &time)
{
    const auto clockBefore = process.cpuTime;
    const auto startBefore = process.startTicks;
    const bool hadFile = process.file.descriptor >= 0;
    const auto stat = m_source.stat(process.pid, process.file, shouldKeepOpen(process));
    m_openFiles = m_openFiles + (process.file.descriptor >= 0 ? 1 : 0) - (hadFile ? 1 : 0);
    if (!stat)
        return false;
    const bool isSame = process.known && stat->startTicks == startBefore;
    takeStat(process, *stat);
    process.cpuTime = clock;
    std::uint64_t used = 0;
    if (isSame)
        used = clock > clockBefore ? clock - clockBefore : 0;
    else if (time.elapsed > 0 &&
             (!m_source.startTimesAreLive() || stat->startTicks + 1 >= time.lastWalkTicks))
        used = clock; // it began within the interval: all it has used, it used now
    process.tenthsOfPercent = tenthsOfPercent(used, time);
    return true;
}

void ProcessTable::noteRan(Process &process, bool ran)
{
    constexpr std::uint8_t most = std::numeric_limits<std::uint8_t>::max();
    if (ran) {
        process.walksAsleep = 0;
        process.walksAwake = process.walksAwake < most ? process.walksAwake + 1 : most;
        return;
    }
    process.walksAwake = 0;
    process.walksAsleep = process.walksAsleep < most ? process.walksAsleep + 1 : most;
    if (process.walksAsleep >= asleepToClose)
        closeFile(process);
}

bool ProcessTable::shouldKeepOpen(const Process &process) const
{
    return process.file.descriptor < 0 && process.walksAwake >= awakeToKeep &&
           m_openFiles < mostOpenFiles;
}

void ProcessTable::closeFile(Process &process)
{
    if (process.file.descriptor < 0)
        return;
    m_source.close(process.file);
    --m_openFiles;
}

void ProcessTable::count(const Process &process)
{
    ++m_counts.total;
    m_counts.threads += process.threads;
    switch (process.state) {
    case 'R':
        ++m_counts.running;
        break;
    case 'D':
        ++m_counts.stuck;
        break;
    case 'T':
    case 't':
        ++m_counts.stopped;
        break;
    case 'Z':
        ++m_counts.zombie;
        break;
    default:
        ++m_counts.sleeping;
    }
}

const std::vector<std::uint32_t> &ProcessTable::sorted(SortKey key, std::size_t limit)
{
    m_order.resize(m_processes.size());
    for (std::uint32_t i = 0; i < m_order.size(); ++i)
        m_order[i] = i;
    const auto before = [&](std::uint32_t leftIndex, std::uint32_t rightIndex) {
        const auto &left = m_processes[leftIndex];
        const auto &right = m_processes[rightIndex];
        if (key == SortKey::Memory && left.residentPages != right.residentPages)
            return left.residentPages > right.residentPages;
        return std::tie(right.tenthsOfPercent, right.cpuTime, left.pid) <
               std::tie(left.tenthsOfPercent, left.cpuTime, right.pid);
    };
    const auto rows = std::min(limit, m_order.size());
    std::partial_sort(m_order.begin(), m_order.begin() + static_cast<std::ptrdiff_t>(rows),
                      m_order.end(), before);
    m_order.resize(rows);
    return m_order;
}

void ProcessTable::refreshSizes(std::uint32_t index)
{
    auto &process = m_processes[index];
    const auto stat = m_source.stat(process.pid, process.file, false);
    if (stat && stat->startTicks == process.startTicks)
        takeSizes(process, *stat);
}

} // namespace pulsebar::top
