#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pulsebar::nettop {

constexpr std::uint32_t noOwner = ~std::uint32_t{0};
constexpr std::uint64_t neverLooked = ~std::uint64_t{0};

/// What is remembered of a socket from report to report.
struct SocketRecord
{
    std::uint64_t cookie = 0;
    /// As far as they are in its owner's totals.
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::uint32_t inode = 0;       ///< the last that is known; 0 until a process held it
    std::uint32_t owner = noOwner; ///< place in Memory::owners
    std::uint32_t descriptor = 0;  ///< its number in the process that owns it
    std::uint32_t retryAt = 0;     ///< s since boot: when to look for its holder again; 0: found
    std::uint32_t tries = 0;       ///< how often its holder was looked for in vain
    std::uint32_t absences = 0;    ///< consecutive reports without it

    bool operator==(const SocketRecord &) const = default;
};

/// Somebody who has a line in the report, or a process that was looked at.
struct OwnerRecord
{
    /// No user has this number: what is left of connections that the kernel knows no owner of.
    static constexpr std::uint32_t nobodyKnown = ~std::uint32_t{0};

    pid_t pid = 0;                ///< 0: sockets of a user whose holder may not be seen
    std::uint32_t uid = 0;        ///< of the process, or that user
    std::uint64_t startTicks = 0; ///< with the number it identifies the process
    /// All payload seen while it was the owner; never falls.
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::uint64_t lookedAt = neverLooked; ///< CPU clock when all its descriptors were looked at
    std::uint64_t namedAt = neverLooked;  ///< CPU clock when its name was read
    std::string name;                     ///< as it is printed, without the number; empty: not read

    bool isProcess() const { return pid != 0; }
    bool moved() const { return (received | sent) != 0; }
    bool operator==(const OwnerRecord &) const = default;
};

/// Everything that lasts from report to report.
struct Memory
{
    std::vector<SocketRecord> sockets; ///< in the order of their cookies, each once
    std::vector<OwnerRecord> owners;   ///< in any order

    bool operator==(const Memory &) const = default;
};

/// Takes the owners out for which `keep` is false; no socket may be theirs.
void dropOwners(Memory &memory, const std::vector<bool> &keep);

} // namespace pulsebar::nettop
