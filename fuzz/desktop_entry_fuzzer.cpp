#include "platform/linux_/low/desktop_entry.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// A desktop entry file that anybody may have written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto entry = pulsebar::parseDesktopEntry({reinterpret_cast<const char *>(data), size});
    for (const auto &word : entry.command) {
        if (word.empty())
            std::abort();
    }
    return 0;
}
