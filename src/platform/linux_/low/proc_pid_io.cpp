#include "platform/linux_/low/proc_pid_io.h"

#include "platform/linux_/low/Scan.h"

namespace pulsebar {

std::optional<std::uint64_t> parseIoCalls(std::string_view text)
{
    std::optional<std::uint64_t> reads;
    std::optional<std::uint64_t> writes;
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        const auto key = scan.word();
        if (key == "syscr:")
            reads = scan.number();
        else if (key == "syscw:")
            writes = scan.number();
    }
    if (!reads || !writes)
        return std::nullopt;
    return *reads + *writes;
}

} // namespace pulsebar
