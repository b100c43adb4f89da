#pragma once

#include <cstdint>
#include <string_view>

namespace pulsebar {

/// Ns on the monotonic clock, which stands still while the machine is suspended, as the processes'
/// CPU clocks do.
std::uint64_t monotonicNow();
/// USER_HZ ticks since boot, suspended time included: the clock of processes' start times.
std::uint64_t bootTicksNow();

/// Where reports go.
class Output
{
public:
    explicit Output(int descriptor);

    /// Writes the whole text, in one write(2) wherever the other side can take it at once. False
    /// when nobody reads any more.
    bool write(std::string_view text) const;
    /// Sleeps until that moment of the monotonic clock. False, at once, when the reader goes away.
    bool sleepUntil(std::uint64_t moment) const;

private:
    bool waitForRoom() const;

    int m_descriptor;
};

} // namespace pulsebar
