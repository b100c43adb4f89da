#pragma once

#include "platform/linux_/low/inet_diag.h"
#include "platform/linux_/low/rtnl_address.h"

#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pulsebar::nettop {

/// Over which interface a socket speaks: the one that it is bound to, else the one that has its
/// local address. The kernel is asked when the first socket needs it.
class InterfaceNames
{
public:
    /// @param socket any socket of the network namespace; stays the caller's
    explicit InterfaceNames(int socket);

    /// Empty when it is not known: the socket has no local address yet, or its address is no
    /// longer, or on no interface. Valid as long as this object.
    std::string_view nameFor(const TcpSocket &socket);

private:
    std::string_view nameOfIndex(int index);
    int indexOfAddress(const TcpSocket &socket);
    void readAddresses();

    int m_socket;
    bool m_hasAddresses = false;
    std::vector<InterfaceAddress> m_addresses;
    std::deque<std::pair<int, std::string>> m_names; ///< stays where it is while it grows
};

} // namespace pulsebar::nettop
