#pragma once

#include "platform/linux_/low/rtnl_link.h"

#include <set>
#include <vector>

namespace pulsebar {

/// Which interfaces of a network namespace stand at the bottom of their stack: what they carry is
/// counted by no other interface chosen here, and nothing that enters or leaves the namespace
/// over a wire is missed. The answer depends on what is there, not on what is up or has a carrier,
/// so that totals don't jump when a cable is pulled.
///
/// 1. Never chosen: loopback; whatever stands on another interface of the same namespace (VLAN,
///    macvlan, ipvlan, macsec, a bound tunnel, a switch port of a DSA switch, both ends of a veth
///    pair that lies within the namespace); a bridge, bond, team or other master; monitors, dummies
///    and mirrors; the lower half of a fail-over pair, which its upper half counts too.
/// 2. Chosen: what has hardware behind it — the kernel gives it no kind, or names its device, or
///    the kind is one that only hardware has. It counts also as a port of a bridge or bond.
/// 3. Chosen: what stands on an interface of another namespace (a VLAN, macvlan, ipvlan or the like
///    that was moved here): nobody else here counts it.
/// 4. Ends of veth and netkit pairs whose other end is in another namespace. Beside hardware they
///    are the host's ends: their traffic passes the hardware, or never leaves the machine. They are
///    not chosen. Without hardware this namespace is a container, and its own ends are chosen:
///    those that are no port of a bridge or, where all are ports, the ports; among them those that
///    lead to the namespace in which the interfaces of rule 3 have their lower ends or, without
///    such, to the namespace with the lowest number. The kernel numbers namespaces as it meets
///    them, and a container has its own end before it can make containers of its own.
/// 5. Where 2 to 4 found nothing, tunnels and what else there is (tun, WireGuard, PPP) count:
///    what lies below them is in another namespace, or is a serial line.
///
/// What cannot be told from the outside: two veth ends that are plain routes to two different
/// namespaces of equal rank, of which one is taken; and a PPP connection over a serial modem
/// beside a network card, which is taken for PPP over Ethernet.
///
/// @return the indexes of the chosen interfaces
std::set<int> linkLevelInterfaces(const std::vector<Link> &links);

} // namespace pulsebar
