#include "platform/linux_/KernelFacts.h"

#include "platform/linux_/BlockDevices.h"
#include "platform/linux_/low/Scan.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/hardware_text.h"
#include "platform/linux_/low/proc_meminfo.h"

#include <sys/utsname.h>

#include <dirent.h>
#include <memory>
#include <set>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

const std::string cpu0 = "/sys/devices/system/cpu/cpu0/";

template <typename Value> std::optional<Value> positive(std::optional<Value> value)
{
    return value && *value > 0 ? value : std::nullopt;
}

std::optional<std::int64_t> scaled(std::optional<std::int64_t> value, std::int64_t factor)
{
    std::int64_t product = 0;
    if (!value || __builtin_mul_overflow(*value, factor, &product))
        return std::nullopt;
    return product;
}

std::optional<std::int64_t> bytesOf(std::optional<std::uint64_t> kibibytes)
{
    if (!kibibytes || *kibibytes > (1ULL << 52U))
        return std::nullopt;
    return static_cast<std::int64_t>(*kibibytes) * 1024;
}

} // namespace

KernelFacts::KernelFacts(Sysroot root)
    : m_root(std::move(root))
{
}

std::optional<std::string> KernelFacts::text(int selector) const
{
    switch (static_cast<SystemFact>(selector)) {
    case SystemFact::Machine:
    case SystemFact::MachineArchitecture:
        return architecture();
    case SystemFact::Model:
        return model();
    case SystemFact::DiskNames:
        return diskNames();
    case SystemFact::DiskStatistics:
        return diskStatistics();
    default:
        return std::nullopt;
    }
}

std::optional<std::int64_t> KernelFacts::number(int selector) const
{
    switch (static_cast<SystemFact>(selector)) {
    case SystemFact::PhysicalMemory:
        return physicalMemory();
    case SystemFact::UserMemory:
        return userMemory();
    case SystemFact::PageSize:
        return positive<std::int64_t>(::sysconf(_SC_PAGESIZE));
    case SystemFact::BusFrequency:
        return deviceTreeCell("/proc/device-tree/cpus/cpu@0/bus-frequency");
    case SystemFact::CpuFrequency:
        return cpuFrequency();
    case SystemFact::CacheLine:
        return cacheLine();
    case SystemFact::L1InstructionCache:
        return cacheSize(1, "Instruction");
    case SystemFact::L1DataCache:
        return cacheSize(1, "Data");
    case SystemFact::L2Cache:
        return cacheSize(2, "Unified");
    case SystemFact::L3Cache:
        return cacheSize(3, "Unified");
    default:
        return std::nullopt;
    }
}

std::optional<std::int64_t> KernelFacts::numberByName(std::string_view name) const
{
    return name == "hw.physicalcpu" ? physicalCores() : std::nullopt;
}

std::optional<std::string> KernelFacts::file(const std::string &absolute) const
{
    return readWholeFile(m_root.path(absolute));
}

std::optional<std::int64_t> KernelFacts::sysNumber(const std::string &absolute) const
{
    const auto content = file(absolute);
    return content ? positive(parseSysNumber(*content)) : std::nullopt;
}

std::optional<std::int64_t> KernelFacts::deviceTreeCell(const std::string &absolute) const
{
    const auto content = file(absolute);
    return content ? positive(parseDeviceTreeCell(*content)) : std::nullopt;
}

std::optional<std::string> KernelFacts::firmwareName(const std::string &absolute) const
{
    const auto content = file(absolute);
    return content ? parseFirmwareName(*content) : std::nullopt;
}

std::optional<std::string> KernelFacts::architecture() const
{
    if (auto recorded = firmwareName("/proc/sys/kernel/arch"))
        return recorded;
    utsname kernel{};
    if (m_root.isRecorded() || ::uname(&kernel) != 0)
        return std::nullopt;
    return std::string(kernel.machine);
}

std::optional<std::string> KernelFacts::model() const
{
    for (const char *place : {"/sys/class/dmi/id/product_name", "/sys/class/dmi/id/board_name",
                              "/proc/device-tree/model", "/sys/firmware/devicetree/base/model"}) {
        if (auto name = firmwareName(place))
            return name;
    }
    return std::nullopt;
}

