#include "platform/linux_/low/proc_diskstats.h"
#include "platform/linux_/low/proc_loadavg.h"
#include "platform/linux_/low/proc_net_dev.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const auto &line : pulsebar::parseNetDev(text)) {
        if (line.name.empty())
            std::abort();
    }
    for (const auto &line : pulsebar::parseDiskStats(text)) {
        if (line.name.empty())
            std::abort();
    }
    // The averages are printed as they stand: nothing but a number may pass.
    if (const auto load = pulsebar::parseLoadAverage(text)) {
        if (load->oneMinute.find_first_not_of("0123456789.") != std::string_view::npos)
            std::abort();
    }
    return 0;
}
