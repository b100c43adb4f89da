#include "nettop/HolderSearch.h"

#include <algorithm>
#include <tuple>

namespace pulsebar::nettop {

HolderSearch::HolderSearch(Memory &memory, ProcessSource &processes, std::uint32_t user)
    : m_memory(memory)
    , m_processes(processes)
    , m_user(user)
{
}

bool HolderSearch::isGone(std::uint32_t owner) const
{
    return m_hasListed && m_memory.owners[owner].isProcess() && !m_seen.contains(owner);
}

void HolderSearch::startOver(OwnerRecord &owner, const ProcessSource::Facts &facts)
{
    const auto pid = owner.pid;
    owner = {};
    owner.pid = pid;
    owner.uid = facts.uid;
    owner.startTicks = facts.startTicks;
}

/// The record of a process, made when there is none; noOwner when the process is gone.
std::uint32_t HolderSearch::ownerOf(pid_t pid)
{
    const auto known = m_places.find(pid);
    if (known != m_places.end())
        return known->second;
    const auto facts = m_processes.facts(pid);
    if (!facts)
        return noOwner;
    const auto place = static_cast<std::uint32_t>(m_memory.owners.size());
    auto &owner = m_memory.owners.emplace_back();
    owner.pid = pid;
    startOver(owner, *facts);
    m_places.emplace(pid, place);
    return place;
}

void HolderSearch::listCandidates(const std::vector<WantedSocket> &sockets)
{
    for (std::uint32_t i = 0; i < m_memory.owners.size(); ++i) {
        if (m_memory.owners[i].isProcess())
            m_places.emplace(m_memory.owners[i].pid, i);
    }
    std::unordered_set<std::uint32_t> users;
    for (const auto &socket : sockets)
        users.insert(socket.uid);
    for (const auto pid : m_processes.list()) {
        Candidate candidate;
        const auto clock = m_processes.clock(pid);
        if (m_processes.hasClocks() && !clock)
            continue;
        candidate.clock = clock.value_or(0);
        candidate.owner = ownerOf(pid);
        if (candidate.owner == noOwner)
            continue;
        m_seen.insert(candidate.owner);
        const auto &owner = m_memory.owners[candidate.owner];
        candidate.ran = !clock || owner.lookedAt != *clock;
        candidate.isOther = !users.contains(owner.uid);
        m_candidates.push_back(candidate);
    }
    m_hasListed = true;
    std::sort(m_candidates.begin(), m_candidates.end(), [&](const auto &a, const auto &b) {
        const auto &first = m_memory.owners[a.owner];
        const auto &second = m_memory.owners[b.owner];
        return std::tuple(a.isOther, first.startTicks, first.pid) <
               std::tuple(b.isOther, second.startTicks, second.pid);
    });
}

/// A number may have gone to another process since its record was made.
bool HolderSearch::isStillTheSame(std::uint32_t owner)
{
    auto &record = m_memory.owners[owner];
    const auto facts = m_processes.facts(record.pid);
    if (!facts)
        return false;
    if (facts->startTicks != record.startTicks)
        startOver(record, *facts);
    return true;
}

void HolderSearch::setWanted(std::vector<WantedSocket> &sockets)
{
    m_wanted.clear();
    for (auto &socket : sockets) {
        if (socket.owner == noOwner)
            m_wanted.emplace(socket.inode, &socket);
    }
}

void HolderSearch::look(const Candidate &candidate)
{
    bool checked = false;
    bool same = true;
    const auto result = m_processes.lookAtSockets(
        m_memory.owners[candidate.owner].pid, [&](std::uint32_t inode, std::uint32_t descriptor) {
            const auto wanted = m_wanted.find(inode);
            if (wanted == m_wanted.end())
                return true;
            if (!checked)
                same = isStillTheSame(candidate.owner);
            checked = true;
            if (!same)
                return false;
            wanted->second->owner = candidate.owner;
            wanted->second->descriptor = descriptor;
            m_wanted.erase(wanted);
            return !m_wanted.empty();
        });
    if (result == ProcessSource::Look::Whole)
        m_memory.owners[candidate.owner].lookedAt = candidate.clock;
}

bool HolderSearch::mayHelpToLookAtAll() const
{
    return std::any_of(m_wanted.begin(), m_wanted.end(), [this](const auto &wanted) {
        const auto &socket = *wanted.second;
        return socket.mayBeOld || m_user == 0 || socket.uid == m_user;
    });
}

void HolderSearch::find(std::vector<WantedSocket> &sockets)
{
    setWanted(sockets);
    if (m_wanted.empty())
        return;
    listCandidates(sockets);
    for (const bool ran : {true, false}) {
        if (!ran && !mayHelpToLookAtAll())
            return;
        for (const auto &candidate : m_candidates) {
            if (candidate.ran == ran && !m_wanted.empty())
                look(candidate);
        }
    }
}

void HolderSearch::findIn(std::uint32_t owner, std::vector<WantedSocket> &sockets)
{
    setWanted(sockets);
    const auto pid = m_memory.owners[owner].pid;
    look({owner, m_processes.clock(pid).value_or(neverLooked), true, false});
}

} // namespace pulsebar::nettop
