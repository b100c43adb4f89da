#include "platform/linux_/low/proc_net_dev.h"

#include "platform/linux_/low/Scan.h"

#include <optional>

namespace pulsebar {

namespace {

std::optional<NetDevLine> parseLine(std::string_view line)
{
    // A colon may stand in the name itself ("eth0:1"): the counters begin after the last one.
    const auto colon = line.rfind(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto name = Scan(line.substr(0, colon)).word();
    Scan scan(line.substr(colon + 1));
    const auto inBytes = scan.number();
    const auto inPackets = scan.number();
    scan.skipWords(6); // errs drop fifo frame compressed multicast
    const auto outBytes = scan.number();
    const auto outPackets = scan.number();
    if (!name || !inBytes || !inPackets || !outBytes || !outPackets)
        return std::nullopt;
    return NetDevLine{*name, *inBytes, *inPackets, *outBytes, *outPackets};
}

} // namespace

std::vector<NetDevLine> parseNetDev(std::string_view text)
{
    return parseEachLine<NetDevLine>(text, parseLine);
}

} // namespace pulsebar
