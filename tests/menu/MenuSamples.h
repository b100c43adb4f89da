#pragma once

#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

/// Samples as the monitor publishes them, in parts.
namespace pulsebar::samples {

inline QVariantMap record(double average, double maximum, double minimum)
{
    return {{QStringLiteral("CurrentValue"), average},
            {QStringLiteral("AverageValue"), average},
            {QStringLiteral("MaxValue"), maximum},
            {QStringLiteral("MinValue"), minimum}};
}

inline QVariantMap process(const QString &pid, const QString &name,
                           const QString &share = QStringLiteral("0.125000"))
{
    return {{QStringLiteral("PID"), pid},
            {QStringLiteral("ProcessName"), name},
            {QStringLiteral("CPUUsage"), share},
            {QStringLiteral("User"), QStringLiteral("somebody")}};
}

inline QVariantMap core(double total, double kernel)
{
    return {{QStringLiteral("totalUsage"), total},
            {QStringLiteral("kernel"), kernel},
            {QStringLiteral("user"), 0.2},
            {QStringLiteral("nice"), 0.0},
            {QStringLiteral("idle"), 1.0 - total},
            {QStringLiteral("CPUUsageMinuteStats"), record(total, 0.9, 0.01)}};
}

inline QVariantMap memory()
{
    return {{QStringLiteral("wired"), QStringLiteral("1000M")},
            {QStringLiteral("active"), QStringLiteral("2500M")},
            {QStringLiteral("inactive"), QStringLiteral("500M")},
            {QStringLiteral("used"), QStringLiteral("6000M")},
            {QStringLiteral("free"), QStringLiteral("2000M")}};
}

inline QVariantMap disk()
{
    return {{QStringLiteral("IODiskReadBytesPerSec"), qint64(1536)},
            {QStringLiteral("IODiskWrittenBytesPerSec"), qint64(0)},
            {QStringLiteral("IODiskReadBytes"), qint64(5) << 30},
            {QStringLiteral("IODiskWrittenBytes"), qint64(3) << 20},
            {QStringLiteral("IODiskReadNumber"), qint64(1234)},
            {QStringLiteral("IODiskWrittenNumber"), qint64(77)},
            {QStringLiteral("IODiskReadTime"), qint64(1024)},
            {QStringLiteral("IODiskWrittenTime"), qint64(2048)}};
}

inline QVariantMap traffic(const QString &name, qint64 in, qint64 out, double inDelta,
                           double outDelta)
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("bytes_in"), in},
            {QStringLiteral("bytes_out"), out},
            {QStringLiteral("bytes_in_delta"), inDelta},
            {QStringLiteral("bytes_out_delta"), outDelta},
            {QStringLiteral("subprocess"), QVariantList()}};
}

inline QVariantMap connection(qint64 in, qint64 out)
{
    return {{QStringLiteral("type"), QStringLiteral("tcp4")},
            {QStringLiteral("address"), QStringLiteral("10.0.1.2:50123<->192.0.2.7:443")},
            {QStringLiteral("interface"), QStringLiteral("en0")},
            {QStringLiteral("state"), QStringLiteral("Established")},
            {QStringLiteral("bytes_in"), in},
            {QStringLiteral("bytes_out"), out}};
}

inline QVariantMap fan(float speed)
{
    return {{QStringLiteral("ActualSpeed"), speed}};
}

/// A list of sensors, or of a fan's values, as the monitor hands it out.
inline QVariantList keys(const QStringList &names)
{
    QVariantList list;
    for (const QString &name : names)
        list.append(QVariantMap{{QStringLiteral("Key"), name}});
    return list;
}

} // namespace pulsebar::samples
