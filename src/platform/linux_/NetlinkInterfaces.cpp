#include "platform/linux_/NetlinkInterfaces.h"

#include "platform/linux_/LinkLevel.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

#include <algorithm>
#include <span>
#include <utility>

namespace pulsebar {

namespace {

// A list that changes under our hands is asked for again; one that never holds still is given up
// for this reading.
constexpr int attempts = 4;

/// The fixed part of an RTM_GETLINK request, and the attribute that trims the answers.
struct LinkRequest
{
    ifinfomsg header;
    nlattr mask;
    std::uint32_t maskValue;
};

NetlinkSocket::DumpResult dumpLinks(NetlinkSocket &socket, bool withCounters,
                                    const NetlinkSocket::Taker &take)
{
    LinkRequest request{};
    request.header.ifi_family = AF_UNSPEC;
    request.mask = {sizeof(nlattr) + sizeof(std::uint32_t), IFLA_EXT_MASK};
    request.maskValue = withCounters ? 0 : RTEXT_FILTER_SKIP_STATS;
    return socket.dump(RTM_GETLINK, std::as_bytes(std::span(&request, 1)), take);
}

NetlinkSocket::DumpResult dumpStats(NetlinkSocket &socket, const NetlinkSocket::Taker &take)
{
    if_stats_msg request{};
    request.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);
    return socket.dump(RTM_GETSTATS, std::as_bytes(std::span(&request, 1)), take);
}

} // namespace

NetlinkInterfaces::NetlinkInterfaces()
    : m_changes(RTMGRP_LINK)
{
}

NetlinkInterfaces::Outcome NetlinkInterfaces::outcomeOf(NetlinkSocket::DumpResult result)
{
    switch (result) {
    case NetlinkSocket::DumpResult::Complete:
        return Outcome::Done;
    case NetlinkSocket::DumpResult::Interrupted:
        return Outcome::Changing;
    default:
        return Outcome::Failed;
    }
}

NetlinkInterfaces::Outcome NetlinkInterfaces::refreshLinks(bool withCounters)
{
    std::vector<Link> links;
    std::vector<IndexedCounters> counters;
    const auto result =
        dumpLinks(m_requests, withCounters, [&](std::uint16_t type, NetlinkBytes content) {
            auto link = type == RTM_NEWLINK ? parseLink(content) : std::nullopt;
            if (!link)
                return;
            if (const auto totals = parseLinkCounters(content))
                counters.push_back({link->index, *totals});
            links.push_back(std::move(*link));
        });
    m_linksKnown = result == NetlinkSocket::DumpResult::Complete;
    if (m_linksKnown) {
        std::ranges::sort(links, {}, &Link::index);
        std::ranges::sort(counters, {}, &IndexedCounters::index);
        m_linkLevel = linkLevelInterfaces(links);
        m_links = std::move(links);
        m_counters = std::move(counters);
    }
    return outcomeOf(result);
}

NetlinkInterfaces::Outcome NetlinkInterfaces::readStats()
{
    m_counters.clear();
    const auto result = dumpStats(m_requests, [&](std::uint16_t type, NetlinkBytes content) {
        const auto stats = type == RTM_NEWSTATS ? parseStats(content) : std::nullopt;
        if (stats)
            m_counters.push_back(*stats);
    });
    if (result == NetlinkSocket::DumpResult::Refused) {
        m_statsRefused = true;
        return Outcome::Changing;
    }
    std::ranges::sort(m_counters, {}, &IndexedCounters::index);
    return outcomeOf(result);
}

/// One attempt. Done when the counters and the list of interfaces fit each other.
NetlinkInterfaces::Outcome NetlinkInterfaces::readOnce()
{
    if (m_statsRefused)
        return refreshLinks(true);
    // The news first: a change after this line is news for the next reading.
    if (m_changes.drain() || !m_linksKnown) {
        const auto outcome = refreshLinks(false);
        if (outcome != Outcome::Done)
            return outcome;
    }
    const auto outcome = readStats();
    if (outcome != Outcome::Done)
        return outcome;
    m_linksKnown =
        std::ranges::includes(m_links, m_counters, {}, &Link::index, &IndexedCounters::index);
    return m_linksKnown ? Outcome::Done : Outcome::Changing;
}

std::vector<InterfaceCounters> NetlinkInterfaces::assembled() const
{
    std::vector<InterfaceCounters> interfaces;
    interfaces.reserve(m_links.size());
    for (const auto &link : m_links) {
        const auto found =
            std::ranges::lower_bound(m_counters, link.index, {}, &IndexedCounters::index);
        // One that went between the two requests has no counters any more.
        if (found == m_counters.end() || found->index != link.index)
            continue;
        const LinkCounters &totals = found->counters;
        interfaces.push_back({.name = link.name,
                              .up = (link.flags & IFF_UP) != 0,
                              .loopback = (link.flags & IFF_LOOPBACK) != 0,
                              .linkLevel = m_linkLevel.contains(link.index),
                              .inPackets = totals.inPackets,
                              .inErrors = totals.inErrors,
                              .inBytes = totals.inBytes,
                              .outPackets = totals.outPackets,
                              .outErrors = totals.outErrors,
                              .outBytes = totals.outBytes,
                              .collisions = totals.collisions});
    }
    return interfaces;
}

std::optional<std::vector<InterfaceCounters>> NetlinkInterfaces::readInterfaceCounters()
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const auto outcome = readOnce();
        if (outcome == Outcome::Done)
            return assembled();
        if (outcome == Outcome::Failed)
            break;
    }
    return std::nullopt;
}

} // namespace pulsebar
