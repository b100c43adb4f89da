#include "engine/TopReportParser.h"

#include <cstdint>
#include <cstdlib>

/// The first byte is the number of rows to read, the rest the sampler's output.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const int listMax = static_cast<std::int8_t>(data[0]);
    const QByteArray text(reinterpret_cast<const char *>(data + 1),
                          static_cast<qsizetype>(size - 1));
    const pulsebar::TopReport report = pulsebar::parseTopReport(text, listMax);
    if (report.processList.size() > qMax(listMax, 0))
        std::abort();
    if (!report.text && !(report.processList.isEmpty() && report.memoryStats.isEmpty()))
        std::abort();
    for (const QVariant &entry : report.processList) {
        if (entry.toMap().size() > 13)
            std::abort();
    }
    return 0;
}
