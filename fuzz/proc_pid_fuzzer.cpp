#include "platform/linux_/low/proc_pid_io.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "platform/linux_/low/proc_pid_status.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    pulsebar::parsePidStatus(text);
    pulsebar::parseIoCalls(text);
    if (const auto stat = pulsebar::parsePidStat(text)) {
        if (stat->comm.data() < text.data() || stat->comm.size() > text.size())
            std::abort();
    }
    return 0;
}
