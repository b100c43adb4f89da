#pragma once

#include "platform/Counters.h"

#include <QVariantMap>

namespace pulsebar {

/// Turns the interfaces' cumulative counters into rates between two calls.
class NetworkRates
{
public:
    explicit NetworkRates(InterfaceCountersSource &source)
        : m_source(source)
    {
    }

    /// "InPackets", "InErrors", "InBytes", "OutPackets", "OutErrors", "OutBytes", "OutCollisions":
    /// quint64 per second, summed over the interfaces that are up, at the bottom of their stack and
    /// not loopback. Seven zeros until packets were counted once; empty when the source does
    /// not answer. Totals that shrink give what unsigned arithmetic gives.
    /// @param interval seconds since the previous call, at least 1
    QVariantMap netStatistics(int interval);

private:
    struct Counter
    {
        quint64 previous = 0;
        quint64 current = 0;
        void shift() { previous = current; }
        quint64 delta() const { return current - previous; }
    };
    struct Direction
    {
        Counter packets;
        Counter bytes;
        Counter errors;
        Counter collisions; ///< of outgoing packets only
        void shift();
        void clear();
    };
    void addUp(const InterfaceCounters &counters);

    InterfaceCountersSource &m_source;
    Direction m_in;
    Direction m_out;
};

} // namespace pulsebar
