#pragma once

#include "platform/Counters.h"
#include "platform/linux_/NetlinkSocket.h"
#include "platform/linux_/low/rtnl_link.h"

#include <set>

namespace pulsebar {

/// Counters of the interfaces of the program's network namespace, over rtnetlink(7), 64 bits wide.
///
/// Each reading asks for the counters alone (RTM_GETSTATS, which costs a fraction of RTM_GETLINK).
/// What the interfaces are and how they stand on each other is asked for the first time, and
/// after the kernel has told of a change (the link multicast group). Kernels before 4.7 have no
/// RTM_GETSTATS: there the list is asked for with its counters each time.
class NetlinkInterfaces : public InterfaceCountersSource
{
public:
    NetlinkInterfaces();
    /// In the order of the interfaces' indexes.
    std::optional<std::vector<InterfaceCounters>> readInterfaceCounters() override;

private:
    enum class Outcome {
        Done,
        Changing, ///< worth another attempt
        Failed,
    };

    static Outcome outcomeOf(NetlinkSocket::DumpResult result);
    Outcome refreshLinks(bool withCounters);
    Outcome readStats();
    Outcome readOnce();
    std::vector<InterfaceCounters> assembled() const;

    NetlinkSocket m_requests;
    NetlinkSocket m_changes;
    bool m_linksKnown = false;
    bool m_statsRefused = false;
    std::vector<Link> m_links; ///< by index
    std::set<int> m_linkLevel;
    std::vector<IndexedCounters> m_counters; ///< of the present reading, by index
};

} // namespace pulsebar
