#include "nettop/MemoryFormat.h"

#include "platform/linux_/low/SmallFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace pulsebar::nettop {

namespace {

constexpr std::array<char, 8> signature{'P', 'B', 'N', 'E', 'T', 'T', 'O', 'P'};
constexpr std::uint32_t formatVersion = 1;
constexpr std::size_t mostSockets = 65536;
constexpr std::size_t mostOwners = 65536;
/// 64 characters, quotation marks and "?" for each byte that was none.
constexpr std::size_t longestName = 300;

struct Header
{
    std::array<char, 8> signature{};
    std::uint32_t version = 0;
    std::uint32_t sockets = 0;
    std::uint32_t owners = 0;
    std::uint32_t nameBytes = 0;
    MemoryOrigin origin;
    std::uint64_t checksum = 0; ///< over everything after the header
};

struct StoredOwner
{
    std::int32_t pid = 0;
    std::uint32_t uid = 0;
    std::uint64_t startTicks = 0;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::uint64_t lookedAt = 0;
    std::uint64_t namedAt = 0;
    std::uint32_t nameLength = 0; ///< names follow one another in the order of their owners
    std::uint32_t unused = 0;
};

static_assert(std::is_trivially_copyable_v<SocketRecord> &&
              std::has_unique_object_representations_v<SocketRecord>);
static_assert(std::has_unique_object_representations_v<StoredOwner>);
static_assert(sizeof(Header) + mostSockets * sizeof(SocketRecord) +
                  mostOwners * sizeof(StoredOwner) <
              largestMemory / 2);

std::uint64_t checksumOf(std::string_view bytes)
{
    std::uint64_t sum = 0x9E3779B97F4A7C15U ^ bytes.size();
    while (!bytes.empty()) {
        std::uint64_t word = 0;
        const auto size = std::min(sizeof word, bytes.size());
        std::memcpy(&word, bytes.data(), size);
        sum = (sum ^ word) * 0xFF51AFD7ED558CCDU;
        sum ^= sum >> 32U;
        bytes.remove_prefix(size);
    }
    return sum;
}

template <typename Record> void append(std::string &bytes, const Record *records, std::size_t count)
{
    if (count > 0)
        bytes.append(reinterpret_cast<const char *>(records), count * sizeof(Record));
}

/// Takes what append() wrote; the caller has made sure that it is there.
template <typename Record> void take(std::string_view &bytes, Record *records, std::size_t count)
{
    if (count > 0)
        std::memcpy(records, bytes.data(), count * sizeof(Record));
    bytes.remove_prefix(count * sizeof(Record));
}

bool canBePrinted(std::string_view name)
{
    return name.size() <= longestName && !name.starts_with("tcp") &&
           std::none_of(name.begin(), name.end(), [](char c) {
               return c == ',' || c == '\x7F' || (static_cast<unsigned char>(c) < ' ');
           });
}

StoredOwner stored(const OwnerRecord &owner)
{
    return {
        owner.pid,  owner.uid,      owner.startTicks, owner.received,
        owner.sent, owner.lookedAt, owner.namedAt,    static_cast<std::uint32_t>(owner.name.size()),
        0};
}

bool readOwners(std::string_view &bytes, std::string_view names, Memory &memory)
{
    for (auto &owner : memory.owners) {
        StoredOwner stored;
        take(bytes, &stored, 1);
        if (stored.pid < 0 || stored.nameLength > names.size())
            return false;
        owner = {stored.pid,        stored.uid,
                 stored.startTicks, stored.received,
                 stored.sent,       stored.lookedAt,
                 stored.namedAt,    std::string(names.substr(0, stored.nameLength))};
        names.remove_prefix(stored.nameLength);
        if (!canBePrinted(owner.name))
            return false;
    }
    return names.empty();
}

bool areConsistent(const Memory &memory)
{
    const auto &sockets = memory.sockets;
    const bool ordered =
        std::adjacent_find(sockets.begin(), sockets.end(), [](const auto &a, const auto &b) {
            return a.cookie >= b.cookie;
        }) == sockets.end();
    return ordered && std::all_of(sockets.begin(), sockets.end(), [&](const auto &socket) {
               return socket.owner < memory.owners.size();
           });
}

/// As much of the memory as is stored. What is met again without a record is counted from its first
/// byte on, and must not be in a total already.
Memory withFewerSockets(Memory memory)
{
    auto &sockets = memory.sockets;
    std::erase_if(sockets, [](const auto &socket) { return (socket.received | socket.sent) == 0; });
    while (sockets.size() > mostSockets) {
        const auto &socket = sockets.back();
        auto &owner = memory.owners[socket.owner];
        owner.received -= std::min(owner.received, socket.received);
        owner.sent -= std::min(owner.sent, socket.sent);
        sockets.pop_back();
    }
    return memory;
}

std::uint64_t inodeOf(const char *path)
{
    struct stat facts
    {
    };
    return ::stat(path, &facts) == 0 ? facts.st_ino : 0;
}

} // namespace

MemoryOrigin MemoryOrigin::here()
{
    MemoryOrigin origin;
    const auto boot = readWholeFile("/proc/sys/kernel/random/boot_id", origin.boot.size() - 1);
    if (boot)
        std::copy(boot->begin(), boot->end(), origin.boot.begin());
    origin.network = inodeOf("/proc/self/ns/net");
    origin.processes = inodeOf("/proc/self/ns/pid");
    return origin;
}

std::string encodeMemory(const Memory &memory, const MemoryOrigin &origin)
{
    std::string bytes;
    if (memory.owners.size() > mostOwners)
        return bytes;
    if (memory.sockets.size() > mostSockets)
        return encodeMemory(withFewerSockets(memory), origin);
    Header header{signature, formatVersion, 0, 0, 0, origin, 0};
    header.sockets = static_cast<std::uint32_t>(memory.sockets.size());
    header.owners = static_cast<std::uint32_t>(memory.owners.size());
    for (const auto &owner : memory.owners)
        header.nameBytes += static_cast<std::uint32_t>(owner.name.size());
    bytes.reserve(sizeof header + header.sockets * sizeof(SocketRecord) +
                  header.owners * sizeof(StoredOwner) + header.nameBytes);
    if (bytes.capacity() > largestMemory)
        return {};
    append(bytes, &header, 1);
    append(bytes, memory.sockets.data(), header.sockets);
    for (const auto &owner : memory.owners) {
        const auto record = stored(owner);
        append(bytes, &record, 1);
    }
    for (const auto &owner : memory.owners)
        bytes += owner.name;
    header.checksum = checksumOf(std::string_view(bytes).substr(sizeof header));
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

std::optional<Memory> decodeMemory(std::string_view bytes, const MemoryOrigin &origin)
{
    Header header;
    if (bytes.size() < sizeof header)
        return std::nullopt;
    take(bytes, &header, 1);
    if (header.signature != signature || header.version != formatVersion ||
        header.origin != origin || header.sockets > mostSockets || header.owners > mostOwners ||
        bytes.size() != header.sockets * sizeof(SocketRecord) +
                            header.owners * sizeof(StoredOwner) + header.nameBytes ||
        header.checksum != checksumOf(bytes))
        return std::nullopt;
    Memory memory;
    memory.sockets.resize(header.sockets);
    memory.owners.resize(header.owners);
    take(bytes, memory.sockets.data(), header.sockets);
    const auto names = bytes.substr(header.owners * sizeof(StoredOwner));
    if (!readOwners(bytes, names, memory) || !areConsistent(memory))
        return std::nullopt;
    return memory;
}

} // namespace pulsebar::nettop
