#include "engine/DiskRates.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::int64_t NanosecondsPerMillisecond = 1000000;

void put(QVariantMap &entry, const QString &key, std::optional<std::int64_t> value)
{
    if (value)
        entry.insert(key, QVariant::fromValue(static_cast<qint64>(*value)));
}

std::optional<std::int64_t> milliseconds(std::optional<std::int64_t> nanoseconds)
{
    if (!nanoseconds)
        return std::nullopt;
    return *nanoseconds / NanosecondsPerMillisecond;
}

bool didAnything(const DiskCounters &disk)
{
    const std::array counters{disk.readBytes,      disk.writtenBytes,    disk.readErrors,
                              disk.writeErrors,    disk.readLatency,     disk.writeLatency,
                              disk.readOperations, disk.writeOperations, disk.readRetries,
                              disk.writeRetries,   disk.readTime,        disk.writeTime};
    return std::any_of(counters.begin(), counters.end(),
                       [](const auto &counter) { return counter.value_or(0) != 0; });
}

/// Subtraction that wraps, for counters that may hold anything.
qint64 difference(qint64 now, qint64 before)
{
    return static_cast<qint64>(static_cast<quint64>(now) - static_cast<quint64>(before));
}

qint64 sum(qint64 left, qint64 right)
{
    return static_cast<qint64>(static_cast<quint64>(left) + static_cast<quint64>(right));
}

} // namespace

std::optional<qint64> DiskRates::Direction::rateAt(std::size_t position,
                                                   std::optional<qint64> bytes, int interval)
{
    if (!bytes)
        return std::nullopt;
    current.push_back(*bytes);
    if (position >= previous.size())
        return std::nullopt;
    const qint64 rate = difference(*bytes, previous[position]) / interval;
    total = sum(total, rate);
    return rate;
}

void DiskRates::Direction::finish()
{
    previous = std::exchange(current, {});
    total = 0;
}

QVariantMap DiskRates::entryFor(const DiskCounters &disk, std::size_t position, int interval)
{
    QVariantMap entry;
    put(entry, QStringLiteral("IODiskReadBytes"), disk.readBytes);
    put(entry, QStringLiteral("IODiskWrittenBytes"), disk.writtenBytes);
    put(entry, QStringLiteral("IODiskReadBytesPerSec"),
        m_read.rateAt(position, disk.readBytes, interval));
    put(entry, QStringLiteral("IODiskWrittenBytesPerSec"),
        m_write.rateAt(position, disk.writtenBytes, interval));
    put(entry, QStringLiteral("IODiskReadError"), disk.readErrors);
    put(entry, QStringLiteral("IODiskWrittenError"), disk.writeErrors);
    put(entry, QStringLiteral("IODiskReadLatent"), disk.readLatency);
    put(entry, QStringLiteral("IODiskWrittenLatent"), disk.writeLatency);
    put(entry, QStringLiteral("IODiskReadNumber"), disk.readOperations);
    put(entry, QStringLiteral("IODiskWrittenNumber"), disk.writeOperations);
    put(entry, QStringLiteral("IODiskReadRetries"), disk.readRetries);
    put(entry, QStringLiteral("IODiskWrittenRetries"), disk.writeRetries);
    put(entry, QStringLiteral("IODiskReadTime"), milliseconds(disk.readTime));
    put(entry, QStringLiteral("IODiskWrittenTime"), milliseconds(disk.writeTime));
    if (!disk.type.empty())
        entry.insert(QStringLiteral("IODiskType"), QString::fromStdString(disk.type));
    return entry;
}

std::optional<QVariantList> DiskRates::diskStatistics(QVariantMap &sample, int interval)
{
    const auto disks = m_source.readDiskCounters();
    if (!disks)
        return std::nullopt;
    QVariantList entries;
    for (std::size_t position = 0; position < disks->size(); ++position) {
        const DiskCounters &disk = (*disks)[position];
        const QVariantMap entry = entryFor(disk, position, interval);
        if (didAnything(disk))
            entries.prepend(entry);
    }
    sample.insert(QStringLiteral("diskReadBytesPerSec"), m_read.total);
    sample.insert(QStringLiteral("diskWriteBytesPerSec"), m_write.total);
    m_read.finish();
    m_write.finish();
    return entries;
}

} // namespace pulsebar
