#include "platform/linux_/low/rtnl_link.h"

#include <gtest/gtest.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <string>
#include <vector>

namespace pulsebar {
namespace {

/// Bytes of a message, put together as the kernel does.
class Message
{
public:
    template <typename Record> Message &record(const Record &value)
    {
        return raw(&value, sizeof value);
    }
    Message &attribute(int type, const void *content, std::size_t size)
    {
        const nlattr header{static_cast<std::uint16_t>(sizeof(nlattr) + size),
                            static_cast<std::uint16_t>(type)};
        record(header).raw(content, size);
        m_bytes.resize((m_bytes.size() + 3) & ~std::size_t{3});
        return *this;
    }
    Message &text(int type, const std::string &value)
    {
        return attribute(type, value.c_str(), value.size() + 1);
    }
    Message &number(int type, std::int32_t value) { return attribute(type, &value, sizeof value); }
    Message &nested(int type, const Message &inner)
    {
        return attribute(type | NLA_F_NESTED, inner.m_bytes.data(), inner.m_bytes.size());
    }

    NetlinkBytes bytes() const { return m_bytes; }
    NetlinkBytes first(std::size_t size) const { return bytes().first(size); }
    std::size_t size() const { return m_bytes.size(); }

private:
    Message &raw(const void *content, std::size_t size)
    {
        const auto *start = static_cast<const std::byte *>(content);
        m_bytes.insert(m_bytes.end(), start, start + size);
        return *this;
    }

    std::vector<std::byte> m_bytes;
};

ifinfomsg headerOf(int index)
{
    ifinfomsg header{};
    header.ifi_index = index;
    header.ifi_flags = 1;
    header.ifi_type = 1;
    return header;
}

rtnl_link_stats64 someStats()
{
    rtnl_link_stats64 stats{};
    stats.rx_packets = 1;
    stats.tx_packets = 2;
    stats.rx_bytes = 1ULL << 40;
    stats.tx_bytes = 4;
    stats.rx_errors = 5;
    stats.tx_errors = 6;
    stats.collisions = 7;
    return stats;
}

Message wholeLink()
{
    Message info;
    info.text(IFLA_INFO_KIND, "veth").text(IFLA_INFO_SLAVE_KIND, "bridge");
    Message message;
    const auto stats = someStats();
    message.record(headerOf(12))
        .text(IFLA_IFNAME, "veth0")
        .number(IFLA_MASTER, 3)
        .number(IFLA_LINK, 9)
        .number(IFLA_LINK_NETNSID, 0)
        .text(IFLA_PARENT_DEV_NAME, "0000:00:03.0")
        .nested(IFLA_LINKINFO, info)
        .attribute(IFLA_STATS64, &stats, sizeof stats);
    return message;
}

TEST(RtnlLink, TakesWhatSaysWhereTheInterfaceStands)
{
    const auto link = parseLink(wholeLink().bytes());
    ASSERT_TRUE(link);
    EXPECT_EQ(link->index, 12);
    EXPECT_EQ(link->name, "veth0");
    EXPECT_EQ(link->kind, "veth");
    EXPECT_EQ(link->master, 3);
    EXPECT_EQ(link->masterKind, "bridge");
    EXPECT_EQ(link->lower, 9);
    EXPECT_EQ(link->lowerNamespace, 0);
    EXPECT_TRUE(link->hasDevice);
    EXPECT_EQ(link->flags, 1U);
}

TEST(RtnlLink, APlainCardHasNoRelations)
{
    Message message;
    message.record(headerOf(2)).text(IFLA_IFNAME, "eth0");
    const auto link = parseLink(message.bytes());
    ASSERT_TRUE(link);
    EXPECT_TRUE(link->kind.empty());
    EXPECT_EQ(link->master, 0);
    EXPECT_EQ(link->lower, 0);
    EXPECT_FALSE(link->lowerNamespace);
    EXPECT_FALSE(link->hasDevice);
    EXPECT_FALSE(parseLinkCounters(message.bytes()));
}

TEST(RtnlLink, CountersOfALinkMessage)
{
    const auto counters = parseLinkCounters(wholeLink().bytes());
    ASSERT_TRUE(counters);
    EXPECT_EQ(counters->inPackets, 1U);
    EXPECT_EQ(counters->outPackets, 2U);
    EXPECT_EQ(counters->inBytes, 1ULL << 40);
    EXPECT_EQ(counters->outBytes, 4U);
    EXPECT_EQ(counters->inErrors, 5U);
    EXPECT_EQ(counters->outErrors, 6U);
    EXPECT_EQ(counters->collisions, 7U);
}

TEST(RtnlLink, CountersOfAStatsMessageWhateverTheKernelsAge)
{
    const auto stats = someStats();
    constexpr std::size_t oldest = 10 * sizeof(std::uint64_t);
    for (const std::size_t size : {oldest, sizeof stats}) {
        if_stats_msg header{};
        header.ifindex = 5;
        Message message;
        message.record(header).attribute(IFLA_STATS_LINK_64, &stats, size);
        const auto parsed = parseStats(message.bytes());
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->index, 5);
        EXPECT_EQ(parsed->counters.collisions, 7U);
    }
    Message tooShort;
    tooShort.record(if_stats_msg{}).attribute(IFLA_STATS_LINK_64, &stats, oldest - 1);
    EXPECT_FALSE(parseStats(tooShort.bytes()));
}

TEST(RtnlLink, NoCutIsReadBeyondItsEnd)
{
    const Message message = wholeLink();
    for (std::size_t size = 0; size < message.size(); ++size) {
        // A copy of exactly that size lets a sanitizer see a byte too many.
        const std::vector<std::byte> cut(message.first(size).begin(), message.first(size).end());
        const auto link = parseLink(cut);
        EXPECT_EQ(link.has_value(), size >= sizeof(ifinfomsg) + 4 + sizeof "veth0") << size;
        EXPECT_FALSE(parseLinkCounters(cut)) << size;
        EXPECT_FALSE(parseStats(cut)) << size;
    }
}

TEST(RtnlLink, AttributesWithImpossibleLengthsEndTheWalk)
{
    for (const int length : {0, 3, 200, 0xffff}) {
        Message message;
        message.record(headerOf(2)).text(IFLA_IFNAME, "eth0");
        message.record(nlattr{static_cast<std::uint16_t>(length), IFLA_MASTER});
        message.record(std::int32_t{9});
        const auto link = parseLink(message.bytes());
        ASSERT_TRUE(link);
        EXPECT_EQ(link->master, 0) << length;
    }
}

TEST(RtnlLink, AMessageWithoutNameOrNumberIsNoInterface)
{
    EXPECT_FALSE(parseLink(Message().record(headerOf(2)).bytes()));
    EXPECT_FALSE(parseLink(Message().record(headerOf(0)).text(IFLA_IFNAME, "x").bytes()));
    EXPECT_FALSE(parseLink({}));
}

} // namespace
} // namespace pulsebar
