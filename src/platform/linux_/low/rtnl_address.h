#pragma once

#include "platform/linux_/low/netlink_message.h"

#include <array>
#include <cstdint>
#include <optional>

namespace pulsebar {

/// An address of one of the machine's interfaces, as rtnetlink(7) tells it.
struct InterfaceAddress
{
    int index = 0;                     ///< of the interface
    std::uint8_t family = 0;           ///< AF_INET or AF_INET6
    std::array<std::byte, 16> bytes{}; ///< network order; IPv4 fills the first four
};

/// Parses the content of an RTM_NEWADDR message (what follows the nlmsghdr). On a point-to-point
/// interface it is the near end's address. Absent when the message is too short or names none.
std::optional<InterfaceAddress> parseInterfaceAddress(NetlinkBytes message);

} // namespace pulsebar
