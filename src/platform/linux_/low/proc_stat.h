#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace pulsebar {

/// Cumulative ticks (USER_HZ, 1/100 s) of one processor or of all, folded as everywhere in the
/// program: kernel = system + irq + softirq, idle = idle + iowait. Steal is not counted; guest time
/// is already part of the kernel's user and nice figures and is not counted twice.
struct CpuTicks
{
    std::uint64_t user = 0;
    std::uint64_t nice = 0;
    std::uint64_t kernel = 0;
    std::uint64_t idle = 0;
};

/// The ticks of the processor with the kernel's number `number`.
struct NumberedCpuTicks
{
    int number = 0;
    CpuTicks ticks;
};

/// The "cpu" line of /proc/stat (the sum over all processors); absent without such a line.
std::optional<CpuTicks> parseTotalTicks(std::string_view text);

/// What else a sampler wants from /proc/stat, in one walk over its text.
struct ProcStatSummary
{
    std::optional<CpuTicks> total;
    int processors = 0;                   ///< number of "cpuN" lines: processors online
    std::optional<std::uint64_t> forks;   ///< processes and threads made since boot
    std::optional<std::uint64_t> running; ///< threads that run or wait for a processor
    std::optional<std::uint64_t> blocked; ///< threads that wait for a disk
};

ProcStatSummary parseProcStatSummary(std::string_view text);

/// The "cpuN" lines of /proc/stat, in ascending order of N; processors that are offline are not
/// listed by the kernel. Absent when there is no such line. A malformed line is left out; columns
/// that an old kernel does not print count as 0.
std::optional<std::vector<NumberedCpuTicks>> parseNumberedTicks(std::string_view text);

} // namespace pulsebar
