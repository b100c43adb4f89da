#include "platform/linux_/low/proc_pid_stat.h"

#include "platform/linux_/low/Scan.h"

#include <array>

namespace pulsebar {

namespace {

/// Numbers of the fields as proc(5) counts them.
enum Field {
    FirstNumber = 4,
    Parent = 4,
    MajorFaults = 12,
    UserTime = 14,
    KernelTime = 15,
    Threads = 20,
    StartTime = 22,
    VirtualSize = 23,
    Resident = 24,
    FieldCount = 25
};

/// Most fields are unsigned; the few that may be negative are of no use here.
std::optional<std::uint64_t> takeField(Scan &scan)
{
    if (const auto value = scan.number())
        return value;
    if (scan.signedNumber())
        return 0;
    return std::nullopt;
}

} // namespace

std::optional<PidStat> parsePidStat(std::string_view text)
{
    const auto open = text.find('(');
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
        close + 3 >= text.size())
        return std::nullopt;

    PidStat stat;
    stat.comm = text.substr(open + 1, close - open - 1);
    stat.state = text[close + 2];
    Scan scan(text.substr(close + 3));
    std::array<std::uint64_t, FieldCount> fields{};
    for (std::size_t i = FirstNumber; i < fields.size(); ++i) {
        const auto value = takeField(scan);
        if (!value)
            return std::nullopt;
        fields[i] = *value;
    }
    stat.parent = fields[Parent];
    stat.majorFaults = fields[MajorFaults];
    stat.userTicks = fields[UserTime];
    stat.kernelTicks = fields[KernelTime];
    stat.threads = fields[Threads];
    stat.startTicks = fields[StartTime];
    stat.virtualBytes = fields[VirtualSize];
    stat.residentPages = fields[Resident];
    return stat;
}

} // namespace pulsebar
