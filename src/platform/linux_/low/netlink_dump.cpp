#include "platform/linux_/low/netlink_dump.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <unistd.h>

namespace pulsebar {

namespace {

// The kernel fills at most this much of a buffer per message of a dump, and cuts off what does not
// fit into a smaller one than it has seen before.
constexpr std::size_t bufferSize = 32U << 10U;
constexpr std::size_t largestRequest = 256;
constexpr int timeoutSeconds = 1;

} // namespace

std::optional<NetlinkMessage> NetlinkMessages::next()
{
    const auto header = netlinkRecord<nlmsghdr>(m_rest);
    if (!header || header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > m_rest.size())
        return std::nullopt;
    const NetlinkMessage message{
        header->nlmsg_type, header->nlmsg_flags, header->nlmsg_seq,
        m_rest.subspan(sizeof(nlmsghdr), header->nlmsg_len - sizeof(nlmsghdr))};
    const std::size_t padded = (header->nlmsg_len + std::size_t{3}) & ~std::size_t{3};
    m_rest = m_rest.subspan(std::min(padded, m_rest.size()));
    return message;
}

NetlinkDump::NetlinkDump(int family)
    : m_descriptor(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, family))
    , m_error(m_descriptor < 0 ? errno : 0)
    , m_buffer(bufferSize)
{
    const timeval timeout{timeoutSeconds, 0};
    if (m_descriptor >= 0)
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
}

NetlinkDump::~NetlinkDump()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool NetlinkDump::send(std::uint16_t type, NetlinkBytes request)
{
    std::array<std::byte, sizeof(nlmsghdr) + largestRequest> message{};
    if (m_descriptor < 0)
        return false;
    if (request.size() > largestRequest) {
        m_error = EMSGSIZE;
        return false;
    }
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(sizeof header + request.size());
    header.nlmsg_type = type;
    header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    header.nlmsg_seq = ++m_sequence;
    std::memcpy(message.data(), &header, sizeof header);
    std::copy(request.begin(), request.end(), message.begin() + sizeof header);
    if (::send(m_descriptor, message.data(), header.nlmsg_len, 0) >= 0)
        return true;
    m_error = errno;
    return false;
}

std::optional<NetlinkBytes> NetlinkDump::receive(Result &result)
{
    for (;;) {
        iovec space{m_buffer.data(), m_buffer.size()};
        msghdr message{};
        sockaddr_nl sender{};
        message.msg_name = &sender;
        message.msg_namelen = sizeof sender;
        message.msg_iov = &space;
        message.msg_iovlen = 1;
        const auto size = ::recvmsg(m_descriptor, &message, 0);
        // Who has the rights may write to any netlink socket; only the kernel's word counts.
        if (size > 0 && sender.nl_pid != 0)
            continue;
        if (size > 0) {
            if ((message.msg_flags & MSG_TRUNC) != 0)
                result = Result::Interrupted;
            return NetlinkBytes(m_buffer).first(static_cast<std::size_t>(size));
        }
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == ENOBUFS) {
            result = Result::Interrupted;
            continue;
        }
        m_error = size < 0 ? errno : EPIPE;
        return std::nullopt;
    }
}

/// False after the last message of the answer.
bool NetlinkDump::takeAll(NetlinkBytes bytes, const Taker &take, Result &result)
{
    NetlinkMessages messages(bytes);
    while (const auto message = messages.next()) {
        // What is left of an earlier answer that was given up.
        if (message->sequence != m_sequence)
            continue;
        if ((message->flags & NLM_F_DUMP_INTR) != 0)
            result = Result::Interrupted;
        if (message->type == NLMSG_ERROR || message->type == NLMSG_DONE) {
            m_error = -netlinkRecord<std::int32_t>(message->content).value_or(0);
            if (m_error == EINTR)
                result = Result::Interrupted;
            else if (m_error != 0 || message->type == NLMSG_ERROR)
                result = Result::Failed;
            return false;
        }
        if (message->type >= NLMSG_MIN_TYPE)
            take(message->type, message->content);
    }
    return true;
}

NetlinkDump::Result NetlinkDump::ask(std::uint16_t type, NetlinkBytes request, const Taker &take)
{
    auto result = Result::Complete;
    if (!send(type, request))
        return Result::Failed;
    for (;;) {
        const auto bytes = receive(result);
        if (!bytes)
            return Result::Failed;
        if (!takeAll(*bytes, take, result))
            return result;
    }
}

} // namespace pulsebar
