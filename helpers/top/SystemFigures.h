#pragma once

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/Sysroot.h"
#include "platform/linux_/low/proc_meminfo.h"
#include "platform/linux_/low/proc_stat.h"
#include "top/ProcessSource.h"

#include <array>
#include <set>
#include <string>

namespace pulsebar::top {

/// Shares of all processors' time in hundredths of a percent.
struct CpuShares
{
    unsigned user = 0; ///< nice included
    unsigned kernel = 0;
    unsigned idle = 0;
};

/// Memory in whole MiB; what the kernel does not tell is absent.
struct MemoryFigures
{
    std::optional<std::uint64_t> wired; ///< can neither be paged nor reclaimed
    std::optional<std::uint64_t> active;
    std::optional<std::uint64_t> inactive;
    std::optional<std::uint64_t> used; ///< used + free = all memory
    std::optional<std::uint64_t> free; ///< available without swapping; the ZFS cache counts as such
    std::optional<std::uint64_t> swapUsed;
    std::optional<std::uint64_t> swapFree;
};

/// Totals since boot.
struct Traffic
{
    std::uint64_t inCount = 0;
    std::uint64_t inBytes = 0;
    std::uint64_t outCount = 0;
    std::uint64_t outBytes = 0;
};

/// What a report's header says about the machine.
struct SystemFigures
{
    std::optional<CpuShares> cpu;
    MemoryFigures memory;
    std::optional<std::array<std::string, 3>> loadAverages;
    std::optional<std::uint64_t> runnableThreads;
    std::optional<Traffic> network; ///< in, out: packets
    std::optional<Traffic> disks;   ///< in: reads, out: writes
    unsigned processors = 1;
    ListHint listHint;
};

/// Shares between two readings. Counters that went backwards count as standing still. Absent when
/// no time passed at all.
std::optional<CpuShares> cpuSharesBetween(const CpuTicks &before, const CpuTicks &after);

/// `zfsCache`: bytes of the ZFS cache, 0 without one.
MemoryFigures memoryFigures(const MemInfo &info, std::uint64_t zfsCache);

/// Reads the machine's figures anew at each call; files are kept open.
class SystemReader
{
public:
    explicit SystemReader(const Sysroot &sysroot);

    /// CPU shares are those since the call before; at the first call, and when no tick passed,
    /// those of the last interval known, else those since boot.
    const SystemFigures &read();

private:
    void readStat();
    void readMemory();
    void readLoad();
    void readNetwork();
    void readDisks();
    void findDevices();
    bool isDevice(const std::string &folder, std::string_view name) const;

    Sysroot m_sysroot;
    SmallFile m_stat;
    SmallFile m_memInfo;
    SmallFile m_loadAverage;
    SmallFile m_netDev;
    SmallFile m_diskStats;
    SmallFile m_zfsCache;
    std::optional<CpuTicks> m_ticks;
    /// Which interfaces and disks are hardware rather than something stacked upon it.
    std::set<std::string, std::less<>> m_interfaces;
    std::set<std::string, std::less<>> m_disks;
    bool m_hasZfs = false;
    unsigned m_readings = 0;
    SystemFigures m_figures;
};

} // namespace pulsebar::top
