#include "engine/NetworkRates.h"

namespace pulsebar {

void NetworkRates::Direction::shift()
{
    packets.shift();
    bytes.shift();
    errors.shift();
    collisions.shift();
}

void NetworkRates::Direction::clear()
{
    packets.current = 0;
    bytes.current = 0;
    errors.current = 0;
    collisions.current = 0;
}

void NetworkRates::addUp(const InterfaceCounters &counters)
{
    if (!counters.up || counters.loopback || !counters.linkLevel)
        return;
    m_in.packets.current += counters.inPackets;
    m_in.errors.current += counters.inErrors;
    m_in.bytes.current += counters.inBytes;
    m_out.packets.current += counters.outPackets;
    m_out.errors.current += counters.outErrors;
    m_out.bytes.current += counters.outBytes;
    m_out.collisions.current += counters.collisions;
}

QVariantMap NetworkRates::netStatistics(int interval)
{
    m_in.shift();
    m_out.shift();
    const bool first = m_in.packets.previous == 0;
    const auto interfaces = m_source.readInterfaceCounters();
    if (!interfaces)
        return {};
    m_in.clear();
    m_out.clear();
    for (const InterfaceCounters &counters : *interfaces)
        addUp(counters);
    const auto rate = [first, interval](const Counter &counter) {
        return QVariant(first ? quint64(0) : counter.delta() / static_cast<quint64>(interval));
    };
    return {{QStringLiteral("InPackets"), rate(m_in.packets)},
            {QStringLiteral("InErrors"), rate(m_in.errors)},
            {QStringLiteral("InBytes"), rate(m_in.bytes)},
            {QStringLiteral("OutPackets"), rate(m_out.packets)},
            {QStringLiteral("OutErrors"), rate(m_out.errors)},
            {QStringLiteral("OutBytes"), rate(m_out.bytes)},
            {QStringLiteral("OutCollisions"), rate(m_out.collisions)}};
}

} // namespace pulsebar
