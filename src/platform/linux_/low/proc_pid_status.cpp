#include "platform/linux_/low/proc_pid_status.h"

#include "platform/linux_/low/Scan.h"

#include <limits>

namespace pulsebar {

PidStatus parsePidStatus(std::string_view text)
{
    PidStatus status;
    Scan lines(text);
    // The kernel escapes newlines in the name, so no line can be forged by it.
    while (const auto line = lines.line()) {
        Scan scan(*line);
        const auto key = scan.word();
        if (key == "State:") {
            if (const auto letter = scan.word())
                status.state = letter->front();
        } else if (key == "Uid:") {
            const bool hasReal = scan.number().has_value();
            const auto effective = scan.number();
            if (hasReal && effective && *effective <= std::numeric_limits<std::uint32_t>::max())
                status.effectiveUid = static_cast<std::uint32_t>(*effective);
        } else if (key == "voluntary_ctxt_switches:") {
            status.voluntarySwitches = scan.number();
        }
    }
    return status;
}

} // namespace pulsebar
