#include "platform/linux_/low/process_clock.h"

#include <array>
#include <ctime>
#include <string>
#include <string_view>
#include <unistd.h>

namespace pulsebar {

namespace {

/// The clock of the CPU time of all threads of a process, as the kernel numbers such clocks.
clockid_t cpuClockOf(pid_t pid)
{
    constexpr unsigned wholeProcessScheduled = 2;
    return static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | wholeProcessScheduled);
}

} // namespace

std::optional<std::uint64_t> readProcessClock(pid_t pid)
{
    constexpr std::uint64_t nsPerSecond = 1'000'000'000;
    timespec time{};
    if (::clock_gettime(cpuClockOf(pid), &time) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(time.tv_sec) * nsPerSecond +
           static_cast<std::uint64_t>(time.tv_nsec);
}

bool processClocksMatchProc()
{
    std::array<char, 24> target{};
    const auto length = ::readlink("/proc/self", target.data(), target.size());
    if (length <= 0)
        return false;
    const std::string_view self(target.data(), static_cast<std::size_t>(length));
    return self == std::to_string(::getpid()) && readProcessClock(::getpid()).has_value();
}

} // namespace pulsebar
