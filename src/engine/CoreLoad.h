#pragma once

#include "platform/Counters.h"

#include <QVariantMap>

#include <map>
#include <vector>

namespace pulsebar {

/// One processor's load over the last interval.
struct CoreEntry
{
    int number = 0; ///< the kernel's number of the processor
    /// "user", "nice", "idle", "kernel", "totalUsage": fractions of the interval's ticks, double.
    /// Not-a-number when the interval had no ticks; a counter that went back gives what unsigned
    /// arithmetic gives.
    QVariantMap shares;
};

/// Turns the processors' cumulative ticks into loads between two calls.
class CoreLoad
{
public:
    explicit CoreLoad(CoreTicksSource &source)
        : m_source(source)
    {
    }

    /// One entry per processor that was also there at the previous call, in the source's order.
    /// Empty on the first call and when the source does not answer. A processor that went away
    /// and came back starts anew.
    std::vector<CoreEntry> CPUUsageInfo();

private:
    CoreTicksSource &m_source;
    std::map<int, CoreTicks> m_previous; ///< by the processor's number
};

} // namespace pulsebar
