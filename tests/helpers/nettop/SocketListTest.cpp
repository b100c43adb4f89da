#include "nettop/SocketList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <netinet/in.h>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

TEST(SocketList, IsInOrderAndHasEachSocketOnce)
{
    TcpSocket counted;
    counted.cookie = 5;
    counted.hasCounters = true;
    TcpSocket left;
    left.cookie = 5;
    TcpSocket first;
    first.cookie = 2;
    for (auto sockets : {std::vector{counted, left, first}, std::vector{left, first, counted}}) {
        orderByCookie(sockets);
        ASSERT_EQ(sockets.size(), 2U);
        EXPECT_EQ(sockets[0].cookie, 2U);
        EXPECT_EQ(sockets[1].cookie, 5U);
        EXPECT_TRUE(sockets[1].hasCounters);
    }
    std::vector<TcpSocket> none;
    orderByCookie(none);
    EXPECT_TRUE(none.empty());
}

TEST(SocketList, HasBothFamilies)
{
    const int ipv4 = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int ipv6 = ::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::listen(ipv4, 1), 0);
    ASSERT_EQ(::listen(ipv6, 1), 0);
    NetlinkDump dump(NETLINK_SOCK_DIAG);
    const auto sockets = readTcpSockets(dump);
    ASSERT_TRUE(sockets);
    for (const int descriptor : {ipv4, ipv6}) {
        sockaddr_in6 address{};
        socklen_t size = sizeof address;
        ASSERT_EQ(::getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size), 0);
        const auto found = std::find_if(sockets->begin(), sockets->end(), [&](const auto &socket) {
            return socket.state == TcpState::Listen &&
                   socket.localPort == ntohs(address.sin6_port) &&
                   socket.isIpv6 == (descriptor == ipv6);
        });
        EXPECT_NE(found, sockets->end());
        ::close(descriptor);
    }
}

TEST(SocketList, ASocketThatIsOnlyBoundIsNoConnection)
{
    const int bound = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::bind(bound, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    NetlinkDump dump(NETLINK_SOCK_DIAG);
    const auto sockets = readTcpSockets(dump);
    ASSERT_TRUE(sockets);
    EXPECT_TRUE(std::none_of(sockets->begin(), sockets->end(), [](const auto &socket) {
        return socket.state == TcpState::Closed || socket.state == TcpState::Unknown;
    }));
    ::close(bound);
}

} // namespace
} // namespace pulsebar::nettop
