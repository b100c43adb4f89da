#pragma once

#include "nettop/Memory.h"
#include "nettop/ProcessSource.h"

#include <unordered_map>
#include <unordered_set>

namespace pulsebar::nettop {

/// A socket whose holder is looked for.
struct WantedSocket
{
    std::uint32_t inode = 0;
    std::uint32_t uid = 0;
    /// A process may hold it that did not run since it was looked at: the socket is not new, or its
    /// holder could not be found before.
    bool mayBeOld = false;
    /// Out: a place in Memory::owners, or noOwner.
    std::uint32_t owner = noOwner;
    std::uint32_t descriptor = 0;
};

/// Finds out which processes hold sockets, and looks into as few as will do.
///
/// Of several processes that hold a socket, the owner is the oldest (then the one with the lowest
/// number) among those of the user who made it, else the oldest of all. Descriptors are looked at
/// in that order, first those of processes that ran since they were last looked at, and no further
/// than until every socket is found. Then, where that may help, those of the others.
class HolderSearch
{
public:
    /// @param user who looks; may see everybody's processes when it is 0
    HolderSearch(Memory &memory, ProcessSource &processes, std::uint32_t user);

    /// Adds the processes met to the memory and takes those out of its owners' reckoning that are
    /// gone (`isGone`), without moving any.
    void find(std::vector<WantedSocket> &sockets);
    /// Looks into one process only.
    void findIn(std::uint32_t owner, std::vector<WantedSocket> &sockets);

    /// After find(): was the owner's process missing from the list of all?
    bool isGone(std::uint32_t owner) const;
    bool hasListed() const { return m_hasListed; }

private:
    struct Candidate
    {
        std::uint32_t owner = noOwner;
        std::uint64_t clock = 0;
        bool ran = true;
        bool isOther = false; ///< of another user than those who made the sockets
    };

    void listCandidates(const std::vector<WantedSocket> &sockets);
    std::uint32_t ownerOf(pid_t pid);
    void startOver(OwnerRecord &owner, const ProcessSource::Facts &facts);
    bool isStillTheSame(std::uint32_t owner);
    void setWanted(std::vector<WantedSocket> &sockets);
    void look(const Candidate &candidate);
    bool mayHelpToLookAtAll() const;

    Memory &m_memory;
    ProcessSource &m_processes;
    std::uint32_t m_user;
    bool m_hasListed = false;
    std::vector<Candidate> m_candidates;
    std::unordered_map<pid_t, std::uint32_t> m_places;
    std::unordered_set<std::uint32_t> m_seen;
    std::unordered_map<std::uint32_t, WantedSocket *> m_wanted; ///< by inode
};

} // namespace pulsebar::nettop
