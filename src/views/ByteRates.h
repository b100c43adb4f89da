#pragma once

#include <QString>

#include <array>

namespace pulsebar::byterates {

/// Units in which people give a rate; steps of 1024, as sizes are shown everywhere else.
struct Unit
{
    const char *text;
    double bytes; ///< per second
};

inline constexpr std::array kUnits{
    Unit{"B/s", 1.0},
    Unit{"KB/s", 1024.0},
    Unit{"MB/s", 1024.0 * 1024.0},
    Unit{"GB/s", 1024.0 * 1024.0 * 1024.0},
};
/// Decimals of a rate in all units but bytes.
inline constexpr int kDecimals = 3;

/// The largest unit in which the rate is at least 1 and is told exactly; an index of kUnits.
int unitFor(double bytesPerSecond);

} // namespace pulsebar::byterates
