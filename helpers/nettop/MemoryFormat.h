#pragma once

#include "nettop/Memory.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace pulsebar::nettop {

/// What a memory is of. Process numbers, sockets and times mean nothing elsewhere.
struct MemoryOrigin
{
    std::array<char, 40> boot{}; ///< the kernel's boot_id, filled up with NUL
    std::uint64_t network = 0;   ///< inodes of the namespaces
    std::uint64_t processes = 0;

    bool operator==(const MemoryOrigin &) const = default;
    /// This process's.
    static MemoryOrigin here();
};

/// No file is larger.
constexpr std::size_t largestMemory = 16U << 20U;

/// The memory as bytes for the next run of this program on this machine, at most largestMemory of
/// them. Of more than 65,536 sockets those are left out that moved nothing, then the newest, and
/// what these moved is taken from their owners' totals: all of it is counted when they are met
/// again. Empty when there are more owners than that.
std::string encodeMemory(const Memory &memory, const MemoryOrigin &origin);

/// Absent for bytes that encodeMemory() did not make, or made elsewhere. Whatever the bytes are, an
/// answer is consistent: places are within their lists, names can be printed.
std::optional<Memory> decodeMemory(std::string_view bytes, const MemoryOrigin &origin);

} // namespace pulsebar::nettop
