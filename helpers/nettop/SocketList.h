#pragma once

#include "platform/linux_/low/inet_diag.h"
#include "platform/linux_/low/netlink_dump.h"

#include <optional>
#include <vector>

namespace pulsebar::nettop {

/// All TCP sockets of the network namespace, in the order of their cookies, each once. Absent when
/// the kernel does not tell; the dump's error() says why.
/// @param expected about how many there are; a guess only
std::optional<std::vector<TcpSocket>> readTcpSockets(NetlinkDump &dump, std::size_t expected = 64);

/// Puts sockets into the order of their cookies. Of one that is there twice (it changed its place
/// while the list was read) stays what has counters.
void orderByCookie(std::vector<TcpSocket> &sockets);

} // namespace pulsebar::nettop
