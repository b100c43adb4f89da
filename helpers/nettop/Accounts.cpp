#include "nettop/Accounts.h"

#include "nettop/HolderSearch.h"
#include "nettop/Names.h"

#include <algorithm>

namespace pulsebar::nettop {

namespace {

/// How many sockets' holders are checked per report, a quarter of them at least of those that moved
/// nothing: a hand-over is noticed within some times as many reports as this share is of the whole.
constexpr std::size_t fewestChecks = 16;
constexpr std::size_t mostChecks = 256;
constexpr std::size_t checkedShare = 64;

constexpr std::uint32_t firstRetry = 30;
constexpr std::uint32_t lastRetry = 600;

/// A socket may be missed by a list that was read while it moved within the kernel's tables.
constexpr std::uint32_t mostAbsences = 1;

/// A connection that waits to be accepted can only be in these states.
bool mayWait(const TcpSocket &socket)
{
    return socket.inode == 0 && !socket.left &&
           (socket.state == TcpState::SynReceived || socket.state == TcpState::Established ||
            socket.state == TcpState::CloseWait);
}

/// Nobody holds it and nobody will, and whose it was is not known: older kernels say of each
/// connection that outlives its descriptors that it is root's.
bool isOwnerForgotten(const TcpSocket &socket)
{
    return socket.left || (socket.inode == 0 && socket.uid == 0 && !mayWait(socket));
}

bool isAny(const TcpSocket &socket)
{
    return std::all_of(socket.localAddress.begin(), socket.localAddress.end(),
                       [](std::byte b) { return b == std::byte{0}; });
}

std::uint32_t retryDelay(std::uint32_t tries)
{
    return std::min(lastRetry, firstRetry << std::min(tries, 5U));
}

/// Looks as good as random.
std::uint64_t scattered(std::uint64_t number)
{
    number = (number ^ (number >> 31U)) * 0x9E3779B97F4A7C15U;
    return number ^ (number >> 29U);
}

} // namespace

Accounts::Accounts(Memory &memory, ProcessSource &processes, std::uint32_t user)
    : m_memory(memory)
    , m_processes(processes)
    , m_user(user)
{
}

void Accounts::update(const std::vector<TcpSocket> &sockets, std::uint32_t now)
{
    m_sockets = &sockets;
    m_time = now;
    match();
    refreshOwners();
    m_waiting.assign(sockets.size(), false);
    for (std::size_t i = 0; i < sockets.size(); ++i)
        classify(i);
    checkSomeHolders();
    searchHolders();
    assignRest();
    for (std::size_t i = 0; i < sockets.size(); ++i)
        credit(i);
    tidy();
    nameOwners();
}

/// Both lists are in the order of cookies.
void Accounts::match()
{
    m_now.assign(m_sockets->size(), {});
    auto old = m_memory.sockets.begin();
    const auto dropOld = [&] {
        m_changed = true;
        if (old->absences < mostAbsences) {
            m_absent.push_back(*old);
            ++m_absent.back().absences;
        }
        ++old;
    };
    for (std::size_t i = 0; i < m_now.size(); ++i) {
        const auto cookie = (*m_sockets)[i].cookie;
        while (old != m_memory.sockets.end() && old->cookie < cookie)
            dropOld();
        if (old != m_memory.sockets.end() && old->cookie == cookie) {
            m_now[i] = *old++;
            m_now[i].absences = 0;
        }
        m_now[i].cookie = cookie;
    }
    while (old != m_memory.sockets.end())
        dropOld();
}

/// Is it still there? Reads its name again when it may have changed.
bool Accounts::refresh(OwnerRecord &owner, const std::optional<std::uint64_t> &clock)
{
    if (m_processes.hasClocks() && !clock)
        return false;
    if (clock && owner.namedAt == *clock)
        return true;
    const auto facts = m_processes.facts(owner.pid);
    if (!facts || facts->startTicks != owner.startTicks)
        return false;
    owner.uid = facts->uid;
    owner.namedAt = clock.value_or(neverLooked);
    constexpr std::size_t cutByKernel = 15;
    const bool mayBeLonger = facts->comm.size() == cutByKernel;
    auto name = fieldForProcess(facts->comm,
                                mayBeLonger ? m_processes.commandLine(owner.pid) : std::string());
    m_changed = m_changed || name != owner.name;
    owner.name = std::move(name);
    return true;
}

void Accounts::refreshOwners()
{
    std::vector<bool> hasSockets(m_memory.owners.size(), false);
    for (const auto &record : m_now) {
        if (record.owner != noOwner)
            hasSockets[record.owner] = true;
    }
    for (std::size_t i = 0; i < m_memory.owners.size(); ++i) {
        auto &owner = m_memory.owners[i];
        const bool matters = owner.isProcess() && (hasSockets[i] || owner.moved());
        m_clocks.push_back(matters ? m_processes.clock(owner.pid) : std::nullopt);
        m_gone.push_back(matters && !refresh(owner, m_clocks.back()));
    }
}

bool Accounts::isLive(std::uint32_t owner) const
{
    return owner != noOwner && !m_gone[owner];
}

void Accounts::want(std::size_t socket, bool mayBeOld)
{
    const auto &facts = (*m_sockets)[socket];
    m_wanted.push_back({facts.inode, facts.uid, mayBeOld, noOwner, 0});
    m_wantedPlaces.push_back(socket);
}

/// Decides whether the socket's holder has to be looked for.
void Accounts::classify(std::size_t socket)
{
    const auto &facts = (*m_sockets)[socket];
    auto &record = m_now[socket];
    if (facts.state == TcpState::Listen)
        m_listeners.push_back(socket);
    if (record.owner != noOwner && m_gone[record.owner]) {
        record.owner = noOwner;
        if (facts.inode != 0)
            want(socket, true);
    } else if (facts.inode == 0) {
        // Not accepted yet, or closed by its holder; the latter keeps its owner.
        if (record.inode == 0)
            record.owner = noOwner;
    } else if (record.owner == noOwner || record.inode != facts.inode) {
        record.tries = 0;
        want(socket, false);
    } else if (record.retryAt != 0 && m_time >= record.retryAt) {
        // Who took it meanwhile, or may be seen only now, ran meanwhile.
        want(socket, false);
    }
}

bool Accounts::hasMoved(std::size_t socket) const
{
    const auto &facts = (*m_sockets)[socket];
    const auto &record = m_now[socket];
    return facts.hasCounters &&
           (facts.counters.received > record.received || facts.counters.sent > record.sent);
}

/// Is there a process that should hold it, and no reason yet to look for another?
bool Accounts::canBeChecked(std::size_t socket) const
{
    const auto &record = m_now[socket];
    const auto inode = (*m_sockets)[socket].inode;
    return inode != 0 && record.inode == inode && isLive(record.owner) &&
           m_memory.owners[record.owner].isProcess();
}

/// Checks at most `most` of those that moved something, or of the others. That a process stood
/// still since it was looked at does not help: another socket was looked for then, and it may have
/// given this one away before.
/// @return how many were checked
std::size_t Accounts::check(bool moved, std::size_t most, std::vector<std::size_t> &doubtful)
{
    const auto count = m_now.size();
    // A counter would have to be remembered, and written each time; chance reaches every place,
    // too.
    auto place = count == 0 ? 0 : scattered(m_time) % count;
    std::size_t checked = 0;
    for (std::size_t i = 0; i < count && checked < most; ++i, ++place) {
        if (place == count)
            place = 0;
        if (hasMoved(place) != moved || !canBeChecked(place))
            continue;
        ++checked;
        const auto &record = m_now[place];
        if (!m_processes.holds(m_memory.owners[record.owner].pid, record.descriptor, record.inode))
            doubtful.push_back(place);
    }
    return checked;
}

void Accounts::checkSomeHolders()
{
    const auto most = std::clamp(m_now.size() / checkedShare, fewestChecks, mostChecks);
    std::vector<std::size_t> doubtful;
    // First those whose bytes are about to be credited.
    const auto moved = check(true, most - most / 4, doubtful);
    check(false, most - moved, doubtful);
    lookAgain(doubtful);
}

/// Looks once into each process for those of its sockets that are not where they were.
void Accounts::lookAgain(std::vector<std::size_t> &doubtful)
{
    std::sort(doubtful.begin(), doubtful.end(),
              [this](auto a, auto b) { return m_now[a].owner < m_now[b].owner; });
    for (auto first = doubtful.begin(); first != doubtful.end();) {
        const auto owner = m_now[*first].owner;
        const auto last = std::find_if(first, doubtful.end(),
                                       [&](auto place) { return m_now[place].owner != owner; });
        std::vector<WantedSocket> wanted;
        for (auto place = first; place != last; ++place)
            wanted.push_back({m_now[*place].inode, (*m_sockets)[*place].uid, true, noOwner, 0});
        HolderSearch(m_memory, m_processes, m_user).findIn(owner, wanted);
        m_changed = true;
        for (const auto &found : wanted) {
            const auto place = *first++;
            if (found.owner == noOwner)
                want(place, true);
            else
                m_now[place].descriptor = found.descriptor;
        }
    }
}

void Accounts::searchHolders()
{
    HolderSearch search(m_memory, m_processes, m_user);
    search.find(m_wanted);
    m_gone.resize(m_memory.owners.size(), false);
    m_clocks.resize(m_memory.owners.size());
    if (search.hasListed()) {
        m_changed = true;
        for (std::uint32_t i = 0; i < m_memory.owners.size(); ++i) {
            if (search.isGone(i) && !m_memory.owners[i].moved())
                m_gone[i] = true;
        }
    }
    for (std::size_t i = 0; i < m_wanted.size(); ++i)
        settle(m_wanted[i], m_wantedPlaces[i]);
}

void Accounts::settle(const WantedSocket &found, std::size_t socket)
{
    auto &record = m_now[socket];
    record.inode = found.inode;
    m_changed = true;
    if (found.owner != noOwner) {
        record.owner = found.owner;
        record.descriptor = found.descriptor;
        record.retryAt = record.tries = 0;
        m_gone[found.owner] = false;
        return;
    }
    record.owner = ownerForUser(found.uid);
    record.descriptor = 0;
    record.retryAt = m_time + retryDelay(record.tries++);
}

std::uint32_t Accounts::ownerForUser(std::uint32_t uid)
{
    if (m_users.empty()) {
        for (std::uint32_t i = 0; i < m_memory.owners.size(); ++i) {
            if (!m_memory.owners[i].isProcess())
                m_users.emplace(m_memory.owners[i].uid, i);
        }
    }
    const auto known = m_users.find(uid);
    if (known != m_users.end())
        return known->second;
    OwnerRecord owner;
    owner.uid = uid;
    m_memory.owners.push_back(owner);
    m_gone.push_back(false);
    m_clocks.emplace_back();
    m_changed = true;
    const auto place = static_cast<std::uint32_t>(m_memory.owners.size() - 1);
    m_users.emplace(uid, place);
    return place;
}

/// The listening socket in whose queue a connection waits.
std::optional<std::size_t> Accounts::listenerOf(const TcpSocket &socket) const
{
    std::optional<std::size_t> best;
    for (const auto place : m_listeners) {
        const auto &listener = (*m_sockets)[place];
        if (listener.localPort != socket.localPort)
            continue;
        const bool exact =
            listener.isIpv6 == socket.isIpv6 && listener.localAddress == socket.localAddress;
        if (exact)
            return place;
        if (isAny(listener) && (!best || listener.isIpv6 == socket.isIpv6))
            best = place;
    }
    return best;
}

void Accounts::assignRest()
{
    for (std::size_t i = 0; i < m_now.size(); ++i) {
        const auto &facts = (*m_sockets)[i];
        auto &record = m_now[i];
        if (record.owner != noOwner)
            continue;
        const auto listener =
            mayWait(facts) && record.inode == 0 ? listenerOf(facts) : std::nullopt;
        if (listener && m_now[*listener].owner != noOwner) {
            record.owner = m_now[*listener].owner;
            m_waiting[i] = true;
        } else {
            record.owner =
                ownerForUser(isOwnerForgotten(facts) ? OwnerRecord::nobodyKnown : facts.uid);
        }
    }
}

void Accounts::credit(std::size_t socket)
{
    const auto &facts = (*m_sockets)[socket];
    auto &record = m_now[socket];
    if (!facts.hasCounters || m_waiting[socket])
        return;
    auto &owner = m_memory.owners[record.owner];
    const auto add = [&](std::uint64_t now, std::uint64_t &before, std::uint64_t &total) {
        if (now <= before)
            return;
        total += now - before;
        before = now;
        m_changed = true;
    };
    add(facts.counters.received, record.received, owner.received);
    add(facts.counters.sent, record.sent, owner.sent);
}

/// Puts the memory in order, without those who are gone.
void Accounts::tidy()
{
    auto &sockets = m_memory.sockets;
    const auto listed = m_now.size();
    sockets = std::move(m_now);
    std::copy_if(m_absent.begin(), m_absent.end(), std::back_inserter(sockets),
                 [this](const SocketRecord &record) { return isLive(record.owner); });
    std::vector<bool> keep(m_memory.owners.size());
    for (std::size_t i = 0; i < keep.size(); ++i)
        keep[i] = !m_gone[i] && (m_memory.owners[i].isProcess() || m_memory.owners[i].moved());
    for (const auto &record : sockets)
        keep[record.owner] = true;
    if (std::find(keep.begin(), keep.end(), false) != keep.end()) {
        m_changed = true;
        dropOwners(m_memory, keep);
    }
    m_now.clear();
    if (sockets.size() == listed)
        return;
    // Both parts are in order already.
    const auto middle = sockets.begin() + static_cast<std::ptrdiff_t>(listed);
    m_now.assign(sockets.begin(), middle);
    std::inplace_merge(sockets.begin(), middle, sockets.end(),
                       [](const auto &a, const auto &b) { return a.cookie < b.cookie; });
}

const SocketRecord &Accounts::recordOf(std::size_t socket) const
{
    return m_now.empty() ? m_memory.sockets[socket] : m_now[socket];
}

void Accounts::nameOwners()
{
    std::vector<bool> wanted(m_memory.owners.size(), false);
    for (std::size_t i = 0; i < m_sockets->size(); ++i)
        wanted[ownerOf(i)] = true;
    for (std::size_t i = 0; i < m_memory.owners.size(); ++i) {
        auto &owner = m_memory.owners[i];
        if (!owner.isProcess() || !owner.name.empty() || !(wanted[i] || owner.moved()))
            continue;
        // It may have ended just now.
        if (!refresh(owner, m_processes.clock(owner.pid)))
            owner.name = fieldForProcess("", "");
    }
}

} // namespace pulsebar::nettop
