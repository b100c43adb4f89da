#include "platform/linux_/low/block_stat.h"
#include "platform/linux_/low/hardware_text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// The small files of /sys: whatever stands in them, a number is in its range or absent.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    pulsebar::parseBlockStat(text);
    for (const auto &number :
         {pulsebar::parseCacheSize(text), pulsebar::parseSysNumber(text),
          pulsebar::parseDeviceTreeCell(text), pulsebar::parseCpuMegahertz(text)}) {
        if (number && *number < 0)
            std::abort();
    }
    const auto name = pulsebar::parseFirmwareName(text);
    if (name && (name->empty() || name->find('\0') != std::string::npos))
        std::abort();
    return 0;
}
