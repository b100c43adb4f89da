#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

namespace pulsebar {

/// A piece of a netlink message as it came from the socket. Nothing in it is taken to be aligned
/// or complete.
using NetlinkBytes = std::span<const std::byte>;

/// The fixed structure at the start of a piece, copied out. When the piece is shorter than the
/// structure (an older kernel's is), what is missing is zero, provided that `needed` bytes are
/// there; absent otherwise.
template <typename Record>
std::optional<Record> netlinkRecord(NetlinkBytes bytes, std::size_t needed = sizeof(Record))
{
    if (bytes.size() < needed)
        return std::nullopt;
    Record record{};
    std::memcpy(&record, bytes.data(), bytes.size() < sizeof record ? bytes.size() : sizeof record);
    return record;
}

/// A NUL-terminated text, without its NUL; a text that lacks the NUL is taken whole.
std::string_view netlinkText(NetlinkBytes bytes);

/// One attribute: its type (without the "nested" and byte order flags) and its content.
struct NetlinkAttribute
{
    std::uint16_t type = 0;
    NetlinkBytes content;
};

/// Walks over a sequence of attributes (each a length and a type of 16 bits, then the content,
/// padded to 4 bytes) and ends at the first that does not fit into what is left.
class NetlinkAttributes
{
public:
    explicit NetlinkAttributes(NetlinkBytes bytes)
        : m_rest(bytes)
    {
    }
    std::optional<NetlinkAttribute> next();

private:
    NetlinkBytes m_rest;
};

/// What follows a message's fixed header of type Header: its attributes.
template <typename Header> NetlinkAttributes netlinkAttributesAfter(NetlinkBytes message)
{
    constexpr std::size_t padded = (sizeof(Header) + 3) & ~std::size_t{3};
    return NetlinkAttributes(message.size() > padded ? message.subspan(padded) : NetlinkBytes());
}

} // namespace pulsebar
