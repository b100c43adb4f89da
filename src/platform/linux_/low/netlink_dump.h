#pragma once

#include "platform/linux_/low/netlink_message.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace pulsebar {

/// One message out of what a receive brought.
struct NetlinkMessage
{
    std::uint16_t type = 0;
    std::uint16_t flags = 0;
    std::uint32_t sequence = 0;
    NetlinkBytes content; ///< what follows the nlmsghdr
};

/// Walks over the messages of one receive; ends at the first that does not fit into what is left.
class NetlinkMessages
{
public:
    explicit NetlinkMessages(NetlinkBytes bytes)
        : m_rest(bytes)
    {
    }
    std::optional<NetlinkMessage> next();

private:
    NetlinkBytes m_rest;
};

/// A socket for dumps of any netlink family, as small as a program needs that asks once and ends.
/// It belongs to the network namespace in which it was made. No call waits longer than a second.
class NetlinkDump
{
public:
    using Taker = std::function<void(std::uint16_t type, NetlinkBytes content)>;

    enum class Result {
        Complete,
        Interrupted, ///< the list changed while it was read, or a part of the answer was lost
        Failed,      ///< error() says why
    };

    /// @param family NETLINK_…
    explicit NetlinkDump(int family);
    ~NetlinkDump();
    NetlinkDump(const NetlinkDump &) = delete;
    NetlinkDump &operator=(const NetlinkDump &) = delete;

    /// Asks for all objects of a type and hands each to `take`.
    /// @param request the type's fixed structure and attributes, at most 256 bytes
    Result ask(std::uint16_t type, NetlinkBytes request, const Taker &take);

    /// The kernel's error number of what failed last.
    int error() const { return m_error; }
    int descriptor() const { return m_descriptor; }

private:
    bool send(std::uint16_t type, NetlinkBytes request);
    std::optional<NetlinkBytes> receive(Result &result);
    bool takeAll(NetlinkBytes bytes, const Taker &take, Result &result);

    int m_descriptor;
    int m_error = 0;
    std::uint32_t m_sequence = 0;
    std::vector<std::byte> m_buffer;
};

} // namespace pulsebar
