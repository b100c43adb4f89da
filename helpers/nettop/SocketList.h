#pragma once

#include "platform/linux_/low/inet_diag.h"
#include "platform/linux_/low/netlink_dump.h"

#include <optional>
#include <vector>

namespace pulsebar::nettop {

/// All TCP sockets of the network namespace, in the order of their cookies, each once. Absent when
/// the kernel does not tell; the dump's error() says why.
std::optional<std::vector<TcpSocket>> readTcpSockets(NetlinkDump &dump);

/// Puts sockets into the order of their cookies. Of one that is there twice (it changed its place
/// while the list was read) stays what has counters.
void orderByCookie(std::vector<TcpSocket> &sockets);

} // namespace pulsebar::nettop
