#pragma once

#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What each process sends and receives, as the menu and the preferences reach it.
class NetworkMonitor
{
public:
    virtual ~NetworkMonitor() = default;

    virtual bool runNettop() const = 0;
    /// Starts or stops the monitoring of processes' traffic.
    virtual void setRunNettop(bool on) = 0;
    /// Seconds between two dictionaries; while it runs, the first of them comes at once.
    virtual void setRefreshSec(int seconds) = 0;
    /// The newest dictionary, replaced whole and never edited; absent before the first one. It
    /// stays when the monitoring stops. It has an entry per process and, where processes may not be
    /// seen, one per user, by name:
    /// - "name" (QString), the process's name, "." and its number;
    /// - "bytes_in", "bytes_out" (qint64), what was received and sent over TCP, in bytes;
    /// - "bytes_in_delta", "bytes_out_delta" (double), their growth since the dictionary before;
    ///   0 (int) for an entry that was not in it;
    /// - "subprocess", a QVariantList of connections: "type" ("tcp4"), "address"
    ///   ("10.0.1.2:50123<->192.0.2.7:443"), "interface", "state" (QString), "bytes_in",
    ///   "bytes_out" (qint64). A "type" or an "address" that is not told is not in it.
    virtual std::optional<QVariantMap> topDict() const = 0;
};

} // namespace pulsebar
