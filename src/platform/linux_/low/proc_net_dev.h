#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace pulsebar {

/// One line of /proc/net/dev: cumulative counters of an interface.
struct NetDevLine
{
    std::string_view name; ///< points into the text
    std::uint64_t inBytes = 0;
    std::uint64_t inPackets = 0;
    std::uint64_t outBytes = 0;
    std::uint64_t outPackets = 0;
};

/// All interfaces in the kernel's order; malformed lines are left out.
std::vector<NetDevLine> parseNetDev(std::string_view text);

} // namespace pulsebar
