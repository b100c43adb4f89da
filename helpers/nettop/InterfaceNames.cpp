#include "nettop/InterfaceNames.h"

#include "platform/linux_/low/netlink_dump.h"

#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>

namespace pulsebar::nettop {

namespace {

/// The loopback interface is the first of every network namespace.
constexpr int loopback = 1;

struct LocalAddress
{
    std::uint8_t family = AF_INET6;
    std::array<std::byte, 16> bytes{};
};

LocalAddress localAddressOf(const TcpSocket &socket)
{
    constexpr std::size_t ipv4InMapped = 12;
    if (!socket.isIpv6)
        return {AF_INET, socket.localAddress};
    if (!isMappedIpv4(socket.localAddress))
        return {AF_INET6, socket.localAddress};
    LocalAddress address{AF_INET, {}};
    std::copy_n(socket.localAddress.begin() + ipv4InMapped, 4, address.bytes.begin());
    return address;
}

bool isUnset(const LocalAddress &address)
{
    return std::all_of(address.bytes.begin(), address.bytes.end(),
                       [](std::byte b) { return b == std::byte{0}; });
}

/// The whole of 127.0.0.0/8 is at home on the loopback interface, though one address is listed.
bool isLoopback(const LocalAddress &address)
{
    if (address.family == AF_INET)
        return address.bytes[0] == std::byte{127};
    return address.bytes.back() == std::byte{1} &&
           std::all_of(address.bytes.begin(), address.bytes.end() - 1,
                       [](std::byte b) { return b == std::byte{0}; });
}

} // namespace

InterfaceNames::InterfaceNames(int socket)
    : m_socket(socket)
{
}

std::string_view InterfaceNames::nameFor(const TcpSocket &socket)
{
    const int index = socket.device != 0 ? static_cast<int>(socket.device) : indexOfAddress(socket);
    return index == 0 ? std::string_view() : nameOfIndex(index);
}

int InterfaceNames::indexOfAddress(const TcpSocket &socket)
{
    const auto wanted = localAddressOf(socket);
    if (isUnset(wanted))
        return 0;
    if (isLoopback(wanted))
        return loopback;
    readAddresses();
    const auto found =
        std::find_if(m_addresses.begin(), m_addresses.end(), [&](const auto &address) {
            return address.family == wanted.family && address.bytes == wanted.bytes;
        });
    return found == m_addresses.end() ? 0 : found->index;
}

void InterfaceNames::readAddresses()
{
    if (m_hasAddresses)
        return;
    m_hasAddresses = true;
    NetlinkDump addresses(NETLINK_ROUTE);
    const ifaddrmsg everything{};
    addresses.ask(RTM_GETADDR, std::as_bytes(std::span(&everything, 1)),
                  [this](std::uint16_t type, NetlinkBytes content) {
                      const auto address = parseInterfaceAddress(content);
                      if (type == RTM_NEWADDR && address)
                          m_addresses.push_back(*address);
                  });
}

std::string_view InterfaceNames::nameOfIndex(int index)
{
    for (const auto &[known, name] : m_names) {
        if (known == index)
            return name;
    }
    ifreq request{};
    request.ifr_ifindex = index;
    const bool found = ::ioctl(m_socket, SIOCGIFNAME, &request) == 0;
    // A name may hold nearly anything; a comma would end the field.
    std::string name(found ? request.ifr_name : "");
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ',' || c < ' ' || c == '\x7F'; }, '?');
    return m_names.emplace_back(index, std::move(name)).second;
}

} // namespace pulsebar::nettop
