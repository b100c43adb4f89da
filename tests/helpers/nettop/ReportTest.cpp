#include "nettop/Report.h"

#include "helpers/nettop/FakeProcesses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstdlib>
#include <sstream>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

using testing::ElementsAre;

std::array<std::byte, 16> address(std::initializer_list<int> bytes)
{
    std::array<std::byte, 16> made{};
    std::transform(bytes.begin(), bytes.end(), made.begin(),
                   [](int byte) { return static_cast<std::byte>(byte); });
    return made;
}

TcpSocket ipv4()
{
    TcpSocket socket;
    socket.cookie = 1;
    socket.inode = 501;
    socket.uid = 1000;
    socket.state = TcpState::Established;
    socket.localAddress = address({10, 0, 1, 2});
    socket.localPort = 50123;
    socket.remoteAddress = address({192, 0, 2, 7});
    socket.remotePort = 443;
    socket.hasCounters = true;
    return socket;
}

TcpSocket ipv6()
{
    auto socket = ipv4();
    socket.isIpv6 = true;
    socket.localAddress = address({0x20, 1, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    socket.remoteAddress = address({0x20, 1, 0x0D, 0xB8});
    return socket;
}

TEST(NettopAddress, IsThatOfBothEnds)
{
    EXPECT_EQ(addressText(ipv4()), "tcp4 10.0.1.2:50123<->192.0.2.7:443");
    EXPECT_EQ(addressText(ipv6()), "tcp6 [2001:db8::1]:50123<->[2001:db8::]:443");
}

TEST(NettopAddress, OfAMappedSocketIsPlain)
{
    auto socket = ipv6();
    socket.localAddress = address({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 10, 0, 1, 2});
    socket.remoteAddress = address({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 192, 0, 2, 7});
    EXPECT_EQ(addressText(socket), "tcp4 10.0.1.2:50123<->192.0.2.7:443");
}

TEST(NettopAddress, OfAListenerHasNoOtherEnd)
{
    auto socket = ipv4();
    socket.state = TcpState::Listen;
    socket.localAddress = {};
    EXPECT_EQ(addressText(socket), "tcp4 0.0.0.0:50123<->*:*");
    socket.isIpv6 = true;
    EXPECT_EQ(addressText(socket), "tcp6 [::]:50123<->*:*");
}

/// Reports of a few sockets and processes.
class ReportTest : public testing::Test
{
protected:
    std::vector<std::string> lines()
    {
        Accounts accounts(memory, processes, 1000);
        accounts.update(sockets, 1);
        InterfaceNames interfaces(m_socket);
        Report report(memory, interfaces, [](std::uint32_t uid) {
            return "user" + std::to_string(uid) + ": other processes";
        });
        std::istringstream text(report.write(sockets, accounts, {1'000'000'000, 1'234'567}));
        std::vector<std::string> list;
        for (std::string line; std::getline(text, line);)
            list.push_back(line.substr(line.find(',')));
        return list;
    }
    ~ReportTest() override { ::close(m_socket); }

    std::vector<TcpSocket> sockets;
    FakeProcesses processes;
    Memory memory;

private:
    int m_socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST_F(ReportTest, PutsConnectionsUnderTheirOwner)
{
    auto connection = ipv4();
    connection.localAddress = address({127, 0, 0, 1});
    connection.counters = {150, 900, 30, 2, 12'034, 65535, 64000};
    connection.congestionControl = {'c', 'u', 'b', 'i', 'c'};
    auto listener = ipv4();
    listener.cookie = 2;
    listener.inode = 502;
    listener.state = TcpState::Listen;
    listener.localAddress = {};
    auto hidden = ipv6();
    hidden.cookie = 3;
    hidden.inode = 999;
    hidden.uid = 33;
    hidden.counters.received = 5;
    auto left = ipv4();
    left.cookie = 4;
    left.inode = 0;
    left.state = TcpState::TimeWait;
    left.hasCounters = false;
    left.left = true;
    sockets = {connection, listener, hidden, left};
    processes.give(412, 501);
    processes.give(99, 502);
    processes.run(99).start = 1;
    EXPECT_THAT(
        lines(),
        ElementsAre(
            ",,interface,state,bytes_in,bytes_out,rx_ooo,re-tx,rtt_avg,rcvsize,tx_win,cc_algo",
            ",program.99,,,0,0,,,,,,", ",tcp4 0.0.0.0:50123<->*:*,,Listen,0,0,,,,,,",
            ",program.412,,,900,150,,,,,,",
            ",tcp4 127.0.0.1:50123<->192.0.2.7:443,lo,Established,900,150,2,30,12.034 "
            "ms,65535,64000,cubic",
            ",user33: other processes,,,5,0,,,,,,",
            ",tcp6 [2001:db8::1]:50123<->[2001:db8::]:443,,Established,5,0,0,0,0.000 ms,0,0,",
            ",closed connections,,,0,0,,,,,,",
            ",tcp4 10.0.1.2:50123<->192.0.2.7:443,,TimeWait,0,0,,,,,,"));
}

TEST_F(ReportTest, KeepsTheLineOfAProcessWhoseConnectionsClosed)
{
    auto connection = ipv4();
    connection.counters.received = 900;
    sockets = {connection};
    processes.give(412, 501);
    lines();
    sockets.clear();
    EXPECT_EQ(lines().back(), ",program.412,,,900,0,,,,,,");
    EXPECT_EQ(lines().back(), ",program.412,,,900,0,,,,,,");
}

TEST_F(ReportTest, NoNameBreaksALine)
{
    for (const std::string name : {"tcpdump", "a,b", "a\nb", "\xFF\xFE,\n", "time", "", "a.1,2"}) {
        sockets = {ipv4()};
        memory = {};
        processes.processes.clear();
        processes.give(412, 501);
        processes.run(412).comm = name;
        const auto list = lines();
        ASSERT_EQ(list.size(), 3U) << name;
        for (const auto &line : list)
            EXPECT_EQ(std::count(line.begin(), line.end(), ','), 11) << line;
        EXPECT_FALSE(list[1].starts_with(",tcp")) << list[1];
        EXPECT_NE(list[1].find(".412,,,"), std::string::npos) << list[1];
    }
}

TEST_F(ReportTest, BeginsEachLineWithTheTime)
{
    sockets = {ipv4()};
    processes.give(412, 501);
    Accounts accounts(memory, processes, 1000);
    accounts.update(sockets, 1);
    InterfaceNames interfaces(-1);
    Report report(memory, interfaces, [](std::uint32_t) { return std::string(); });
    const auto text = report.write(sockets, accounts, {1'000'000'000, 1'234'567});
    EXPECT_THAT(text, testing::StartsWith("time,,interface,state,bytes_in,bytes_out,"));
    EXPECT_THAT(text, testing::ContainsRegex("\n[0-9][0-9]:[0-9][0-9]:40[.]001234,program[.]412,"));
}

} // namespace
} // namespace pulsebar::nettop
