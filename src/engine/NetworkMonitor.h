#pragma once

#include <QVariantMap>

namespace pulsebar {

/// What each process sends and receives, as the menu and the preferences reach it.
class NetworkMonitor
{
public:
    virtual ~NetworkMonitor() = default;

    virtual bool runNettop() const = 0;
    /// Starts or stops the monitoring of processes' traffic.
    virtual void setRunNettop(bool on) = 0;
    virtual void setRefreshSec(int seconds) = 0;
    /// The newest dictionary: one entry per process (QVariantMap with "name", "bytes_in",
    /// "bytes_out", "bytes_in_delta", "bytes_out_delta", all 64-bit counts of bytes, and
    /// "subprocess", a list of connections).
    virtual QVariantMap topDict() const = 0;
};

} // namespace pulsebar
