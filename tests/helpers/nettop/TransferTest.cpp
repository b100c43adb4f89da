#include "helpers/common/TestFolder.h"
#include "helpers/nettop/NettopRun.h"
#include "helpers/nettop/TcpEnds.h"
#include "platform/TestNetwork.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/ipv6.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <array>
#include <fstream>
#include <netinet/tcp.h>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

/// Real connections in a network of their own: nobody else's are in the report.
class TransferTest : public testing::Test
{
protected:
    ReportedOwners report() { return reportOf(m_setting); }
    /// This program's line; both ends of its connections are its own.
    ReportedOwner own()
    {
        const auto owners = report();
        const auto found = owners.find("test_nettop_program." + std::to_string(::getpid()));
        EXPECT_NE(found, owners.end());
        return found == owners.end() ? ReportedOwner() : found->second;
    }
    /// The connection whose local end is a socket's.
    ReportedConnection reported(const Socket &socket) { return find(own(), socket.name()); }
    static ReportedConnection find(const ReportedOwner &owner, const std::string &localName)
    {
        // A listener may have the same local end.
        for (const bool listens : {false, true}) {
            for (const auto &connection : owner.connections) {
                if (connection.address.starts_with(localName + "<->") &&
                    (connection.state == "Listen") == listens)
                    return connection;
            }
        }
        ADD_FAILURE() << "no connection of " << localName;
        return {};
    }
    static void expectBytes(const ReportedConnection &connection, std::uint64_t in,
                            std::uint64_t out)
    {
        EXPECT_EQ(connection.in, in) << connection.address << ' ' << connection.state;
        EXPECT_EQ(connection.out, out) << connection.address << ' ' << connection.state;
    }

    TestFolder m_runtime;
    NettopSetting m_setting{{"-L1", "-m", "tcp", "-c"}, m_runtime.path(), {}, 0};
    TestNetwork m_network;
    TestNetwork::Visit m_visit{m_network};
};

