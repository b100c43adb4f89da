#pragma once

#include "nettop/Accounts.h"
#include "nettop/InterfaceNames.h"

#include <ctime>
#include <functional>
#include <string>
#include <string_view>

namespace pulsebar::nettop {

/// Makes the text of a report: a header, then for each owner of sockets a line with its totals and
/// a line for each of its connections. Each line has the twelve fields that the header names,
/// comma-separated; no field holds a comma or a newline.
class Report
{
public:
    using UserNamer = std::function<std::string(std::uint32_t uid)>;

    /// @param nameUser the field for what belongs to a user; asked only where needed
    Report(const Memory &memory, InterfaceNames &interfaces, UserNamer nameUser);

    /// @param sockets those that `accounts` were updated with
    /// @return the whole text, valid until the next call
    const std::string &write(const std::vector<TcpSocket> &sockets, const Accounts &accounts,
                             const timespec &time);

private:
    void group(std::size_t sockets, const Accounts &accounts);
    void setTime(const timespec &time);
    void addOwner(const OwnerRecord &owner);
    void addConnection(const TcpSocket &socket, const SocketRecord &record);

    const Memory &m_memory;
    InterfaceNames &m_interfaces;
    UserNamer m_nameUser;
    std::string m_text;
    std::string m_time;                   ///< the first field of every line, with its comma
    std::vector<std::uint32_t> m_owners;  ///< places in Memory::owners, in the order of the lines
    std::vector<std::uint32_t> m_starts;  ///< as Memory::owners and one more: places in m_grouped
    std::vector<std::uint32_t> m_grouped; ///< places of sockets, those of each owner together
};

/// "tcp4 10.0.1.2:50123<->192.0.2.7:443", "tcp6 [::1]:22<->*:*". An IPv6 socket that speaks to an
/// IPv4 address is written as what it is on the wire, tcp4.
std::string addressText(const TcpSocket &socket);

} // namespace pulsebar::nettop
