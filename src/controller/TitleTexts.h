#pragma once

#include "menu/TitleTypes.h"

#include <QString>
#include <QVariantMap>
#include <QVector>

/// The texts of the status item, made from one sample.
namespace pulsebar::titles {

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
