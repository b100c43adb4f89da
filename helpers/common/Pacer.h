#pragma once

#include <cstdint>

namespace pulsebar {

/// When reports are due: the first shortly after the start, then one per interval from it on. All
/// moments are ns on one clock. A report that comes late does not shift those after it; moments
/// that have passed by unused are skipped.
class Pacer
{
public:
    Pacer(std::uint64_t start, std::uint64_t firstDelay, std::uint64_t interval);

    std::uint64_t due() const { return m_due; }
    /// A report was made at `now`: settles when the next is due.
    void advance(std::uint64_t now);

private:
    std::uint64_t m_due;
    std::uint64_t m_interval;
};

} // namespace pulsebar
