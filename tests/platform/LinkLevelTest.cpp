#include "platform/linux_/LinkLevel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/if.h>
#include <linux/if_arp.h>

#include <algorithm>
#include <string>
#include <vector>

namespace pulsebar {
namespace {

/// Builds a list of links line by line; numbers them in the order in which they are added.
class LinkTable
{
public:
    Link &add(const std::string &name, const std::string &kind = {})
    {
        Link link;
        link.index = static_cast<int>(m_links.size()) + 1;
        link.name = name;
        link.kind = kind;
        link.flags = IFF_UP;
        link.type = ARPHRD_ETHER;
        m_links.push_back(link);
        return m_links.back();
    }

    LinkTable &loopback()
    {
        Link &link = add("lo");
        link.flags |= IFF_LOOPBACK;
        link.type = ARPHRD_LOOPBACK;
        return *this;
    }
    LinkTable &hardware(const std::string &name)
    {
        add(name).hasDevice = true;
        return *this;
    }
    LinkTable &of(const std::string &name, const std::string &kind)
    {
        add(name, kind);
        return *this;
    }
    LinkTable &on(const std::string &lower, const std::string &name, const std::string &kind)
    {
        const int index = find(lower).index;
        add(name, kind).lower = index;
        return *this;
    }
    /// What stands on an interface of another namespace.
    LinkTable &onOther(const std::string &name, const std::string &kind, int space)
    {
        Link &link = add(name, kind);
        link.lower = 77;
        link.lowerNamespace = space;
        return *this;
    }
    LinkTable &pairWithin(const std::string &left, const std::string &right)
    {
        add(left, "veth");
        on(left, right, "veth");
        find(left).lower = find(right).index;
        return *this;
    }
    /// An end of a pair whose other end is in another namespace.
    LinkTable &end(const std::string &name, int space) { return onOther(name, "veth", space); }
    LinkTable &port(const std::string &name, const std::string &master)
    {
        find(name).master = find(master).index;
        find(name).masterKind = find(master).kind;
        return *this;
    }
    LinkTable &down(const std::string &name)
    {
        find(name).flags &= ~static_cast<unsigned>(IFF_UP);
        return *this;
    }

    std::vector<std::string> chosen() const
    {
        const auto indexes = linkLevelInterfaces(m_links);
        std::vector<std::string> names;
        for (const auto &link : m_links) {
            if (indexes.contains(link.index))
                names.push_back(link.name);
        }
        return names;
    }

private:
    Link &find(const std::string &name)
    {
        return *std::find_if(m_links.begin(), m_links.end(),
                             [&](const Link &link) { return link.name == name; });
    }

    std::vector<Link> m_links;
};

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LinkLevel, NothingIsChosenFromNothing)
{
    EXPECT_THAT(LinkTable().chosen(), IsEmpty());
    EXPECT_THAT(LinkTable().loopback().chosen(), IsEmpty());
}

TEST(LinkLevel, EveryCardOfALaptopCounts)
{
    auto table = LinkTable().loopback().hardware("eth0").hardware("wlan0").hardware("usb0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0", "wlan0", "usb0"));
}

