#include "common/Pacer.h"

namespace pulsebar {

Pacer::Pacer(std::uint64_t start, std::uint64_t firstDelay, std::uint64_t interval)
    : m_due(start + firstDelay)
    , m_interval(interval)
{
}

void Pacer::advance(std::uint64_t now)
{
    const auto late = now > m_due ? (now - m_due) / m_interval : 0;
    m_due += (late + 1) * m_interval;
}

} // namespace pulsebar
