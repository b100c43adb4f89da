#include "platform/linux_/NetlinkSocket.h"

#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace pulsebar {

namespace {

// The kernel fills at most this much of a buffer per message of a dump, and cuts off what does not
// fit into a smaller one than it has seen before.
constexpr std::size_t bufferSize = 32U << 10U;
constexpr std::size_t largestRequest = 256;
constexpr int timeoutSeconds = 1;

/// What the handler of one dump collects.
struct Dump
{
    const NetlinkSocket::Taker &take;
    bool interrupted = false;
};

int takeMessage(const nlmsghdr *header, void *data)
{
    auto &dump = *static_cast<Dump *>(data);
    dump.interrupted = dump.interrupted || (header->nlmsg_flags & NLM_F_DUMP_INTR) != 0;
    const auto *content = static_cast<const std::byte *>(mnl_nlmsg_get_payload(header));
    dump.take(header->nlmsg_type, {content, mnl_nlmsg_get_payload_len(header)});
    return MNL_CB_OK;
}

} // namespace

void NetlinkSocket::Closer::operator()(mnl_socket *socket) const
{
    mnl_socket_close(socket);
}

NetlinkSocket::NetlinkSocket(unsigned groups)
    : m_groups(groups)
    , m_buffer(groups ? 4096 : bufferSize)
{
}

NetlinkSocket::~NetlinkSocket() = default;

bool NetlinkSocket::open()
{
    if (m_socket)
        return true;
    m_socket.reset(mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC));
    if (!m_socket)
        return false;
    if (mnl_socket_bind(m_socket.get(), m_groups, MNL_SOCKET_AUTOPID) < 0) {
        m_socket.reset();
        return false;
    }
    m_port = mnl_socket_get_portid(m_socket.get());
    const timeval timeout{timeoutSeconds, 0};
    return ::setsockopt(mnl_socket_get_fd(m_socket.get()), SOL_SOCKET, SO_RCVTIMEO, &timeout,
                        sizeof timeout) == 0;
}

bool NetlinkSocket::send(std::uint16_t type, NetlinkBytes request)
{
    alignas(nlmsghdr) std::array<std::byte, sizeof(nlmsghdr) + largestRequest> message{};
    if (request.size() > largestRequest)
        return false;
    nlmsghdr *header = mnl_nlmsg_put_header(message.data());
    header->nlmsg_type = type;
    header->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    header->nlmsg_seq = ++m_sequence;
    std::memcpy(mnl_nlmsg_put_extra_header(header, request.size()), request.data(), request.size());
    return mnl_socket_sendto(m_socket.get(), header, header->nlmsg_len) >= 0;
}

NetlinkSocket::DumpResult NetlinkSocket::receiveDump(const Taker &take)
{
    Dump state{take};
    for (;;) {
        const auto size = mnl_socket_recvfrom(m_socket.get(), m_buffer.data(), m_buffer.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return DumpResult::Failed;
        const int run = mnl_cb_run(m_buffer.data(), static_cast<std::size_t>(size), m_sequence,
                                   m_port, takeMessage, &state);
        if (run == MNL_CB_STOP)
            return state.interrupted ? DumpResult::Interrupted : DumpResult::Complete;
        if (run < 0)
            return errno == EINTR        ? DumpResult::Interrupted
                   : errno == EOPNOTSUPP ? DumpResult::Refused
                                         : DumpResult::Failed;
    }
}

NetlinkSocket::DumpResult NetlinkSocket::dump(std::uint16_t type, NetlinkBytes request,
                                              const Taker &take)
{
    auto result = DumpResult::Failed;
    if (open() && send(type, request))
        result = receiveDump(take);
    // What is left of a dump that was given up would be taken for the answer to the next one.
    if (result == DumpResult::Failed || result == DumpResult::Interrupted)
        m_socket.reset();
    return result;
}

bool NetlinkSocket::drain()
{
    bool arrived = !m_socket;
    if (!open())
        return true;
    for (;;) {
        const auto size = ::recv(mnl_socket_get_fd(m_socket.get()), m_buffer.data(),
                                 m_buffer.size(), MSG_DONTWAIT);
        if (size >= 0) {
            arrived = true;
            continue;
        }
        if (errno == EAGAIN || errno == EWOULDBLOCK)
            return arrived;
        if (errno == EINTR)
            continue;
        // The queue overflowed (the kernel says so once), or the socket is of no more use.
        arrived = true;
        if (errno != ENOBUFS) {
            m_socket.reset();
            return true;
        }
    }
}

} // namespace pulsebar
