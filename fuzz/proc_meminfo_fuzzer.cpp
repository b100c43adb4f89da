#include "platform/linux_/low/proc_meminfo.h"
#include "top/SystemFigures.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto info = pulsebar::parseMemInfo(text);
    for (const std::uint64_t cache : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        const auto figures = pulsebar::top::memoryFigures(info, cache);
        if (figures.used && *figures.used + *figures.free != *info.memTotal / 1024)
            std::abort();
    }
    return 0;
}
