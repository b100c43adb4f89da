#include "platform/linux_/SysBlockDisks.h"

#include "platform/linux_/low/block_stat.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace pulsebar {

namespace {

/// How many readings go by without a listing between two with one.
constexpr int readingsBetweenListings = 3;

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

/// Absent disks are forgotten, and new ones opened, each in its place.
bool SysBlockDisks::list()
{
    const auto names = m_devices.list();
    if (!names)
        return false;
    std::vector<Disk> disks;
    disks.reserve(names->size());
    for (const auto &name : *names) {
        const auto known = std::ranges::find(m_disks, name, &Disk::name);
        disks.push_back(known != m_disks.end() ? std::move(*known)
                                               : Disk{name, SmallFile(m_devices.of(name, "stat"))});
    }
    m_disks = std::move(disks);
    m_readingsUntilListing = readingsBetweenListings;
    return true;
}

std::vector<DiskCounters> SysBlockDisks::readAll()
{
    m_unreadable = 0;
    std::vector<DiskCounters> counters;
    counters.reserve(m_disks.size());
    for (auto &disk : m_disks) {
        const auto text = disk.stat.read();
        m_unreadable += text ? 0U : 1U;
        counters.push_back(countersOf(disk.name, text ? parseBlockStat(*text) : std::nullopt));
    }
    return counters;
}

std::optional<std::vector<DiskCounters>> SysBlockDisks::readDiskCounters()
{
    const bool wasDue = m_readingsUntilListing-- <= 0;
    if (wasDue && !list())
        return std::nullopt;
    const auto unreadableBefore = m_unreadable;
    auto counters = readAll();
    if (wasDue || m_unreadable <= unreadableBefore)
        return counters;
    // A disk has gone since the last listing.
    if (!list())
        return std::nullopt;
    return readAll();
}

} // namespace pulsebar
