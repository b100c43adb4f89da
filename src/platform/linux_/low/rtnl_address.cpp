#include "platform/linux_/low/rtnl_address.h"

#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>

namespace pulsebar {

std::optional<InterfaceAddress> parseInterfaceAddress(NetlinkBytes message)
{
    const auto header = netlinkRecord<ifaddrmsg>(message);
    if (!header || (header->ifa_family != AF_INET && header->ifa_family != AF_INET6) ||
        header->ifa_index == 0 || header->ifa_index > INT32_MAX)
        return std::nullopt;
    InterfaceAddress address;
    address.index = static_cast<int>(header->ifa_index);
    address.family = header->ifa_family;
    const std::size_t size = header->ifa_family == AF_INET ? 4 : 16;
    bool found = false;
    bool isLocal = false;
    auto attributes = netlinkAttributesAfter<ifaddrmsg>(message);
    while (const auto attribute = attributes.next()) {
        // IFA_ADDRESS is the far end where the two differ.
        const bool wanted =
            attribute->type == IFA_LOCAL || (attribute->type == IFA_ADDRESS && !isLocal);
        if (!wanted || attribute->content.size() != size)
            continue;
        std::copy_n(attribute->content.begin(), size, address.bytes.begin());
        found = true;
        isLocal = attribute->type == IFA_LOCAL;
    }
    if (!found)
        return std::nullopt;
    return address;
}

} // namespace pulsebar
