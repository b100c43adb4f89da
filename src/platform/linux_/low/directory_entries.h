#pragma once

#include <sys/syscall.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace pulsebar {

/// An entry as getdents64(2) lays it out: inode, position of the next entry, length, type, name.
struct DirectoryEntry
{
    std::int64_t next = 0;  ///< where a reader has to seek to find the entry after this one
    std::size_t length = 0; ///< of the whole entry, in bytes
    std::string_view name;
};

/// The entry that begins there, in what the kernel wrote.
inline DirectoryEntry directoryEntryAt(const char *bytes)
{
    constexpr std::size_t nextAt = 8;
    constexpr std::size_t lengthAt = 16;
    constexpr std::size_t nameAt = 19;
    DirectoryEntry entry;
    std::uint16_t length = 0;
    std::memcpy(&entry.next, bytes + nextAt, sizeof entry.next);
    std::memcpy(&length, bytes + lengthAt, sizeof length);
    entry.length = length;
    entry.name = std::string_view(bytes + nameAt);
    return entry;
}

/// The next entries of a folder. @return the bytes written, 0 at the end, or -1 with errno
inline long readDirectoryEntries(int folder, char *space, std::size_t size)
{
    return ::syscall(SYS_getdents64, folder, space, size);
}

/// The number that is the whole name: a process of /proc, a descriptor of /proc/PID/fd. Absent for
/// another name, and for what is no positive `int` or zero.
inline std::optional<int> numberOfEntry(std::string_view name)
{
    int number = 0;
    const char *end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, number);
    if (error != std::errc() || stop != end || number < 0)
        return std::nullopt;
    return number;
}

} // namespace pulsebar
