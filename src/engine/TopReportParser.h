#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What one chunk of the sampler's output says. Amounts stay texts, as they were printed.
struct TopReport
{
    /// The whole chunk; absent when it is not valid UTF-8, and then nothing else is found in it.
    std::optional<QString> text;
    /// Word to amount from the "PhysMem: " line, e.g. "used" to "8167M"; may be empty.
    QVariantMap memoryStats;
    /// Percent as printed, without the sign.
    std::optional<QString> user;
    std::optional<QString> sys;
    std::optional<QString> idle;
    /// 100 minus idle in single precision, six decimals; "100.000000" when there is no idle.
    QString total;
    /// Process entries, at most as many as were asked for. Keys "PID", "ProcessName", "CPUUsage"
    /// (a fraction, six decimals), "CPUTime", "Thread", "User", "MachMessageSent",
    /// "MachMessageRecieve", "UNIXSystemCall", "MachSystemCall", "EnergyUsage", "PageIns",
    /// "RealMemorySize"; a column that says "N/A" is left out. An empty row is an empty entry.
    QVariantList processList;
    /// Process name to its "EnergyUsage"; empty when no row had one.
    QVariantMap energyUsageDict;
    /// Sum of the rows' "EnergyUsage".
    float energyConsumption = 0.0F;
};

/// Parses one chunk of the sampler's output: a header with a "PhysMem: " line and a "CPU usage: "
/// line, a line of column heads that holds "%CPU", and one row per process. Markers are searched
/// ignoring case; what is missing is absent, and no input is an error. Takes linear time.
///
/// A row is split at blanks. The token where the CPU column is due belongs to the process name
/// as long as it does not look like a CPU share: one that is 0 but not "0.0", or that has neither
/// "." nor ",". So names with blanks come back whole.
/// @param listMax number of rows to read
TopReport parseTopReport(const QByteArray &data, int listMax);

} // namespace pulsebar
