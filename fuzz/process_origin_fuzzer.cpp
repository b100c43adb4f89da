#include "platform/linux_/low/process_origin.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// A process writes its own command line and may choose the name of its control group.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const auto &id : pulsebar::desktopIdsOfCgroup(text)) {
        if (id.empty())
            std::abort();
    }
    if (pulsebar::programsOfCommandLine(text).size() > 2)
        std::abort();
    return 0;
}
