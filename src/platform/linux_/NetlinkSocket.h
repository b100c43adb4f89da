#pragma once

#include "platform/linux_/low/netlink_message.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

struct mnl_socket;
struct nlmsghdr;

namespace pulsebar {

/// A routing netlink socket (rtnetlink(7)) of the network namespace in which the first call is
/// made. No call waits for longer than a second, whatever the kernel does. After a failure the
/// next call starts with a new socket.
class NetlinkSocket
{
public:
    /// What a message of a dump holds after its nlmsghdr.
    using Taker = std::function<void(std::uint16_t type, NetlinkBytes content)>;

    enum class DumpResult {
        Complete,
        Interrupted, ///< the list changed while it was read; it may be inconsistent
        Refused,     ///< the kernel does not know the request
        Failed,      ///< no socket, no answer, or an answer that was cut off
    };

    /// @param groups multicast groups (RTMGRP_…) whose messages are to be received
    explicit NetlinkSocket(unsigned groups = 0);
    ~NetlinkSocket();
    NetlinkSocket(const NetlinkSocket &) = delete;
    NetlinkSocket &operator=(const NetlinkSocket &) = delete;

    /// Asks for all objects of a type and hands each to `take`.
    /// @param request the type's fixed structure and attributes, at most 256 bytes
    DumpResult dump(std::uint16_t type, NetlinkBytes request, const Taker &take);

    /// Takes all multicast messages that have arrived; waits for none.
    /// @return true if there was one, if some may have been lost, or if nothing was listened to
    ///         before this call: what was known before may be out of date
    bool drain();

private:
    struct Closer
    {
        void operator()(mnl_socket *socket) const;
    };

    bool open();
    bool send(std::uint16_t type, NetlinkBytes request);
    DumpResult receiveDump(const Taker &take);

    unsigned m_groups;
    std::unique_ptr<mnl_socket, Closer> m_socket;
    std::uint32_t m_sequence = 0;
    unsigned m_port = 0;
    std::vector<std::byte> m_buffer;
};

} // namespace pulsebar
