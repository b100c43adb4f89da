#include "helpers/nettop/TcpEnds.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <netinet/tcp.h>
#include <poll.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pulsebar::nettop {

namespace {

struct Address
{
    sockaddr_storage storage{};
    socklen_t size = 0;

    Address(const std::string &text, std::uint16_t port)
    {
        auto *ipv6 = reinterpret_cast<sockaddr_in6 *>(&storage);
        auto *ipv4 = reinterpret_cast<sockaddr_in *>(&storage);
        const bool isIpv6 = text.find(':') != std::string::npos;
        storage.ss_family = isIpv6 ? AF_INET6 : AF_INET;
        ipv4->sin_port = htons(port); // at the same place in both
        void *place = &ipv4->sin_addr;
        if (isIpv6)
            place = &ipv6->sin6_addr;
        EXPECT_EQ(::inet_pton(storage.ss_family, text.c_str(), place), 1) << text;
        size = isIpv6 ? sizeof *ipv6 : sizeof *ipv4;
    }
    sockaddr *get() { return reinterpret_cast<sockaddr *>(&storage); }
};

Socket newSocket(int family)
{
    Socket socket(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_GE(socket.get(), 0) << std::strerror(errno);
    return socket;
}

/// The kernel gives no event for what is waited for here.
void waitUntil(const std::function<bool()> &condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        ASSERT_LT(std::chrono::steady_clock::now(), end);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

tcp_info infoOf(const Socket &socket)
{
    tcp_info info{};
    socklen_t size = sizeof info;
    EXPECT_EQ(::getsockopt(socket.get(), IPPROTO_TCP, TCP_INFO, &info, &size), 0);
    return info;
}

void takeSome(const Socket &from, std::size_t &left)
{
    std::vector<char> space(std::min<std::size_t>(left, 1U << 18U));
    const auto count = ::recv(from.get(), space.data(), space.size(), MSG_DONTWAIT);
    if (count > 0)
        left -= static_cast<std::size_t>(count);
}

} // namespace

Socket::~Socket()
{
    close();
}

Socket::Socket(Socket &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

Socket &Socket::operator=(Socket &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

void Socket::close()
{
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

std::uint16_t Socket::port() const
{
    sockaddr_in6 address{};
    socklen_t size = sizeof address;
    EXPECT_EQ(::getsockname(m_descriptor, reinterpret_cast<sockaddr *>(&address), &size), 0);
    return ntohs(address.sin6_port);
}

std::string Socket::name() const
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    EXPECT_EQ(::getsockname(m_descriptor, reinterpret_cast<sockaddr *>(&address), &size), 0);
    std::array<char, INET6_ADDRSTRLEN> text{};
    const auto end = ':' + std::to_string(port());
    if (address.ss_family == AF_INET) {
        ::inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in *>(&address)->sin_addr, text.data(),
                    text.size());
        return text.data() + end;
    }
    ::inet_ntop(AF_INET6, &reinterpret_cast<sockaddr_in6 *>(&address)->sin6_addr, text.data(),
                text.size());
    return std::string("[") + text.data() + ']' + end;
}

Socket listenAt(const std::string &address)
{
    Address place(address, 0);
    auto socket = newSocket(place.storage.ss_family);
    EXPECT_EQ(::bind(socket.get(), place.get(), place.size), 0) << std::strerror(errno);
    EXPECT_EQ(::listen(socket.get(), 1024), 0);
    return socket;
}

Socket connectTo(const std::string &address, std::uint16_t port)
{
    Address place(address, port);
    auto socket = newSocket(place.storage.ss_family);
    EXPECT_EQ(::connect(socket.get(), place.get(), place.size), 0) << std::strerror(errno);
    return socket;
}

Socket acceptFrom(const Socket &listener)
{
    Socket socket(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    EXPECT_GE(socket.get(), 0);
    return socket;
}

void transfer(const Socket &from, const Socket &to, std::size_t size)
{
    const std::vector<char> bytes(1U << 18U, 'x');
    std::size_t toSend = size;
    std::size_t toTake = size;
    while (toSend > 0 || toTake > 0) {
        std::array<pollfd, 2> ends{pollfd{from.get(), static_cast<short>(toSend ? POLLOUT : 0), 0},
                                   pollfd{to.get(), POLLIN, 0}};
        ASSERT_GT(::poll(ends.data(), ends.size(), 20'000), 0);
        if ((ends[0].revents & POLLOUT) != 0) {
            const auto count = ::send(from.get(), bytes.data(), std::min(toSend, bytes.size()),
                                      MSG_DONTWAIT | MSG_NOSIGNAL);
            if (count > 0)
                toSend -= static_cast<std::size_t>(count);
        }
        if ((ends[1].revents & POLLIN) != 0)
            takeSome(to, toTake);
    }
    waitUntilSent(from);
}

void waitUntilSent(const Socket &socket)
{
    waitUntil([&] {
        int queued = 0;
        return ::ioctl(socket.get(), SIOCOUTQ, &queued) == 0 && queued == 0 &&
               infoOf(socket).tcpi_unacked == 0;
    });
}

void waitForState(const Socket &socket, int state)
{
    waitUntil([&] { return infoOf(socket).tcpi_state == state; });
}

Connection::Connection(const std::string &listenAddress, const std::string &connectAddress)
    : listener(listenAt(listenAddress))
    , client(connectTo(connectAddress, listener.port()))
    , server(acceptFrom(listener))
{
}

} // namespace pulsebar::nettop
