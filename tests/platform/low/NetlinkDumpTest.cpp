#include "platform/linux_/low/netlink_dump.h"
#include "platform/linux_/low/rtnl_address.h"

#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <sys/socket.h>

#include <netinet/in.h>
#include <vector>

namespace pulsebar {
namespace {

template <typename Record> void append(std::vector<std::byte> &bytes, const Record &record)
{
    const auto part = std::as_bytes(std::span(&record, 1));
    bytes.insert(bytes.end(), part.begin(), part.end());
    bytes.resize((bytes.size() + 3) & ~std::size_t{3});
}

void appendMessage(std::vector<std::byte> &bytes, std::uint16_t type, std::uint32_t length)
{
    append(bytes, nlmsghdr{length, type, 0, 5, 0});
    bytes.resize(bytes.size() + 4, std::byte{0x7F});
}

TEST(NetlinkMessages, AreTakenOneAfterTheOther)
{
    std::vector<std::byte> bytes;
    appendMessage(bytes, 20, 20);
    appendMessage(bytes, 21, 17); // padded
    NetlinkMessages messages(bytes);
    const auto first = messages.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->type, 20);
    EXPECT_EQ(first->sequence, 5U);
    EXPECT_EQ(first->content.size(), 4U);
    const auto second = messages.next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->content.size(), 1U);
    EXPECT_FALSE(messages.next());
}

TEST(NetlinkMessages, EndAtAWrongLength)
{
    for (const std::uint32_t length : {0U, 15U, 21U, ~0U}) {
        std::vector<std::byte> bytes;
        appendMessage(bytes, 20, length);
        EXPECT_FALSE(NetlinkMessages(bytes).next()) << length;
    }
}

std::vector<std::byte> addressMessage(std::uint8_t family, int attributes)
{
    std::vector<std::byte> bytes;
    append(bytes, ifaddrmsg{family, 8, 0, 0, 3});
    const std::size_t size = family == AF_INET ? 4 : 16;
    for (int i = 0; i < attributes; ++i) {
        append(bytes, nlattr{static_cast<std::uint16_t>(4 + size),
                             static_cast<std::uint16_t>(i == 0 ? IFA_ADDRESS : IFA_LOCAL)});
        bytes.resize(bytes.size() + size, static_cast<std::byte>(10 + i));
    }
    return bytes;
}

TEST(RtnlAddress, PrefersTheNearEnd)
{
    const auto one = parseInterfaceAddress(addressMessage(AF_INET6, 1));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->index, 3);
    EXPECT_EQ(one->family, AF_INET6);
    EXPECT_EQ(one->bytes[15], std::byte{10});
    const auto both = parseInterfaceAddress(addressMessage(AF_INET, 2));
    ASSERT_TRUE(both);
    EXPECT_EQ(both->bytes[3], std::byte{11});
    EXPECT_EQ(both->bytes[4], std::byte{0});
}

TEST(RtnlAddress, RefusesWhatNamesNone)
{
    EXPECT_FALSE(parseInterfaceAddress({}));
    EXPECT_FALSE(parseInterfaceAddress(addressMessage(AF_INET, 0)));
    EXPECT_FALSE(parseInterfaceAddress(addressMessage(AF_UNIX, 1)));
    const auto whole = addressMessage(AF_INET6, 1);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(parseInterfaceAddress(NetlinkBytes(whole).first(size)));
}

TEST(NetlinkDump, ListsTheLoopbackAddress)
{
    NetlinkDump dump(NETLINK_ROUTE);
    const ifaddrmsg everything{};
    // Twice: the first answer leaves nothing behind.
    for (int i = 0; i < 2; ++i) {
        bool found = false;
        const auto result =
            dump.ask(RTM_GETADDR, std::as_bytes(std::span(&everything, 1)),
                     [&](std::uint16_t type, NetlinkBytes content) {
                         const auto address = parseInterfaceAddress(content);
                         found = found || (type == RTM_NEWADDR && address && address->index == 1 &&
                                           address->bytes[0] == std::byte{127});
                     });
        EXPECT_EQ(result, NetlinkDump::Result::Complete);
        EXPECT_TRUE(found);
    }
}

TEST(NetlinkDump, SaysWhyTheKernelRefuses)
{
    NetlinkDump dump(NETLINK_SOCK_DIAG);
    const auto ignore = [](std::uint16_t, NetlinkBytes) { FAIL(); };
    // No such family.
    const sock_diag_req request{AF_MAX - 1, 0};
    EXPECT_EQ(dump.ask(SOCK_DIAG_BY_FAMILY, std::as_bytes(std::span(&request, 1)), ignore),
              NetlinkDump::Result::Failed);
    EXPECT_NE(dump.error(), 0);
    const std::vector<std::byte> large(1000);
    EXPECT_EQ(dump.ask(SOCK_DIAG_BY_FAMILY, large, ignore), NetlinkDump::Result::Failed);
    EXPECT_EQ(dump.error(), EMSGSIZE);
    NetlinkDump none(31);
    EXPECT_EQ(none.ask(SOCK_DIAG_BY_FAMILY, {}, ignore), NetlinkDump::Result::Failed);
    EXPECT_EQ(none.error(), EPROTONOSUPPORT);
}

} // namespace
} // namespace pulsebar
