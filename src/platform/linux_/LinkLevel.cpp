#include "platform/linux_/LinkLevel.h"

#include <linux/if.h>
#include <linux/if_arp.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <string_view>

namespace pulsebar {

namespace {

template <std::size_t count>
bool isOneOf(std::string_view kind, const std::array<std::string_view, count> &kinds)
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

/// Kinds of which the kernel has an entry although a device carries them; listed for kernels that
/// do not name the device.
bool isHardwareKind(std::string_view kind)
{
    constexpr std::array<std::string_view, 4> kinds{"can", "ipoib", "wwan", "netdevsim"};
    return isOneOf(kind, kinds);
}

/// Kinds that only join, copy or swallow what others carry, wherever they stand.
bool carriesNothingOfItsOwn(std::string_view kind)
{
    constexpr std::array<std::string_view, 14> kinds{
        "bridge", "bond", "team", "vrf",    "dummy",    "ifb",         "nlmon",
        "vcan",   "hsr",  "prp",  "batadv", "vsockmon", "openvswitch", "lowpan"};
    return isOneOf(kind, kinds);
}

bool isPairKind(std::string_view kind)
{
    constexpr std::array<std::string_view, 3> kinds{"veth", "netkit", "vxcan"};
    return isOneOf(kind, kinds);
}

bool joinsPorts(std::string_view masterKind)
{
    constexpr std::array<std::string_view, 2> kinds{"bridge", "openvswitch"};
    return isOneOf(masterKind, kinds);
}

/// Raw copies of what a radio or a link hears.
bool isMonitor(const Link &link)
{
    constexpr std::array<std::uint16_t, 6> types{
        ARPHRD_IEEE80211,          ARPHRD_IEEE80211_PRISM, ARPHRD_IEEE80211_RADIOTAP,
        ARPHRD_IEEE802154_MONITOR, ARPHRD_NETLINK,         ARPHRD_VSOCKMON};
    return std::find(types.begin(), types.end(), link.type) != types.end();
}

using Links = std::vector<const Link *>;

/// The links of one namespace with their relations.
class Namespace
{
public:
    explicit Namespace(const std::vector<Link> &links)
    {
        for (const auto &link : links)
            m_byIndex.emplace(link.index, &link);
        for (const auto &link : links) {
            if (link.master != 0)
                m_masters.insert(link.master);
        }
    }

    bool isHardware(const Link &link) const
    {
        return isCandidate(link) && !isPairKind(link.kind) && hasHardware(link) &&
               !link.lowerNamespace && !isHalfOfFailover(link);
    }

    bool standsOnOtherNamespace(const Link &link) const
    {
        // A tunnel that was moved here names the namespace where its packets travel, but no
        // interface of it: it is no better known than a tun device.
        return isCandidate(link) && !isPairKind(link.kind) && link.lowerNamespace &&
               link.lower != 0;
    }

    bool isForeignPair(const Link &link) const
    {
        return isCandidate(link) && isPairKind(link.kind) && link.lowerNamespace;
    }

    bool isLastResort(const Link &link) const
    {
        return isCandidate(link) && !isPairKind(link.kind) && !m_masters.contains(link.index);
    }

    /// True when the link, or a bond over it, is a port of a bridge.
    bool isBridged(const Link &link) const
    {
        const Link *port = &link;
        // Masters may stand on masters; the bound is against a damaged list that goes in circles.
        for (std::size_t step = 0; port && step <= m_byIndex.size(); ++step) {
            if (joinsPorts(port->masterKind))
                return true;
            const auto master = m_byIndex.find(port->master);
            port = master == m_byIndex.end() ? nullptr : master->second;
        }
        return false;
    }

private:
    bool isCandidate(const Link &link) const
    {
        return (link.flags & IFF_LOOPBACK) == 0 && !isMonitor(link) &&
               !carriesNothingOfItsOwn(link.kind) && !standsOnNeighbour(link);
    }

    static bool standsOnNeighbour(const Link &link)
    {
        return link.lower != 0 && link.lower != link.index && !link.lowerNamespace;
    }

    static bool hasHardware(const Link &link)
    {
        return link.kind.empty() || link.hasDevice || isHardwareKind(link.kind);
    }

    bool isHalfOfFailover(const Link &link) const
    {
        const auto master = m_byIndex.find(link.master);
        return master != m_byIndex.end() && hasHardware(*master->second);
    }

    std::map<int, const Link *> m_byIndex;
    std::set<int> m_masters;
};

template <typename Predicate> Links select(const std::vector<Link> &links, Predicate predicate)
{
    Links chosen;
    for (const auto &link : links) {
        if (predicate(link))
            chosen.push_back(&link);
    }
    return chosen;
}

bool leadsTo(const Link *end, const std::set<int> &namespaces)
{
    return namespaces.contains(*end->lowerNamespace);
}

/// The number of the namespace that the container was made from, as far as the ends tell.
int namespaceOfOrigin(const Links &ends)
{
    // Without a number (-1) is one that is going away: as unsigned it comes last.
    unsigned lowest = std::numeric_limits<unsigned>::max();
    for (const Link *end : ends)
        lowest = std::min(lowest, static_cast<unsigned>(*end->lowerNamespace));
    return static_cast<int>(lowest);
}

/// A container's own ends among all ends of pairs that lead out of it (rule 4).
/// @param moved the interfaces of rule 3
Links ownEnds(const Namespace &space, Links ends, const Links &moved)
{
    const auto bridged = [&](const Link *link) { return space.isBridged(*link); };
    if (!std::all_of(ends.begin(), ends.end(), bridged))
        std::erase_if(ends, bridged);
    std::set<int> origin;
    for (const Link *link : moved)
        origin.insert(*link->lowerNamespace);
    if (origin.empty())
        origin.insert(namespaceOfOrigin(ends));
    std::erase_if(ends, [&](const Link *end) { return !leadsTo(end, origin); });
    return ends;
}

Links bottoms(const std::vector<Link> &links)
{
    const Namespace space(links);
    auto chosen = select(links, [&](const Link &link) { return space.isHardware(link); });
    const auto moved =
        select(links, [&](const Link &link) { return space.standsOnOtherNamespace(link); });
    if (chosen.empty()) {
        const auto ends =
            select(links, [&](const Link &link) { return space.isForeignPair(link); });
        chosen = ownEnds(space, ends, moved);
    }
    chosen.insert(chosen.end(), moved.begin(), moved.end());
    if (chosen.empty())
        chosen = select(links, [&](const Link &link) { return space.isLastResort(link); });
    return chosen;
}

} // namespace

std::set<int> linkLevelInterfaces(const std::vector<Link> &links)
{
    std::set<int> indexes;
    for (const Link *link : bottoms(links))
        indexes.insert(link->index);
    return indexes;
}

} // namespace pulsebar
