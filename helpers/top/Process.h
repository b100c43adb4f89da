#pragma once

#include "top/ProcessSource.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace pulsebar::top {

/// What is kept about each process from walk to walk. There may be tens of thousands.
struct Process
{
    static constexpr std::size_t commSpace = 16;

    pid_t pid = 0;
    char state = '?';
    std::uint8_t commLength = 0;  ///< bytes of the name; more than commSpace: cut here
    std::uint8_t walksAwake = 0;  ///< consecutive walks in which it had run, at most 255
    std::uint8_t walksAsleep = 0; ///< consecutive walks in which it had not
    bool known = false;           ///< its stat was read at least once
    KeptFile file;
    std::uint32_t threads = 0;
    std::uint32_t tenthsOfPercent = 0; ///< CPU of the last interval, in 1/1000 of one core
    std::uint64_t cpuTime = 0;         ///< ns
    std::uint64_t startTicks = 0;
    std::uint64_t residentPages = 0;
    std::uint64_t virtualBytes = 0;
    std::uint64_t majorFaults = 0;
    std::array<char, commSpace> comm{};

    std::string_view name() const
    {
        return {comm.data(), commLength < commSpace ? commLength : commSpace};
    }
    bool nameIsCut() const { return commLength > commSpace; }
};

} // namespace pulsebar::top
