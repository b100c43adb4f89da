#include "platform/linux_/low/inet_diag.h"
#include "platform/low/RecordedSockets.h"

#include <gtest/gtest.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/tcp.h>
#include <sys/socket.h>

#include <vector>

namespace pulsebar {
namespace {

template <typename Bytes> NetlinkBytes bytesOf(const Bytes &bytes)
{
    return std::as_bytes(std::span(bytes));
}

template <typename Bytes> TcpSocket parsed(const Bytes &bytes)
{
    const auto socket = parseTcpSocket(bytesOf(bytes));
    EXPECT_TRUE(socket);
    return socket.value_or(TcpSocket());
}

/// The recorded answer with another tcp_info.
std::vector<unsigned char> withInfo(const tcp_info &info, std::uint8_t state, std::size_t size)
{
    inet_diag_msg header{};
    header.idiag_family = AF_INET;
    header.idiag_state = state;
    header.idiag_inode = 7;
    std::vector<unsigned char> bytes(sizeof header + sizeof(nlattr) + size);
    const nlattr attribute{static_cast<std::uint16_t>(sizeof(nlattr) + size), INET_DIAG_INFO};
    std::memcpy(bytes.data(), &header, sizeof header);
    std::memcpy(bytes.data() + sizeof header, &attribute, sizeof attribute);
    std::memcpy(bytes.data() + sizeof header + sizeof attribute, &info, size);
    return bytes;
}

TcpCounters countersFor(const tcp_info &info, TcpState state, std::size_t size = sizeof(tcp_info))
{
    auto complete = info;
    complete.tcpi_state = static_cast<std::uint8_t>(state);
    return parsed(withInfo(complete, complete.tcpi_state, size)).counters;
}

TEST(InetDiag, CountsPayloadOfBothEnds)
{
    const auto client = parsed(recorded::establishedClient);
    EXPECT_EQ(client.state, TcpState::Established);
    EXPECT_FALSE(client.isIpv6);
    EXPECT_TRUE(client.hasCounters);
    EXPECT_FALSE(client.left);
    EXPECT_EQ(client.localPort, 47002);
    EXPECT_EQ(client.remotePort, 47001);
    EXPECT_EQ(client.localAddress[0], std::byte{127});
    EXPECT_EQ(client.localAddress[3], std::byte{1});
    EXPECT_NE(client.cookie, 0U);
    EXPECT_NE(client.inode, 0U);
    // The kernel's count of acknowledged bytes is 1001 here.
    EXPECT_EQ(client.counters.sent, 1000U);
    EXPECT_EQ(client.counters.received, 77U);
    EXPECT_EQ(client.counters.resent, 0U);
    EXPECT_GT(client.counters.roundTrip, 0U);
    EXPECT_NE(client.congestionControl[0], '\0');
    const auto server = parsed(recorded::establishedServer);
    EXPECT_EQ(server.counters.sent, 77U);
    EXPECT_EQ(server.counters.received, 1000U);
}

TEST(InetDiag, CountsNeitherEndOfAHalfClosedConnection)
{
    const auto client = parsed(recorded::halfClosedClient);
    EXPECT_EQ(client.state, TcpState::FinWait2);
    EXPECT_FALSE(client.left);
    EXPECT_EQ(client.counters.sent, 1000U);
    EXPECT_EQ(client.counters.received, 77U);
    const auto server = parsed(recorded::closeWaitServer);
    EXPECT_EQ(server.state, TcpState::CloseWait);
    EXPECT_EQ(server.counters.sent, 77U);
    EXPECT_EQ(server.counters.received, 1000U);
}

TEST(InetDiag, KnowsWhatIsLeftOfAConnection)
{
    const auto socket = parsed(recorded::timeWait);
    EXPECT_EQ(socket.state, TcpState::TimeWait);
    EXPECT_TRUE(socket.left);
    EXPECT_FALSE(socket.hasCounters);
    // It is known by its cookie.
    EXPECT_EQ(socket.cookie, parsed(recorded::establishedClient).cookie);
}

TEST(InetDiag, ListeningSocketsMoveNothing)
{
    const auto socket = parsed(recorded::listening);
    EXPECT_EQ(socket.state, TcpState::Listen);
    EXPECT_EQ(socket.counters.sent, 0U);
    EXPECT_EQ(socket.counters.received, 0U);
    EXPECT_TRUE(parsed(recorded::listening6).isIpv6);
}

TEST(InetDiag, TellsMappedAddressesFromOthers)
{
    EXPECT_TRUE(isMappedIpv4(parsed(recorded::mappedServer).localAddress));
    EXPECT_FALSE(isMappedIpv4(parsed(recorded::established6).localAddress));
    EXPECT_FALSE(isMappedIpv4(parsed(recorded::listening6).localAddress));
}

TEST(InetDiag, CountsWhatIsAcknowledgedWhileDataIsOnItsWay)
{
    tcp_info info{};
    info.tcpi_unacked = 3;
    info.tcpi_bytes_acked = 1001;
    info.tcpi_bytes_sent = 9000;
    info.tcpi_bytes_retrans = 2000;
    const auto counters = countersFor(info, TcpState::Established);
    EXPECT_GE(counters.sent, 1000U);
    EXPECT_LE(counters.sent, 1001U);
    EXPECT_EQ(counters.resent, 2000U);
}

TEST(InetDiag, CountsRepeatsOnce)
{
    tcp_info info{};
    info.tcpi_bytes_acked = 5002;
    info.tcpi_bytes_sent = 7000;
    info.tcpi_bytes_retrans = 2000;
    EXPECT_EQ(countersFor(info, TcpState::FinWait2).sent, 5000U);
    // More repeats than were sent at all cannot be right; what was acknowledged was sent.
    info.tcpi_bytes_retrans = 4000;
    EXPECT_EQ(countersFor(info, TcpState::FinWait2).sent, 5002U);
}

TEST(InetDiag, NeverFallsBelowZero)
{
    const tcp_info info{};
    for (const auto state : {TcpState::SynSent, TcpState::CloseWait, TcpState::LastAck}) {
        EXPECT_EQ(countersFor(info, state).sent, 0U);
        EXPECT_EQ(countersFor(info, state).received, 0U);
    }
    tcp_info odd{};
    odd.tcpi_bytes_retrans = 10;
    EXPECT_EQ(countersFor(odd, TcpState::Established).sent, 0U);
}

TEST(InetDiag, ReadsOlderKernels)
{
    tcp_info info{};
    info.tcpi_bytes_acked = 1001;
    info.tcpi_bytes_received = 55;
    const auto counters =
        countersFor(info, TcpState::Established, offsetof(tcp_info, tcpi_bytes_sent));
    EXPECT_EQ(counters.sent, 1000U);
    EXPECT_EQ(counters.received, 55U);
    const auto older = parseTcpSocket(bytesOf(withInfo(info, 1, 100)));
    ASSERT_TRUE(older);
    EXPECT_FALSE(older->hasCounters);
}

TEST(InetDiag, NamesStates)
{
    EXPECT_EQ(nameOfTcpState(TcpState::Established), "Established");
    EXPECT_EQ(nameOfTcpState(TcpState::SynReceived), "SynReceived");
    EXPECT_EQ(nameOfTcpState(TcpState::Closing), "Closing");
    EXPECT_EQ(nameOfTcpState(TcpState::Unknown), "");
    for (const int number : {3, 12})
        EXPECT_EQ(parsed(withInfo({}, static_cast<std::uint8_t>(number), 0)).state,
                  TcpState::SynReceived);
    EXPECT_EQ(parsed(withInfo({}, 99, 0)).state, TcpState::Unknown);
}

TEST(InetDiag, RefusesWhatIsCutShort)
{
    const auto whole = bytesOf(recorded::establishedClient);
    for (std::size_t size = 0; size < sizeof(inet_diag_msg); ++size)
        EXPECT_FALSE(parseTcpSocket(whole.first(size)));
    for (std::size_t size = sizeof(inet_diag_msg); size < whole.size(); ++size)
        EXPECT_TRUE(parseTcpSocket(whole.first(size)));
    auto other = recorded::establishedClient;
    other[0] = AF_UNIX;
    EXPECT_FALSE(parseTcpSocket(bytesOf(other)));
}

} // namespace
} // namespace pulsebar
