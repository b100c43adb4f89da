#pragma once

#include "platform/Counters.h"

#include <QVariantList>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace pulsebar {

/// Turns the disks' cumulative counters into the entries and rates of a sample.
class DiskRates
{
public:
    explicit DiskRates(DiskCountersSource &source)
        : m_source(source)
    {
    }

    /// One entry per disk that ever did anything, in the reverse of the source's order.
    ///
    /// Keys, all signed 64-bit and absent where the system keeps no such counter:
    /// "IODiskReadBytes", "IODiskReadBytesPerSec", "IODiskReadError", "IODiskReadLatent",
    /// "IODiskReadNumber", "IODiskReadRetries", "IODiskReadTime" (milliseconds), the same with
    /// "Written" for "Read", and "IODiskType" (text).
    ///
    /// A rate belongs to the previous call's value at the disk's position among all disks, while
    /// those values stand without gaps: a disk without a byte counter shifts the ones after it.
    /// @param sample receives the sums "diskReadBytesPerSec" and "diskWriteBytesPerSec"
    /// @param interval seconds since the previous call, at least 1
    /// @return absent, and the sample untouched, when the disks cannot be listed
    std::optional<QVariantList> diskStatistics(QVariantMap &sample, int interval);

private:
    /// Byte totals of one direction at the previous and at this call, and the sum of the rates.
    struct Direction
    {
        std::vector<qint64> previous;
        std::vector<qint64> current;
        qint64 total = 0;

        std::optional<qint64> rateAt(std::size_t position, std::optional<qint64> bytes,
                                     int interval);
        void finish();
    };
    QVariantMap entryFor(const DiskCounters &disk, std::size_t position, int interval);

    DiskCountersSource &m_source;
    Direction m_read;
    Direction m_write;
};

} // namespace pulsebar
