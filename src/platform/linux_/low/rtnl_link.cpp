#include "platform/linux_/low/rtnl_link.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstddef>

namespace pulsebar {

namespace {

int number(NetlinkBytes content)
{
    return netlinkRecord<std::int32_t>(content).value_or(0);
}

std::optional<LinkCounters> countersOf(NetlinkBytes content)
{
    // Newer kernels append figures; all of ours were there from the start.
    constexpr std::size_t needed =
        offsetof(rtnl_link_stats64, collisions) + sizeof(rtnl_link_stats64::collisions);
    const auto stats = netlinkRecord<rtnl_link_stats64>(content, needed);
    if (!stats)
        return std::nullopt;
    return LinkCounters{stats->rx_packets, stats->rx_errors, stats->rx_bytes,  stats->tx_packets,
                        stats->tx_errors,  stats->tx_bytes,  stats->collisions};
}

void readLinkInfo(NetlinkBytes content, Link &link)
{
    NetlinkAttributes attributes(content);
    while (const auto attribute = attributes.next()) {
        if (attribute->type == IFLA_INFO_KIND)
            link.kind = netlinkText(attribute->content);
        else if (attribute->type == IFLA_INFO_SLAVE_KIND)
            link.masterKind = netlinkText(attribute->content);
    }
}

void readLinkAttribute(const NetlinkAttribute &attribute, Link &link)
{
    switch (attribute.type) {
    case IFLA_IFNAME:
        link.name = netlinkText(attribute.content);
        break;
    case IFLA_LINKINFO:
        readLinkInfo(attribute.content, link);
        break;
    case IFLA_MASTER:
        link.master = number(attribute.content);
        break;
    case IFLA_LINK:
        link.lower = number(attribute.content);
        break;
    case IFLA_LINK_NETNSID:
        link.lowerNamespace = number(attribute.content);
        break;
    case IFLA_PARENT_DEV_NAME:
        link.hasDevice = true;
        break;
    default:
        break;
    }
}

} // namespace

std::optional<Link> parseLink(NetlinkBytes message)
{
    const auto header = netlinkRecord<ifinfomsg>(message);
    if (!header)
        return std::nullopt;
    Link link;
    link.index = header->ifi_index;
    link.flags = header->ifi_flags;
    link.type = header->ifi_type;
    auto attributes = netlinkAttributesAfter<ifinfomsg>(message);
    while (const auto attribute = attributes.next())
        readLinkAttribute(*attribute, link);
    if (link.name.empty() || link.index <= 0)
        return std::nullopt;
    return link;
}

std::optional<LinkCounters> parseLinkCounters(NetlinkBytes message)
{
    auto attributes = netlinkAttributesAfter<ifinfomsg>(message);
    while (const auto attribute = attributes.next()) {
        if (attribute->type == IFLA_STATS64)
            return countersOf(attribute->content);
    }
    return std::nullopt;
}

std::optional<IndexedCounters> parseStats(NetlinkBytes message)
{
    const auto header = netlinkRecord<if_stats_msg>(message);
    if (!header || header->ifindex > INT32_MAX)
        return std::nullopt;
    auto attributes = netlinkAttributesAfter<if_stats_msg>(message);
    while (const auto attribute = attributes.next()) {
        if (attribute->type != IFLA_STATS_LINK_64)
            continue;
        const auto counters = countersOf(attribute->content);
        if (!counters)
            return std::nullopt;
        return IndexedCounters{static_cast<int>(header->ifindex), *counters};
    }
    return std::nullopt;
}

} // namespace pulsebar
