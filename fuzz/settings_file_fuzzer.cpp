#include "controller/SettingsFormat.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Any file must be readable, and what was read must survive being written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace pulsebar::settingsformat;
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const Parsed first = parse(bytes);
    const Parsed second = parse(write(first.values));
    if (second.values != first.values || second.droppedLines != 0)
        std::abort();
    return 0;
}