TEST(LinkLevel, ACardIsHardwareAlsoWhereTheKernelNamesNoDevice)
{
    EXPECT_THAT(LinkTable().loopback().of("eth0", "").chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, HardwareThatHasAKindCounts)
{
    auto table = LinkTable()
                     .of("can0", "can")
                     .of("ib0", "ipoib")
                     .of("wwan0", "wwan")
                     .of("nsim", "netdevsim");
    EXPECT_THAT(table.chosen(), ElementsAre("can0", "ib0", "wwan0", "nsim"));
}

TEST(LinkLevel, TheChoiceDoesNotDependOnWhatIsUp)
{
    auto table = LinkTable().loopback().hardware("eth0").end("veth1", 0).down("eth0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, ABridgeIsCountedByItsCardAndNotByTheHostsEnds)
{
    auto table =
        LinkTable().loopback().hardware("eth0").of("br0", "bridge").end("veth1", 0).end("veth2", 1);
    table.port("eth0", "br0").port("veth1", "br0").port("veth2", "br0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, HostEndsThatAreRoutedDoNotCountBesideHardware)
{
    auto table = LinkTable().loopback().hardware("eth0").end("cali1", 0).end("cali2", 1);
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, ABondIsCountedByItsCards)
{
    auto table = LinkTable().hardware("eno1").hardware("eno2").of("bond0", "bond");
    table.port("eno1", "bond0").port("eno2", "bond0").on("bond0", "bond0.20", "vlan");
    table.of("br0", "bridge").port("bond0", "br0");
    EXPECT_THAT(table.chosen(), ElementsAre("eno1", "eno2"));
}

TEST(LinkLevel, ATeamIsCountedByItsCards)
{
    auto table = LinkTable().hardware("eno1").hardware("eno2").of("team0", "team");
    table.port("eno1", "team0").port("eno2", "team0");
    EXPECT_THAT(table.chosen(), ElementsAre("eno1", "eno2"));
}

TEST(LinkLevel, WhatStandsOnACardIsCountedByTheCard)
{
    auto table = LinkTable().loopback().hardware("eth0");
    for (const char *kind : {"vlan", "macvlan", "macvtap", "ipvlan", "ipvtap", "macsec", "vxlan",
                             "ipip", "gre", "rmnet", "dsa", "lowpan"})
        table.on("eth0", std::string("up-") + kind, kind);
    table.on("up-vlan", "vlan-in-vlan", "vlan");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, AnInfinibandPartitionIsCountedByItsPort)
{
    auto table = LinkTable().of("ib0", "ipoib").on("ib0", "ib0.8001", "ipoib");
    EXPECT_THAT(table.chosen(), ElementsAre("ib0"));
}

TEST(LinkLevel, TunnelsAreCountedByWhatCarriesThem)
{
    auto table = LinkTable().loopback().hardware("eth0");
    for (const char *kind : {"tun", "wireguard", "ipip", "sit", "ip6tnl", "gre", "gretap", "vxlan",
                             "geneve", "vti", "xfrm", "ppp", "l2tpeth", "amt", "gtp"})
        table.of(std::string("tunnel-") + kind, kind);
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, WhatOnlyJoinsOrCopiesNeverCounts)
{
    auto table = LinkTable().loopback();
    for (const char *kind : {"bridge", "bond", "team", "vrf", "dummy", "ifb", "nlmon", "vcan",
                             "hsr", "batadv", "openvswitch"})
        table.of(kind, kind);
    EXPECT_THAT(table.chosen(), IsEmpty());
}

TEST(LinkLevel, AMonitorOfARadioDoesNotCountItsFramesAgain)
{
    auto table = LinkTable().hardware("wlan0");
    Link &monitor = table.add("mon0");
    monitor.hasDevice = true;
    monitor.type = ARPHRD_IEEE80211_RADIOTAP;
    EXPECT_THAT(table.chosen(), ElementsAre("wlan0"));
}

TEST(LinkLevel, AFailoverPairIsCountedByItsUpperHalf)
{
    auto table = LinkTable().hardware("eth0").hardware("eth0vf");
    table.port("eth0vf", "eth0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, AContainersOnlyInterfaceCounts)
{
    EXPECT_THAT(LinkTable().loopback().end("eth0", 0).chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().onOther("eth0", "netkit", 0).chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().onOther("eth0", "macvlan", 0).chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().onOther("eth0", "ipvlan", 0).chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().of("tap0", "tun").chosen(), ElementsAre("tap0"));
    EXPECT_THAT(LinkTable().loopback().of("wg0", "wireguard").chosen(), ElementsAre("wg0"));
}

TEST(LinkLevel, EveryNetworkOfAContainerCounts)
{
    EXPECT_THAT(LinkTable().loopback().end("eth0", 0).end("eth1", 0).chosen(),
                ElementsAre("eth0", "eth1"));
    EXPECT_THAT(LinkTable().loopback().end("eth0", 0).onOther("eth1", "macvlan", 0).chosen(),
                ElementsAre("eth0", "eth1"));
}

TEST(LinkLevel, ATunnelInAContainerIsCountedByItsInterface)
{
    auto table = LinkTable().loopback().end("eth0", 0).of("wg0", "wireguard").of("tun0", "tun");
    table.on("eth0", "eth0.5", "vlan").of("tunl0", "ipip");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, AContainerCountsItsOwnEndAndNotThoseOfItsContainers)
{
    auto bridged = LinkTable().loopback().of("docker0", "bridge").end("vethin", 1).end("eth0", 0);
    bridged.port("vethin", "docker0");
    EXPECT_THAT(bridged.chosen(), ElementsAre("eth0"));

    auto routed = LinkTable().loopback().end("pod1", 1).end("eth0", 0).end("pod2", 2);
    EXPECT_THAT(routed.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, AContainersOwnEndMayBeAPortOfItsBridge)
{
    auto table = LinkTable().loopback().of("br0", "bridge").end("eth0", 0).end("vethin", 1);
    table.port("eth0", "br0").port("vethin", "br0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, AMovedInterfaceTellsWhichEndsAreOurOwn)
{
    auto table = LinkTable().loopback().onOther("lan", "macvlan", 3).end("pod", 1).end("eth0", 3);
    EXPECT_THAT(table.chosen(), ElementsAre("lan", "eth0"));
}

TEST(LinkLevel, APortOfABondUnderABridgeIsAPortOfTheBridge)
{
    auto table = LinkTable().loopback().end("eth0", 4).of("bond0", "bond").of("br0", "bridge");
    table.end("vethin", 1).port("vethin", "bond0").port("bond0", "br0");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

TEST(LinkLevel, APairWithinTheNamespaceIsNotCounted)
{
    auto table = LinkTable().loopback().hardware("eth0").pairWithin("veth0", "veth1");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().pairWithin("veth0", "veth1").chosen(), IsEmpty());
}

TEST(LinkLevel, AnEndWhoseNamespaceHasNoNumberComesLast)
{
    auto table = LinkTable().loopback().end("going", -1).end("eth0", 5);
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
    EXPECT_THAT(LinkTable().loopback().end("alone", -1).chosen(), ElementsAre("alone"));
}

TEST(LinkLevel, APhoneLineCountsWhereThereIsNothingElse)
{
    EXPECT_THAT(LinkTable().loopback().of("ppp0", "ppp").chosen(), ElementsAre("ppp0"));
    EXPECT_THAT(LinkTable().loopback().hardware("eth0").of("ppp0", "ppp").chosen(),
                ElementsAre("eth0"));
}

TEST(LinkLevel, MastersThatGoInCirclesAreSurvived)
{
    auto table = LinkTable().of("a", "bond").of("b", "bond").end("eth0", 0);
    table.port("a", "b").port("b", "a").port("eth0", "a");
    EXPECT_THAT(table.chosen(), ElementsAre("eth0"));
}

} // namespace
} // namespace pulsebar
