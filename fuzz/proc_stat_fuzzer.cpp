#include "platform/linux_/low/proc_stat.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    pulsebar::parseTotalTicks(text);
    pulsebar::parseProcStatSummary(text);
    if (const auto list = pulsebar::parseNumberedTicks(text)) {
        for (std::size_t i = 1; i < list->size(); ++i) {
            if ((*list)[i].number < (*list)[i - 1].number)
                std::abort();
        }
    }
    return 0;
}
