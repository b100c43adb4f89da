#pragma once

#include <cstdint>

namespace pulsebar::top {

/// The nearest whole number of one that is not negative. (The library's functions for this would
/// need one more shared library in memory.)
inline std::uint64_t rounded(double value)
{
    return (static_cast<std::uint64_t>(value * 2) + 1) / 2;
}

} // namespace pulsebar::top
