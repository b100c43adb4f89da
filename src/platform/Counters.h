#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pulsebar {

/// Cumulative ticks of one logical processor since boot, as the kernel folds them for us:
/// kernel = system + irq + softirq, idle = idle + iowait; steal and guest time are left out.
struct CoreTicks
{
    int number = 0; ///< the kernel's number of the processor; numbers may have gaps
    std::uint64_t user = 0;
    std::uint64_t nice = 0;
    std::uint64_t kernel = 0;
    std::uint64_t idle = 0;
};

/// Where the per-processor ticks come from.
class CoreTicksSource
{
public:
    virtual ~CoreTicksSource() = default;
    /// One entry per processor that is online now, in ascending order of number.
    /// Absent when the system does not tell.
    virtual std::optional<std::vector<CoreTicks>> readCoreTicks() = 0;
};

/// Cumulative counters of one network interface.
struct InterfaceCounters
{
    std::string name;
    bool up = false;
    bool loopback = false;
    /// True for the bottom of an interface stack: what it carries is counted by no other interface.
    bool linkLevel = false;
    std::uint64_t inPackets = 0;
    std::uint64_t inErrors = 0;
    std::uint64_t inBytes = 0;
    std::uint64_t outPackets = 0;
    std::uint64_t outErrors = 0;
    std::uint64_t outBytes = 0;
    std::uint64_t collisions = 0;
};

class InterfaceCountersSource
{
public:
    virtual ~InterfaceCountersSource() = default;
    /// All interfaces of the program's network namespace; absent when the list cannot be had.
    virtual std::optional<std::vector<InterfaceCounters>> readInterfaceCounters() = 0;
};

/// Cumulative counters of one disk. A counter that the system does not keep is absent.
struct DiskCounters
{
    std::string name;
    std::string type; ///< kind of device in the system's words; empty when unknown
    std::optional<std::int64_t> readBytes;
    std::optional<std::int64_t> writtenBytes;
    std::optional<std::int64_t> readErrors;
    std::optional<std::int64_t> writeErrors;
    std::optional<std::int64_t> readLatency;
    std::optional<std::int64_t> writeLatency;
    std::optional<std::int64_t> readOperations;
    std::optional<std::int64_t> writeOperations;
    std::optional<std::int64_t> readRetries;
    std::optional<std::int64_t> writeRetries;
    std::optional<std::int64_t> readTime;  ///< nanoseconds spent reading
    std::optional<std::int64_t> writeTime; ///< nanoseconds spent writing
};

class DiskCountersSource
{
public:
    virtual ~DiskCountersSource() = default;
    /// Every whole disk, in the system's order; absent when the disks cannot be listed.
    /// A disk whose statistics cannot be read stays in the list as an entry without counters.
    virtual std::optional<std::vector<DiskCounters>> readDiskCounters() = 0;
};

} // namespace pulsebar
