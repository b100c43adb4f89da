#pragma once

#include "platform/linux_/low/Sysroot.h"

#include <optional>
#include <string>
#include <vector>

namespace pulsebar {

/// Names of the whole disks of this machine, in byte order: the entries of /sys/block that have a
/// `device`, that is, a piece of hardware below them. Partitions are not listed there; loop, ram,
/// zram, device-mapper and md devices have no `device`, and what they carry is counted (if it is
/// stored at all) by the disks below them. The hidden single paths of a multipath NVMe disk are
/// left out, because the disk itself is listed too.
/// Absent when /sys/block cannot be listed.
class BlockDevices
{
public:
    explicit BlockDevices(const Sysroot &root);
    /// Lists anew; only names that were not there the last time are looked into.
    std::optional<std::vector<std::string>> list();
    /// Absolute path of a disk's file, e.g. of("sda", "stat").
    std::string of(const std::string &name, const char *file) const;

private:
    std::optional<std::vector<std::string>> entries() const;
    bool isDisk(const std::string &name) const;

    std::string m_folder;
    std::vector<std::string> m_entries; ///< of the last listing, sorted
    std::vector<std::string> m_disks;
};

} // namespace pulsebar
