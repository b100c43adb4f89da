#include "platform/linux_/SysBlockDisks.h"

#include "platform/linux_/low/block_stat.h"

#include <algorithm>
#include <limits>

namespace pulsebar {

namespace {

/// Absent when the product does not fit: no disk has counted that much, so the file is damaged.
std::optional<std::int64_t> scaled(std::uint64_t value, std::int64_t factor)
{
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() / factor))
        return std::nullopt;
    return static_cast<std::int64_t>(value) * factor;
}

DiskCounters countersOf(const std::string &name, const std::optional<BlockStat> &stat)
{
    constexpr std::int64_t sectorSize = 512;
    constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
    DiskCounters disk;
    disk.name = name;
    if (!stat)
        return disk;
    disk.readBytes = scaled(stat->readSectors, sectorSize);
    disk.writtenBytes = scaled(stat->writtenSectors, sectorSize);
    disk.readOperations = scaled(stat->readOperations, 1);
    disk.writeOperations = scaled(stat->writeOperations, 1);
    disk.readTime = scaled(stat->readMilliseconds, nanosecondsPerMillisecond);
    disk.writeTime = scaled(stat->writeMilliseconds, nanosecondsPerMillisecond);
    return disk;
}

} // namespace

SysBlockDisks::SysBlockDisks(const Sysroot &root)
    : m_devices(root)
{
}

SmallFile &SysBlockDisks::statOf(const std::string &name)
{
    return m_stats.try_emplace(name, m_devices.of(name, "stat")).first->second;
}

void SysBlockDisks::forgetAllBut(const std::vector<std::string> &names)
{
    std::erase_if(m_stats, [&](const auto &entry) {
        return !std::binary_search(names.begin(), names.end(), entry.first);
    });
}

std::optional<std::vector<DiskCounters>> SysBlockDisks::readDiskCounters()
{
    const auto names = m_devices.list();
    if (!names)
        return std::nullopt;
    std::vector<DiskCounters> disks;
    disks.reserve(names->size());
    for (const auto &name : *names) {
        const auto text = statOf(name).read();
        disks.push_back(countersOf(name, text ? parseBlockStat(*text) : std::nullopt));
    }
    if (m_stats.size() > names->size())
        forgetAllBut(*names);
    return disks;
}

} // namespace pulsebar
