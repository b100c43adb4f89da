#include "nettop/InterfaceNames.h"
#include "nettop/Report.h"
#include "platform/linux_/low/inet_diag.h"
#include "platform/linux_/low/netlink_dump.h"
#include "platform/linux_/low/rtnl_address.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

/// What one receive of a socket dump brought.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    pulsebar::NetlinkMessages messages(std::as_bytes(std::span(data, size)));
    std::size_t contents = 0;
    while (const auto message = messages.next()) {
        contents += message->content.size();
        const auto socket = pulsebar::parseTcpSocket(message->content);
        if (socket) {
            const auto text = pulsebar::nettop::addressText(*socket);
            if (!text.starts_with("tcp") || text.find_first_of(",\n") != std::string::npos)
                std::abort();
            if (!socket->hasCounters && (socket->counters.sent | socket->counters.received) != 0)
                std::abort();
        }
        const auto address = pulsebar::parseInterfaceAddress(message->content);
        if (address && address->index <= 0)
            std::abort();
    }
    if (contents > size)
        std::abort();
    return 0;
}
