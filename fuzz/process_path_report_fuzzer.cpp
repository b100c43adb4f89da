#include "engine/ProcessPathReport.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray report(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto found = pulsebar::parseProcessPath(report);
    // What is found can stand as a number and as a path.
    if (found && (found->pid.isEmpty() || found->path.isEmpty() || found->path.contains(u' ') ||
                  found->path.contains(u'\n')))
        std::abort();
    return 0;
}
