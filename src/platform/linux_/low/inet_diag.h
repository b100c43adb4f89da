#pragma once

#include "platform/linux_/low/netlink_message.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// The states of a TCP socket, as the kernel numbers them.
enum class TcpState : std::uint8_t {
    Unknown = 0,
    Established,
    SynSent,
    SynReceived,
    FinWait1,
    FinWait2,
    TimeWait,
    Closed,
    CloseWait,
    LastAck,
    Listen,
    Closing,
};

/// "Established", "Listen", …; empty for Unknown.
std::string_view nameOfTcpState(TcpState state);

/// What tcp_info tells about a connection.
struct TcpCounters
{
    /// Payload, each byte once, without SYN and FIN: what the other side acknowledged, and what
    /// arrived in order.
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
    std::uint64_t resent = 0;       ///< bytes sent again
    std::uint32_t outOfOrder = 0;   ///< packets that arrived before their turn
    std::uint32_t roundTrip = 0;    ///< smoothed, us
    std::uint32_t receiveSpace = 0; ///< what the receive buffer is tuned for, bytes
    std::uint32_t sendWindow = 0;   ///< what the other side is ready to take, bytes
};

/// A TCP socket as sock_diag(7) tells it.
struct TcpSocket
{
    std::uint64_t cookie = 0; ///< identifies the socket; never used again until the next boot
    std::uint32_t inode = 0;  ///< of its descriptors; 0 while, or once, no process holds it
    std::uint32_t uid = 0;    ///< of who made it; meaningless when it is `left`
    std::uint32_t device = 0; ///< index of the interface that it is bound to; 0 without one
    TcpState state = TcpState::Unknown;
    bool isIpv6 = false;
    bool hasCounters = false;
    /// What stays of a connection for a while after both sides closed it. The kernel has
    /// forgotten whose it was.
    bool left = false;
    std::uint16_t localPort = 0;
    std::uint16_t remotePort = 0;
    /// Network order; IPv4 fills the first four bytes.
    std::array<std::byte, 16> localAddress{};
    std::array<std::byte, 16> remoteAddress{};
    TcpCounters counters; ///< zero without hasCounters
    std::array<char, 16> congestionControl{};
};

/// An IPv6 socket that speaks to an IPv4 address (::ffff:192.0.2.7).
bool isMappedIpv4(const std::array<std::byte, 16> &address);

/// Parses the content of an answer of inet_diag (what follows the nlmsghdr). Absent when it is too
/// short or of another address family.
std::optional<TcpSocket> parseTcpSocket(NetlinkBytes message);

} // namespace pulsebar