TEST_F(TransferTest, BytesAreThoseThatWereSent)
{
    for (const std::string address : {"127.0.0.1", "::1"}) {
        const Connection connection(address, address);
        std::uint64_t sent = 0;
        std::uint64_t answered = 0;
        for (const std::size_t size : {1U, 1000U, 65'536U, 1U << 20U, (5U << 20U) + 7U}) {
            transfer(connection.client, connection.server, size);
            transfer(connection.server, connection.client, size / 3);
            sent += size;
            answered += size / 3;
            const auto line = own();
            const auto client = find(line, connection.client.name());
            const auto server = find(line, connection.server.name());
            expectBytes(client, answered, sent);
            expectBytes(server, sent, answered);
            EXPECT_EQ(client.type, address == "::1" ? "tcp6" : "tcp4");
            EXPECT_EQ(client.address, connection.client.name() + "<->" + connection.server.name());
            EXPECT_EQ(client.interface, "lo");
            EXPECT_EQ(client.state, "Established");
        }
    }
}

TEST_F(TransferTest, ListenersMoveNothing)
{
    const auto ipv4 = listenAt("0.0.0.0");
    const auto ipv6 = listenAt("::");
    const auto line = own();
    EXPECT_EQ(line.in, 0U);
    ASSERT_EQ(line.connections.size(), 2U);
    const auto first = find(line, ipv4.name());
    EXPECT_EQ(first.address, ipv4.name() + "<->*:*");
    EXPECT_EQ(first.state, "Listen");
    EXPECT_EQ(first.interface, "");
    expectBytes(first, 0, 0);
    EXPECT_EQ(find(line, ipv6.name()).type, "tcp6");
}

TEST_F(TransferTest, HalfClosedConnectionsGoOn)
{
    const Connection connection;
    transfer(connection.client, connection.server, 1000);
    ::shutdown(connection.client.get(), SHUT_WR);
    waitForState(connection.server, TCP_CLOSE_WAIT);
    waitForState(connection.client, TCP_FIN_WAIT2);
    transfer(connection.server, connection.client, 77);
    const auto line = own();
    const auto client = find(line, connection.client.name());
    const auto server = find(line, connection.server.name());
    EXPECT_EQ(client.state, "FinWait2");
    EXPECT_EQ(server.state, "CloseWait");
    expectBytes(client, 77, 1000);
    expectBytes(server, 1000, 77);
}

TEST_F(TransferTest, ConnectionsClosedByTheOtherSideStayCounted)
{
    Connection connection;
    transfer(connection.client, connection.server, 500);
    connection.client.close();
    waitForState(connection.server, TCP_CLOSE_WAIT);
    const auto line = own();
    expectBytes(find(line, connection.server.name()), 500, 0);
    EXPECT_EQ(line.in, 500U);
    // The client was not seen while it lived: nobody can tell whose it was, and what it moved.
    EXPECT_EQ(line.out, 0U);
}

TEST_F(TransferTest, BothEndsClosedStayCounted)
{
    Connection connection;
    const auto client = connection.client.name();
    transfer(connection.client, connection.server, 500);
    transfer(connection.server, connection.client, 30);
    EXPECT_EQ(own().out, 530U);
    connection.client.close();
    waitForState(connection.server, TCP_CLOSE_WAIT);
    connection.server.close();
    for (int i = 0; i < 3; ++i) {
        const auto line = own();
        EXPECT_EQ(line.in, 530U);
        EXPECT_EQ(line.out, 530U);
        const auto left = find(line, client);
        EXPECT_EQ(left.state, "TimeWait");
        expectBytes(left, 30, 500);
    }
}

TEST_F(TransferTest, ResetConnectionsStayCounted)
{
    Connection connection;
    transfer(connection.client, connection.server, 4000);
    own();
    const linger reset{1, 0};
    ::setsockopt(connection.client.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    connection.client.close();
    waitForState(connection.server, TCP_CLOSE);
    for (int i = 0; i < 3; ++i) {
        const auto line = own();
        EXPECT_EQ(line.in, 4000U);
        EXPECT_EQ(line.out, 4000U);
        EXPECT_EQ(line.connections.size(), 1U); // the listener's
    }
}

TEST_F(TransferTest, ManyShortConnectionsAddUp)
{
    const auto listener = listenAt("127.0.0.1");
    constexpr std::uint64_t rounds = 4;
    constexpr std::uint64_t perRound = 50;
    for (std::uint64_t round = 1; round <= rounds; ++round) {
        std::vector<Socket> open;
        for (std::uint64_t i = 0; i < perRound; ++i) {
            open.push_back(connectTo("127.0.0.1", listener.port()));
            open.push_back(acceptFrom(listener));
            transfer(open[open.size() - 2], open.back(), 1024);
        }
        const auto line = own();
        EXPECT_EQ(line.in, round * perRound * 1024);
        EXPECT_EQ(line.out, round * perRound * 1024);
    }
    EXPECT_EQ(own().in, rounds * perRound * 1024);
}

TEST_F(TransferTest, AMappedConnectionIsWrittenAsWhatItIs)
{
    const Connection connection("::", "127.0.0.1");
    transfer(connection.client, connection.server, 10);
    const auto port = std::to_string(connection.server.port());
    const auto server = find(own(), "127.0.0.1:" + port);
    EXPECT_EQ(server.type, "tcp4");
    EXPECT_EQ(server.address, "127.0.0.1:" + port + "<->" + connection.client.name());
    EXPECT_EQ(server.interface, "lo");
    expectBytes(server, 10, 0);
}

TEST_F(TransferTest, AQueuedConnectionStandsUnderItsListener)
{
    const auto listener = listenAt("127.0.0.1");
    const auto client = connectTo("127.0.0.1", listener.port());
    const auto line = own();
    EXPECT_EQ(line.connections.size(), 3U);
    EXPECT_EQ(reported(client).state, "Established");
}

TEST_F(TransferTest, WithoutAMemoryEachReportIsComplete)
{
    m_setting.runtimeFolder.clear();
    const Connection connection;
    transfer(connection.client, connection.server, 1000);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(own().in, 1000U);
}

TEST_F(TransferTest, TheMemoryMayVanishAtAnyMoment)
{
    const Connection connection;
    transfer(connection.client, connection.server, 1000);
    EXPECT_EQ(own().in, 1000U);
    m_runtime.remove("pulsebar");
    EXPECT_EQ(own().in, 1000U);
    m_runtime.write("pulsebar/nettop.state", "garbage");
    EXPECT_EQ(own().in, 1000U);
}

TEST_F(TransferTest, ManyAtOnceAreRight)
{
    const Connection connection;
    std::uint64_t sent = 0;
    for (int round = 0; round < 3; ++round) {
        transfer(connection.client, connection.server, 1000);
        sent += 1000;
        std::array<std::unique_ptr<NettopRun>, 6> runs;
        for (auto &run : runs)
            run = std::make_unique<NettopRun>(m_setting);
        for (const auto &run : runs) {
            const auto owners = parseReport(run->readAll());
            ASSERT_EQ(owners.size(), 1U);
            EXPECT_EQ(owners.begin()->second.in, sent);
            EXPECT_EQ(run->wait(), 0);
        }
    }
}

void giveAddress(const std::string &interface, const std::string &address)
{
    const Socket socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{};
    interface.copy(request.ifr_name, IFNAMSIZ - 1);
    auto *place = reinterpret_cast<sockaddr_in *>(&request.ifr_addr);
    place->sin_family = AF_INET;
    ASSERT_EQ(::inet_pton(AF_INET, address.c_str(), &place->sin_addr), 1);
    ASSERT_EQ(::ioctl(socket.get(), SIOCSIFADDR, &request), 0);
    ASSERT_EQ(::inet_pton(AF_INET, "255.255.255.0", &place->sin_addr), 1);
    ASSERT_EQ(::ioctl(socket.get(), SIOCSIFNETMASK, &request), 0);
}

void giveIpv6Address(const std::string &interface, const std::string &address)
{
    // At once, without asking around whether somebody has it.
    std::ofstream("/proc/sys/net/ipv6/conf/" + interface + "/accept_dad") << "0";
    const Socket socket(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    in6_ifreq request{};
    request.ifr6_ifindex = static_cast<int>(::if_nametoindex(interface.c_str()));
    request.ifr6_prefixlen = 64;
    ASSERT_EQ(::inet_pton(AF_INET6, address.c_str(), &request.ifr6_addr), 1);
    ASSERT_EQ(::ioctl(socket.get(), SIOCSIFADDR, &request), 0);
}

Socket connectFrom(const TestNetwork &network, const std::string &address, std::uint16_t port)
{
    const TestNetwork::Visit visit(network);
    return connectTo(address, port);
}

TEST_F(TransferTest, BetweenTwoNetworksEachSeesItsEnd)
{
    const TestNetwork other;
    m_network.addPair("near", other, "far");
    giveAddress("near", "10.9.8.1");
    giveIpv6Address("near", "fd00:9::1");
    {
        const TestNetwork::Visit visit(other);
        giveAddress("far", "10.9.8.2");
        giveIpv6Address("far", "fd00:9::2");
    }
    for (const std::string address : {"10.9.8.", "fd00:9::"}) {
        const auto listener = listenAt(address + "1");
        const auto client = connectFrom(other, address + "1", listener.port());
        const auto server = acceptFrom(listener);
        transfer(client, server, 3U << 20U);
        transfer(server, client, 1234);
        const auto here = own();
        const auto near = find(here, server.name());
        expectBytes(near, 3U << 20U, 1234);
        EXPECT_EQ(near.interface, "near");
        for (const auto &connection : here.connections)
            EXPECT_FALSE(connection.address.starts_with(client.name()));
        const TestNetwork::Visit visit(other);
        // The memory of one network means nothing in the other.
        const auto far = reported(client);
        expectBytes(far, 1234, 3U << 20U);
        EXPECT_EQ(far.interface, "far");
    }
}

TEST_F(TransferTest, ABoundSocketNamesItsDevice)
{
    const auto listener = listenAt("0.0.0.0");
    ASSERT_EQ(::setsockopt(listener.get(), SOL_SOCKET, SO_BINDTODEVICE, "lo", 2), 0);
    EXPECT_EQ(reported(listener).interface, "lo");
}

} // namespace
} // namespace pulsebar::nettop
