#pragma once

namespace pulsebar::titles {

/// What the status item can show. The numbers are stored in the settings and used as menu tags.
enum TitleType {
    kCpuUsage = 1,
    kNetworkIn = 2,
    kNetworkOut = 3,
    kBattery = 4,
    kDiskRead = 5,
    kDiskWrite = 6,
    kRotate = 7,         ///< one of the chosen values per sample
    kIconOnly = 8,       ///< the busiest process's icon, no text
    kBusiestProcess = 9, ///< the busiest process's share and icon
    kTemperature = 10,
    kFanSpeed = 11,
};
inline constexpr int kFirstType = kCpuUsage;
inline constexpr int kLastType = kFanSpeed;

} // namespace pulsebar::titles
