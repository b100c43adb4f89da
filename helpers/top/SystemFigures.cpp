#include "top/SystemFigures.h"

#include "platform/linux_/low/Scan.h"
#include "platform/linux_/low/proc_diskstats.h"
#include "platform/linux_/low/proc_loadavg.h"
#include "platform/linux_/low/proc_net_dev.h"
#include "top/Rounding.h"

#include <algorithm>
#include <unistd.h>

namespace pulsebar::top {

namespace {

constexpr std::uint64_t kibPerMib = 1024;
constexpr std::uint64_t bytesPerSector = 512;
/// Devices come and go rarely: which ones are hardware is looked up anew once in so many readings.
constexpr unsigned readingsPerSearch = 32;

std::uint64_t grown(std::uint64_t before, std::uint64_t after)
{
    return after > before ? after - before : 0;
}

std::optional<std::uint64_t> sum(std::initializer_list<std::optional<std::uint64_t>> parts)
{
    std::optional<std::uint64_t> total;
    for (const auto &part : parts) {
        if (part)
            total = total.value_or(0) + *part;
    }
    return total;
}

std::optional<std::uint64_t> inMib(std::optional<std::uint64_t> kib)
{
    if (kib)
        *kib /= kibPerMib;
    return kib;
}

/// "size 4 123456" in the ZFS cache's statistics; 0 when it is not there.
std::uint64_t zfsCacheSize(std::string_view text)
{
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        if (scan.word() == "size" && scan.skipWords(1))
            return scan.number().value_or(0);
    }
    return 0;
}

} // namespace

std::optional<CpuShares> cpuSharesBetween(const CpuTicks &before, const CpuTicks &after)
{
    const auto user = grown(before.user, after.user) + grown(before.nice, after.nice);
    const auto kernel = grown(before.kernel, after.kernel);
    const auto idle = grown(before.idle, after.idle);
    const auto all =
        static_cast<double>(user) + static_cast<double>(kernel) + static_cast<double>(idle);
    if (all <= 0)
        return std::nullopt;
    const auto share = [all](std::uint64_t ticks) {
        return static_cast<unsigned>(rounded(static_cast<double>(ticks) * 10'000 / all));
    };
    return CpuShares{share(user), share(kernel), share(idle)};
}

MemoryFigures memoryFigures(const MemInfo &info, std::uint64_t zfsCache)
{
    MemoryFigures figures;
    figures.wired = inMib(sum({info.unevictable, info.sUnreclaim, info.kernelStack, info.pageTables,
                               info.secPageTables}));
    figures.active = inMib(info.active);
    figures.inactive = inMib(info.inactive);
    // Kernels before 3.14 do not estimate what is available.
    auto free =
        info.memAvailable ? info.memAvailable : sum({info.memFree, info.buffers, info.cached});
    if (info.memTotal && free) {
        const auto total = *info.memTotal / kibPerMib;
        figures.free = std::min((*free + zfsCache / 1024) / kibPerMib, total);
        figures.used = total - *figures.free;
    }
    if (info.swapTotal && info.swapFree) {
        figures.swapFree = inMib(info.swapFree);
        figures.swapUsed = grown(*info.swapFree, *info.swapTotal) / kibPerMib;
    }
    return figures;
}

SystemReader::SystemReader(const Sysroot &sysroot)
    : m_sysroot(sysroot)
    , m_stat(sysroot.path("/proc/stat"))
    , m_memInfo(sysroot.path("/proc/meminfo"))
    , m_loadAverage(sysroot.path("/proc/loadavg"))
    , m_netDev(sysroot.path("/proc/net/dev"))
    , m_diskStats(sysroot.path("/proc/diskstats"))
    , m_zfsCache(sysroot.path("/proc/spl/kstat/zfs/arcstats"))
{
}

const SystemFigures &SystemReader::read()
{
    if (m_readings++ % readingsPerSearch == 0)
        findDevices();
    readStat();
    readMemory();
    readLoad();
    readNetwork();
    readDisks();
    return m_figures;
}

void SystemReader::readStat()
{
    const auto summary = parseProcStatSummary(m_stat.read().value_or(std::string_view()));
    m_figures.processors = static_cast<unsigned>(std::max(summary.processors, 1));
    m_figures.runnableThreads = summary.running;
    m_figures.listHint.forks = summary.forks;
    if (!summary.total) {
        m_figures.cpu.reset();
        return;
    }
    auto shares = m_ticks ? cpuSharesBetween(*m_ticks, *summary.total) : std::nullopt;
    if (!shares && !m_figures.cpu)
        shares = cpuSharesBetween(CpuTicks(), *summary.total);
    if (shares)
        m_figures.cpu = shares;
    m_ticks = summary.total;
}

void SystemReader::readMemory()
{
    const auto info = parseMemInfo(m_memInfo.read().value_or(std::string_view()));
    const auto cache = m_hasZfs ? m_zfsCache.read() : std::nullopt;
    m_figures.memory = memoryFigures(info, zfsCacheSize(cache.value_or(std::string_view())));
}

void SystemReader::readLoad()
{
    const auto load = parseLoadAverage(m_loadAverage.read().value_or(std::string_view()));
    m_figures.loadAverages.reset();
    m_figures.listHint.lastPid.reset();
    if (!load)
        return;
    m_figures.loadAverages = {std::string(load->oneMinute), std::string(load->fiveMinutes),
                              std::string(load->fifteenMinutes)};
    m_figures.listHint.lastPid = load->lastPid;
}

void SystemReader::readNetwork()
{
    const auto text = m_netDev.read();
    m_figures.network.reset();
    if (!text)
        return;
    Traffic total;
    for (const auto &line : parseNetDev(*text)) {
        // In a container no interface is hardware: each of its own counts.
        const bool counts =
            m_interfaces.empty() ? line.name != "lo" : m_interfaces.contains(line.name);
        if (!counts)
            continue;
        total.inCount += line.inPackets;
        total.inBytes += line.inBytes;
        total.outCount += line.outPackets;
        total.outBytes += line.outBytes;
    }
    m_figures.network = total;
}

void SystemReader::readDisks()
{
    const auto text = m_diskStats.read();
    m_figures.disks.reset();
    if (!text)
        return;
    Traffic total;
    for (const auto &line : parseDiskStats(*text)) {
        if (!m_disks.contains(line.name))
            continue;
        total.inCount += line.reads;
        total.inBytes += line.sectorsRead * bytesPerSector;
        total.outCount += line.writes;
        total.outBytes += line.sectorsWritten * bytesPerSector;
    }
    m_figures.disks = total;
}

bool SystemReader::isDevice(const std::string &folder, std::string_view name) const
{
    auto path = m_sysroot.path(folder);
    path.append(name).append("/device");
    return ::access(path.c_str(), F_OK) == 0;
}

void SystemReader::findDevices()
{
    m_hasZfs = m_zfsCache.read().has_value();
    m_interfaces.clear();
    for (const auto &line : parseNetDev(m_netDev.read().value_or(std::string_view()))) {
        if (isDevice("/sys/class/net/", line.name))
            m_interfaces.emplace(line.name);
    }
    m_disks.clear();
    for (const auto &line : parseDiskStats(m_diskStats.read().value_or(std::string_view()))) {
        // The folder of a name with a slash ("cciss/c0d0") has an exclamation mark in its place.
        std::string folder(line.name);
        std::replace(folder.begin(), folder.end(), '/', '!');
        if (isDevice("/sys/block/", folder))
            m_disks.emplace(line.name);
    }
}

} // namespace pulsebar::top
