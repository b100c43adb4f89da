#include "platform/linux_/low/inet_diag.h"

#include <linux/inet_diag.h>
#include <linux/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstddef>
#include <netinet/in.h>

namespace pulsebar {

namespace {

constexpr std::array<std::string_view, 12> stateNames{
    "",         "Established", "SynSent",   "SynReceived", "FinWait1", "FinWait2",
    "TimeWait", "Closed",      "CloseWait", "LastAck",     "Listen",   "Closing"};
/// A socket that was answered but not accepted yet (TCP_NEW_SYN_RECV).
constexpr std::uint8_t halfOpen = 12;

TcpState stateOf(std::uint8_t number)
{
    if (number == halfOpen)
        return TcpState::SynReceived;
    return number < stateNames.size() ? static_cast<TcpState>(number) : TcpState::Unknown;
}

bool wasClosedByPeer(TcpState state)
{
    return state == TcpState::CloseWait || state == TcpState::LastAck ||
           state == TcpState::Closing || state == TcpState::TimeWait;
}

/// `tcpi_bytes_acked` counts our SYN (not that of a connection that was accepted) and our FIN as a
/// byte each. `tcpi_bytes_sent` does not, and once all is acknowledged the difference between it
/// and the repeats is the payload. While something is on its way, that difference is ahead.
std::uint64_t sentPayload(const tcp_info &info)
{
    constexpr std::uint64_t synAndFin = 2;
    const auto acked = info.tcpi_bytes_acked;
    const auto once =
        info.tcpi_bytes_sent - std::min(info.tcpi_bytes_sent, info.tcpi_bytes_retrans);
    // Repeats that never left the machine are counted as repeats all the same.
    const bool plausible = acked <= once + synAndFin;
    return plausible ? std::min(acked, once) : acked;
}

/// A kernel that does not count sent bytes (before 4.19): SYN and FIN by what the state tells.
std::uint64_t sentPayloadOfOldKernel(const tcp_info &info)
{
    const auto acked = info.tcpi_bytes_acked;
    return acked - std::min<std::uint64_t>(acked, 1);
}

std::uint64_t receivedPayload(const tcp_info &info, TcpState state)
{
    const auto received = info.tcpi_bytes_received;
    return received > 0 && wasClosedByPeer(state) ? received - 1 : received;
}

void readInfo(NetlinkBytes content, TcpSocket &socket)
{
    // Newer kernels append figures; the byte counters are there since 4.2.
    constexpr std::size_t needed =
        offsetof(tcp_info, tcpi_bytes_received) + sizeof(tcp_info::tcpi_bytes_received);
    constexpr std::size_t neededForSent =
        offsetof(tcp_info, tcpi_bytes_retrans) + sizeof(tcp_info::tcpi_bytes_retrans);
    const auto info = netlinkRecord<tcp_info>(content, needed);
    if (!info)
        return;
    socket.hasCounters = true;
    // A listening socket has no connection: the same fields hold its queue.
    if (socket.state == TcpState::Listen)
        return;
    const auto state = stateOf(info->tcpi_state);
    if (state != TcpState::Unknown)
        socket.state = state;
    auto &counters = socket.counters;
    counters.sent =
        content.size() >= neededForSent ? sentPayload(*info) : sentPayloadOfOldKernel(*info);
    counters.received = receivedPayload(*info, socket.state);
    counters.resent = info->tcpi_bytes_retrans;
    counters.outOfOrder = info->tcpi_rcv_ooopack;
    counters.roundTrip = info->tcpi_rtt;
    counters.receiveSpace = info->tcpi_rcv_space;
    counters.sendWindow = info->tcpi_snd_wnd;
}

void readAddresses(const inet_diag_sockid &id, TcpSocket &socket)
{
    const std::size_t size = socket.isIpv6 ? 16 : 4;
    std::memcpy(socket.localAddress.data(), id.idiag_src, size);
    std::memcpy(socket.remoteAddress.data(), id.idiag_dst, size);
    socket.localPort = ntohs(id.idiag_sport);
    socket.remotePort = ntohs(id.idiag_dport);
    socket.device = id.idiag_if;
    socket.cookie = std::uint64_t{id.idiag_cookie[1]} << 32U | id.idiag_cookie[0];
}

} // namespace

std::string_view nameOfTcpState(TcpState state)
{
    return stateNames[static_cast<std::size_t>(state)];
}

bool isMappedIpv4(const std::array<std::byte, 16> &address)
{
    constexpr std::array<unsigned char, 12> prefix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
    return std::memcmp(address.data(), prefix.data(), prefix.size()) == 0;
}

std::optional<TcpSocket> parseTcpSocket(NetlinkBytes message)
{
    const auto header = netlinkRecord<inet_diag_msg>(message);
    if (!header || (header->idiag_family != AF_INET && header->idiag_family != AF_INET6))
        return std::nullopt;
    TcpSocket socket;
    socket.isIpv6 = header->idiag_family == AF_INET6;
    socket.state = stateOf(header->idiag_state);
    socket.inode = header->idiag_inode;
    socket.uid = header->idiag_uid;
    readAddresses(header->id, socket);
    auto attributes = netlinkAttributesAfter<inet_diag_msg>(message);
    while (const auto attribute = attributes.next()) {
        if (attribute->type == INET_DIAG_INFO) {
            readInfo(attribute->content, socket);
        } else if (attribute->type == INET_DIAG_CONG) {
            const auto name = netlinkText(attribute->content).substr(0, 16);
            std::copy(name.begin(), name.end(), socket.congestionControl.begin());
        }
    }
    socket.left = !socket.hasCounters && socket.inode == 0 &&
                  (socket.state == TcpState::TimeWait || socket.state == TcpState::FinWait2);
    return socket;
}

} // namespace pulsebar
