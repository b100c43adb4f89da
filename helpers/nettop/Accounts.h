#pragma once

#include "nettop/HolderSearch.h"
#include "nettop/Memory.h"
#include "nettop/ProcessSource.h"
#include "platform/linux_/low/inet_diag.h"

#include <optional>
#include <unordered_map>

namespace pulsebar::nettop {

/// Whose each socket is, and how much each owner has moved.
///
/// A connection's bytes are credited to who owns it when they are seen, once: what it moved before
/// it was seen first goes to its first owner, and when it is handed over, what was credited stays
/// where it is. So no total falls while its process lives, and nothing is counted twice.
class Accounts
{
public:
    /// @param memory brought up to date by update(); outlives this object
    /// @param user who looks
    Accounts(Memory &memory, ProcessSource &processes, std::uint32_t user);

    /// @param sockets all that there are, in the order of their cookies, each once
    /// @param now s since boot
    void update(const std::vector<TcpSocket> &sockets, std::uint32_t now);

    /// After update(): the place in Memory::owners of the owner of the socket at a place of the
    /// list.
    std::uint32_t ownerOf(std::size_t socket) const { return recordOf(socket).owner; }
    /// After update(): what the connection has moved, as far as it was ever seen.
    const SocketRecord &recordOf(std::size_t socket) const;
    /// After update(): is there anything that was not so before?
    bool hasChanged() const { return m_changed; }

private:
    void match();
    void refreshOwners();
    bool refresh(OwnerRecord &owner, const std::optional<std::uint64_t> &clock);
    bool isLive(std::uint32_t owner) const;
    void classify(std::size_t socket);
    void want(std::size_t socket, bool mayBeOld);
    bool hasMoved(std::size_t socket) const;
    bool canBeChecked(std::size_t socket) const;
    std::size_t check(bool moved, std::size_t most, std::vector<std::size_t> &doubtful);
    void checkSomeHolders();
    void lookAgain(std::vector<std::size_t> &doubtful);
    void searchHolders();
    void settle(const WantedSocket &found, std::size_t socket);
    void assignRest();
    std::optional<std::size_t> listenerOf(const TcpSocket &socket) const;
    std::uint32_t ownerForUser(std::uint32_t uid);
    void credit(std::size_t socket);
    void nameOwners();
    void tidy();

    Memory &m_memory;
    ProcessSource &m_processes;
    std::uint32_t m_user;
    std::uint32_t m_time = 0;
    const std::vector<TcpSocket> *m_sockets = nullptr;
    /// As *m_sockets. After update() empty where the memory holds just the same.
    std::vector<SocketRecord> m_now;
    std::vector<SocketRecord> m_absent; ///< of sockets that were not listed this time
    std::vector<bool> m_gone;           ///< as Memory::owners
    std::vector<std::optional<std::uint64_t>> m_clocks; ///< as Memory::owners, where asked
    std::vector<WantedSocket> m_wanted;
    std::vector<std::size_t> m_wantedPlaces; ///< as m_wanted: places in m_now
    std::vector<std::size_t> m_listeners;    ///< places in m_now
    std::vector<bool> m_waiting;             ///< as m_now: not accepted yet; credited to nobody
    std::unordered_map<std::uint32_t, std::uint32_t> m_users; ///< places of users' records
    bool m_changed = false;
};

} // namespace pulsebar::nettop
