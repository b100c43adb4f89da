#pragma once

#include "platform/Counters.h"
#include "platform/linux_/BlockDevices.h"
#include "platform/linux_/low/SmallFile.h"

#include <map>

namespace pulsebar {

/// Counters of the whole disks from /sys/block/NAME/stat (the kernel's "Block layer statistics").
/// Bytes are sectors of 512 bytes, times are the kernel's milliseconds given in nanoseconds. The
/// kernel counts neither errors nor retries nor latency per device, so these are absent.
class SysBlockDisks : public DiskCountersSource
{
public:
    explicit SysBlockDisks(const Sysroot &root);
    std::optional<std::vector<DiskCounters>> readDiskCounters() override;

private:
    SmallFile &statOf(const std::string &name);
    void forgetAllBut(const std::vector<std::string> &names);

    BlockDevices m_devices;
    std::map<std::string, SmallFile> m_stats; ///< kept open, by disk name
};

} // namespace pulsebar
