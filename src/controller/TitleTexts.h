#pragma once

#include <QString>
#include <QVariantMap>
#include <QVector>

/// The texts of the status item, made from one sample.
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

/// The producers read the sample `topDict`; what it does not hold reads as 0.
QString CPUUsageAsTitle(const QVariantMap &topDict);
QString inByteAsTitle(const QVariantMap &topDict);
QString outByteAsTitle(const QVariantMap &topDict);
/// "Full" in place of a percentage when the battery is fully charged.
QString batteryStatsAsTitle(const QVariantMap &topDict);
QString diskReadAsTitle(const QVariantMap &topDict);
QString diskWriteAsTitle(const QVariantMap &topDict);
QString processUsageAsTitle(const QVariantMap &topDict);
/// Temperatures are in the chosen scale already; "N/A" without a reading of the processor.
QString temperatureAsTitle(const QVariantMap &topDict, bool fahrenheit);
QString fanMoveAsTitle(const QVariantMap &topDict);
/// The name of one process of the list.
QString processNameAsTitle(const QVariantMap &process);

/// The producer's text of a type; empty for a type without one (rotation, icon only, strangers).
QString titleOfType(int type, const QVariantMap &topDict, bool fahrenheit);

/// The text of a type with its value at its widest, so that a panel can keep its width.
QString widestTitleOfType(int type, bool fahrenheit);

/// The process number of the busiest process; empty without a process.
QString busiestProcess(const QVariantMap &topDict);

/// Whether the sample tells of a battery in use.
bool batteryIsEnabled(const QVariantMap &topDict);

} // namespace pulsebar::titles
