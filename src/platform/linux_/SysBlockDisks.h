#pragma once

#include "platform/Counters.h"
#include "platform/linux_/BlockDevices.h"
#include "platform/linux_/low/SmallFile.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pulsebar {

/// Counters of the whole disks from /sys/block/NAME/stat (the kernel's "Block layer statistics").
/// Bytes are sectors of 512 bytes, times are the kernel's milliseconds given in nanoseconds. The
/// kernel counts neither errors nor retries nor latency per device, so these are absent.
///
/// Listing /sys/block costs more than reading a disk, and disks come rarely: it is listed at every
/// fourth reading, and at once when a disk that was there can no longer be read.
class SysBlockDisks : public DiskCountersSource
{
public:
    explicit SysBlockDisks(const Sysroot &root);
    std::optional<std::vector<DiskCounters>> readDiskCounters() override;

private:
    struct Disk
    {
        std::string name;
        SmallFile stat; ///< kept open
    };

    bool list();
    std::vector<DiskCounters> readAll();

    BlockDevices m_devices;
    std::vector<Disk> m_disks; ///< by name
    int m_readingsUntilListing = 0;
    std::size_t m_unreadable = 0; ///< disks whose figures could not be had at the last reading
};

} // namespace pulsebar
