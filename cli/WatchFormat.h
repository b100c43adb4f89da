#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace pulsebar::cli {

/// What a line of `watch` tells.
struct WatchSample
{
    QString title;
    qint64 time = 0;            ///< milliseconds since the epoch
    std::optional<double> load; ///< mean load of the cores, 0.0 to 1.0; absent before it is known
};

/// Lays the samples of `watch` out, one line each.
class WatchFormat
{
public:
    virtual ~WatchFormat() = default;
    /// Lines that stand before the first sample, each ended; usually none.
    virtual QString header() const { return {}; }
    /// The line of one sample, without its end.
    virtual QString line(const WatchSample &sample) = 0;
    /// Whether `load` is printed, and so worth asking for.
    virtual bool needsLoad() const { return false; }

    /// @param name "plain", "json", "waybar" or "i3bar"; nothing for any other
    static std::unique_ptr<WatchFormat> named(const QString &name);
};

} // namespace pulsebar::cli
