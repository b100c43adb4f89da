#include "controller/TitleTexts.h"

#include "util/Format.h"
#include "util/Localisation.h"
#include "util/Sizes.h"
#include "util/Values.h"

namespace pulsebar::titles {

namespace {

const QString &percentFormat()
{
    static const QString format = QStringLiteral("%.1f%%");
    return format;
}

QString percentText(double percent)
{
    return localizedFormat(percentFormat(), percent);
}

/// A size behind its localised label.
QString labelledText(const QString &label, const QString &size)
{
    return localizedFormat(QStringLiteral("%@ %@"), localizedString(label), size);
}

QString labelledSize(const QString &label, const QVariant &bytes)
{
    return labelledText(label, fileSizeString(bytes));
}

QString temperatureText(double degrees, bool fahrenheit)
{
    const QString unit = fahrenheit ? QStringLiteral("\u2109") : QStringLiteral("\u2103");
    return plainFormat(u"CPU:%.0f%@", degrees, unit);
}

QVariantMap firstProcess(const QVariantMap &topDict)
{
    const QVariantList processes = topDict.value(QStringLiteral("ProcessList")).toList();
    return processes.isEmpty() ? QVariantMap() : processes.constFirst().toMap();
}

/// A size at its widest: three digits and a unit would do, but 1000 to 1023 of one unit stay in it.
const QString &widestSize()
{
    static const QString text = QStringLiteral("1023MB");
    return text;
}

} // namespace

QString CPUUsageAsTitle(const QVariantMap &topDict)
{
    return percentText(
        static_cast<double>(floatValueForKey(topDict, QStringLiteral("CPUTotalUsage"))));
}

QString inByteAsTitle(const QVariantMap &topDict)
{
    return labelledSize(QStringLiteral("InByte"),
                        valueForKeyPath(topDict, u"NetStatistics.InBytes"));
}

QString outByteAsTitle(const QVariantMap &topDict)
{
    return labelledSize(QStringLiteral("OutByte"),
                        valueForKeyPath(topDict, u"NetStatistics.OutBytes"));
}

QString batteryStatsAsTitle(const QVariantMap &topDict)
{
    const QVariantMap battery = topDict.value(QStringLiteral("BatteryStats")).toMap();
    if (boolValueForKey(battery, QStringLiteral("FullyCharged")))
        return localizedString(QStringLiteral("Full"));
    return percentText(
        static_cast<double>(floatValueForKey(battery, QStringLiteral("BatteryRemainPercent"))));
}

QString diskReadAsTitle(const QVariantMap &topDict)
{
    return labelledSize(QStringLiteral("DiskRead"),
                        topDict.value(QStringLiteral("diskReadBytesPerSec")));
}

QString diskWriteAsTitle(const QVariantMap &topDict)
{
    return labelledSize(QStringLiteral("DiskWrite"),
                        topDict.value(QStringLiteral("diskWriteBytesPerSec")));
}

QString processUsageAsTitle(const QVariantMap &topDict)
{
    const float share = floatValueForKey(firstProcess(topDict), QStringLiteral("CPUUsage"));
    return percentText(static_cast<double>(share) * 100.0);
}

QString temperatureAsTitle(const QVariantMap &topDict, bool fahrenheit)
{
    const QVariantMap temperatures = topDict.value(QStringLiteral("CPUTemparatures")).toMap();
    const QVariant die = temperatures.value(QStringLiteral("CPU Die"));
    if (!die.isValid())
        return QStringLiteral("N/A");
    return temperatureText(static_cast<double>(floatValue(die)), fahrenheit);
}

QString fanMoveAsTitle(const QVariantMap &topDict)
{
    return plainFormat(u"%.0fRPM", floatValueForKeyPath(topDict, u"FanMove.AverageSpeed"));
}

QString processNameAsTitle(const QVariantMap &process)
{
    return process.value(QStringLiteral("ProcessName")).toString();
}

QString titleOfType(int type, const QVariantMap &topDict, bool fahrenheit)
{
    switch (type) {
    case kCpuUsage:
        return CPUUsageAsTitle(topDict);
    case kNetworkIn:
        return inByteAsTitle(topDict);
    case kNetworkOut:
        return outByteAsTitle(topDict);
    case kBattery:
        return batteryStatsAsTitle(topDict);
    case kDiskRead:
        return diskReadAsTitle(topDict);
    case kDiskWrite:
        return diskWriteAsTitle(topDict);
    case kBusiestProcess:
        return processUsageAsTitle(topDict);
    case kTemperature:
        return temperatureAsTitle(topDict, fahrenheit);
    case kFanSpeed:
        return fanMoveAsTitle(topDict);
    default:
        return {};
    }
}

QString widestTitleOfType(int type, bool fahrenheit)
{
    switch (type) {
    case kCpuUsage:
    case kBattery:
    case kBusiestProcess:
        return percentText(100.0);
    case kNetworkIn:
        return labelledText(QStringLiteral("InByte"), widestSize());
    case kNetworkOut:
        return labelledText(QStringLiteral("OutByte"), widestSize());
    case kDiskRead:
        return labelledText(QStringLiteral("DiskRead"), widestSize());
    case kDiskWrite:
        return labelledText(QStringLiteral("DiskWrite"), widestSize());
    case kTemperature:
        return temperatureText(100.0, fahrenheit);
    case kFanSpeed:
        return QStringLiteral("9999RPM");
    default:
        return {};
    }
}

QString busiestProcess(const QVariantMap &topDict)
{
    return firstProcess(topDict).value(QStringLiteral("PID")).toString();
}

bool batteryIsEnabled(const QVariantMap &topDict)
{
    return boolValue(valueForKeyPath(topDict, u"BatteryStats.BatteryEnabled"));
}

} // namespace pulsebar::titles
