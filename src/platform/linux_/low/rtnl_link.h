#pragma once

#include "platform/linux_/low/netlink_message.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pulsebar {

/// Totals of an interface (rtnl_link_stats64).
struct LinkCounters
{
    std::uint64_t inPackets = 0;
    std::uint64_t inErrors = 0;
    std::uint64_t inBytes = 0;
    std::uint64_t outPackets = 0;
    std::uint64_t outErrors = 0;
    std::uint64_t outBytes = 0;
    std::uint64_t collisions = 0;
};

/// An interface and its place among the others, as rtnetlink(7) tells it.
struct Link
{
    int index = 0;
    std::string name;
    unsigned flags = 0;     ///< IFF_UP, IFF_LOOPBACK, … of <net/if.h>
    std::uint16_t type = 0; ///< ARPHRD_… of <net/if_arp.h>
    /// What made it ("bridge", "veth", "tun", …); empty for nearly all that a piece of hardware
    /// stands behind.
    std::string kind;
    /// Index of the bridge, bond or other master that it is a port of; 0 without one.
    int master = 0;
    /// What its master is ("bridge", "bond", …); empty when the master has no kind.
    std::string masterKind;
    /// Index of the interface below it, or of the other end of a pair; 0 or its own index when
    /// there is none.
    int lower = 0;
    /// Set when `lower` is an interface of another network namespace: that namespace's number as
    /// ours counts them, or -1 when it has no number.
    std::optional<int> lowerNamespace;
    /// True when the kernel names a device on a bus behind it.
    bool hasDevice = false;
};

/// Parses the content of an RTM_NEWLINK message (what follows the nlmsghdr). Absent when the
/// message is too short or names no interface.
std::optional<Link> parseLink(NetlinkBytes message);

/// The totals that such a message carries, if it carries any (IFLA_STATS64).
std::optional<LinkCounters> parseLinkCounters(NetlinkBytes message);

/// Totals of the interface with an index.
struct IndexedCounters
{
    int index = 0;
    LinkCounters counters;
};

/// Parses the content of an RTM_NEWSTATS message; absent when it carries no IFLA_STATS_LINK_64.
std::optional<IndexedCounters> parseStats(NetlinkBytes message);

} // namespace pulsebar
