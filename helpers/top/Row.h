#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pulsebar::top {

/// One process as a report shows it. What may not be read is absent and prints "N/A".
struct Row
{
    int pid = 0;
    std::string name;                  ///< in the form of nameForRow
    std::uint32_t tenthsOfPercent = 0; ///< CPU in 1/1000 of one core
    std::uint64_t cpuTime = 0;         ///< ns
    std::uint64_t threads = 0;
    std::optional<std::uint64_t> runningThreads; ///< printed when it is known and not 0
    std::optional<std::string> user;             ///< one word
    std::optional<std::uint64_t> calls;          ///< read and write calls since its start
    double wakeUpsPerSecond = 0;
    std::uint64_t majorFaults = 0;
    std::uint64_t residentBytes = 0;
    std::uint64_t virtualBytes = 0;
};

} // namespace pulsebar::top
