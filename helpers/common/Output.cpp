#include "common/Output.h"

#include <cerrno>
#include <ctime>
#include <poll.h>
#include <unistd.h>

namespace pulsebar {

namespace {

constexpr std::uint64_t nsPerSecond = 1'000'000'000;
constexpr std::uint64_t nsPerTick = 10'000'000;

std::uint64_t read(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * nsPerSecond +
           static_cast<std::uint64_t>(time.tv_nsec);
}

} // namespace

std::uint64_t monotonicNow()
{
    return read(CLOCK_MONOTONIC);
}

std::uint64_t bootTicksNow()
{
    return read(CLOCK_BOOTTIME) / nsPerTick;
}

Output::Output(int descriptor)
    : m_descriptor(descriptor)
{
}

bool Output::write(std::string_view text) const
{
    while (!text.empty()) {
        const auto count = ::write(m_descriptor, text.data(), text.size());
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (count < 0 && errno == EAGAIN) {
            if (!waitForRoom())
                return false;
        } else if (count < 0 && errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool Output::waitForRoom() const
{
    pollfd wanted{m_descriptor, POLLOUT, 0};
    const int ready = ::poll(&wanted, 1, -1);
    return ready < 0 ? errno == EINTR : (wanted.revents & POLLOUT) != 0;
}

bool Output::sleepUntil(std::uint64_t moment) const
{
    for (;;) {
        const auto now = monotonicNow();
        const auto left = moment > now ? moment - now : 0;
        const timespec timeout{static_cast<time_t>(left / nsPerSecond),
                               static_cast<long>(left % nsPerSecond)};
        pollfd watched{m_descriptor, 0, 0};
        const int ready = ::ppoll(&watched, 1, &timeout, nullptr);
        if (ready > 0)
            return false;
        if (ready < 0 && errno != EINTR)
            return false;
        if (monotonicNow() >= moment)
            return true;
    }
}

} // namespace pulsebar