std::optional<std::string> KernelFacts::diskNames() const
{
    const auto disks = BlockDevices(m_root).list();
    if (!disks)
        return std::nullopt;
    std::string names;
    for (const auto &disk : *disks)
        names += (names.empty() ? "" : " ") + disk;
    return names;
}

std::optional<std::string> KernelFacts::diskStatistics() const
{
    BlockDevices devices(m_root);
    const auto disks = devices.list();
    if (!disks)
        return std::nullopt;
    std::string lines;
    for (const auto &disk : *disks) {
        lines += disk;
        const auto stat = readWholeFile(devices.of(disk, "stat"));
        Scan scan(stat ? std::string_view(*stat).substr(0, stat->find('\n')) : std::string_view());
        while (const auto figure = scan.word())
            lines.append(" ").append(*figure);
        lines += '\n';
    }
    return lines;
}

std::optional<std::int64_t> KernelFacts::physicalMemory() const
{
    const auto content = file("/proc/meminfo");
    return content ? positive(bytesOf(parseMemInfo(*content).memTotal)) : std::nullopt;
}

std::optional<std::int64_t> KernelFacts::userMemory() const
{
    const auto content = file("/proc/meminfo");
    if (!content)
        return std::nullopt;
    const MemInfo memory = parseMemInfo(*content);
    auto free = bytesOf(memory.memTotal);
    for (const auto &wired :
         {memory.unevictable, memory.sUnreclaim, memory.kernelStack, memory.pageTables}) {
        if (free)
            *free -= bytesOf(wired).value_or(0);
    }
    return positive(free);
}

std::optional<std::int64_t> KernelFacts::cpuFrequency() const
{
    constexpr std::int64_t hertzPerKilohertz = 1000;
    constexpr std::int64_t hertzPerMegahertz = 1'000'000;
    if (auto base = scaled(sysNumber(cpu0 + "cpufreq/base_frequency"), hertzPerKilohertz))
        return base;
    if (auto nominal = scaled(sysNumber(cpu0 + "acpi_cppc/nominal_freq"), hertzPerMegahertz))
        return nominal;
    if (auto highest = scaled(sysNumber(cpu0 + "cpufreq/cpuinfo_max_freq"), hertzPerKilohertz))
        return highest;
    if (auto clock = deviceTreeCell("/proc/device-tree/cpus/cpu@0/clock-frequency"))
        return clock;
    const auto cpuinfo = file("/proc/cpuinfo");
    return cpuinfo ? parseCpuMegahertz(*cpuinfo) : std::nullopt;
}

std::optional<std::int64_t> KernelFacts::physicalCores() const
{
    const std::string folder = "/sys/devices/system/cpu/";
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(m_root.path(folder).c_str()),
                                                      &::closedir);
    // The threads of a core all tell the same set; one that is offline tells none.
    std::set<std::string> cores;
    while (const dirent *entry = stream ? ::readdir(stream.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with("cpu"))
            continue;
        if (auto threads = file(folder + entry->d_name + "/topology/thread_siblings_list"))
            cores.insert(*std::move(threads));
    }
    return positive<std::int64_t>(static_cast<std::int64_t>(cores.size()));
}

std::optional<std::int64_t> KernelFacts::cacheLine() const
{
    return sysNumber(cpu0 + "cache/index0/coherency_line_size");
}

std::optional<std::int64_t> KernelFacts::cacheSize(int level, const std::string &kind) const
{
    // Caches are numbered without gaps; no processor describes more than a handful.
    constexpr int most = 16;
    for (int index = 0; index < most; ++index) {
        const std::string folder = cpu0 + "cache/index" + std::to_string(index) + '/';
        const auto type = firmwareName(folder + "type");
        if (!type)
            break;
        if (*type != kind || sysNumber(folder + "level") != level)
            continue;
        const auto size = file(folder + "size");
        return size ? positive(parseCacheSize(*size)) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace pulsebar
