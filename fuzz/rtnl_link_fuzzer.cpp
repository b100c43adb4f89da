#include "platform/linux_/low/rtnl_link.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

/// The content of a link or statistics message.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto message = std::as_bytes(std::span(data, size));
    const auto link = pulsebar::parseLink(message);
    if (link && (link->name.empty() || link->index <= 0))
        std::abort();
    pulsebar::parseLinkCounters(message);
    const auto stats = pulsebar::parseStats(message);
    if (stats && stats->index < 0)
        std::abort();
    return 0;
}
