#include "top/PidLister.h"

#include "platform/linux_/low/directory_entries.h"

#include <algorithm>
#include <unistd.h>

namespace pulsebar::top {

namespace {

constexpr std::size_t wholeListSpace = 32U << 10U;
constexpr std::size_t newListSpace = 2U << 10U;
/// So many new processes and threads in one interval are a doubt: numbers may have wrapped around,
/// and the whole list costs little beside them.
constexpr std::uint64_t manyForks = 1000;

} // namespace

/// Watches whether position minus number is the same for all.
struct PidLister::Calibration
{
    void note(pid_t pid, std::int64_t position)
    {
        const auto difference = position - pid;
        holds = holds && (count == 0 || difference == offset);
        offset = difference;
        ++count;
    }
    std::int64_t offset = 0;
    std::size_t count = 0;
    bool holds = true;
};

PidLister::PidLister(int folder)
    : m_folder(folder)
{
}

/// Calls take(pid, position) for each process from there on until it answers false; `position` is
/// where a reader has to seek to find that entry first, or -1 when that is not known.
template <typename Take>
bool PidLister::readFrom(std::int64_t position, std::size_t space, Take take)
{
    if (::lseek(m_folder, position, SEEK_SET) < 0)
        return false;
    m_space.resize(std::max(m_space.size(), space));
    std::int64_t here = -1;
    for (;;) {
        const auto size = readDirectoryEntries(m_folder, m_space.data(), space);
        if (size < 0)
            return false;
        if (size == 0)
            return true;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto entry = directoryEntryAt(m_space.data() + at);
            const auto pid = static_cast<pid_t>(numberOfEntry(entry.name).value_or(0));
            if (pid > 0 && !take(pid, here))
                return true;
            here = entry.next;
            at += entry.length;
        }
    }
}

bool PidLister::listAll(const ListHint &hint, std::vector<pid_t> &pids)
{
    m_offset.reset();
    Calibration calibration;
    const bool done = readFrom(0, wholeListSpace, [&](pid_t pid, std::int64_t position) {
        // The first one follows an entry that is no process, at no certain place.
        if (!pids.empty() && position >= 0)
            calibration.note(pid, position);
        pids.push_back(pid);
        return true;
    });
    if (!done || pids.empty())
        return false;
    if (!std::is_sorted(pids.begin(), pids.end()))
        std::sort(pids.begin(), pids.end());
    else if (calibration.holds && calibration.count > 0)
        m_offset = calibration.offset;
    remember(hint);
    return true;
}

void PidLister::remember(const ListHint &hint)
{
    const bool wentOn = m_last.lastPid && hint.lastPid && *hint.lastPid >= *m_last.lastPid;
    m_searchFrom = wentOn ? *m_last.lastPid : 0;
    m_last = hint;
}

bool PidLister::mayListNew(const ListHint &hint) const
{
    if (!m_offset || !hint.lastPid || !hint.forks || !m_last.lastPid || !m_last.forks)
        return false;
    return *hint.lastPid >= *m_last.lastPid && *hint.forks >= *m_last.forks &&
           *hint.forks - *m_last.forks < manyForks;
}

bool PidLister::listNew(const ListHint &hint, std::vector<pid_t> &pids)
{
    if (!mayListNew(hint))
        return false;
    const auto from = m_searchFrom;
    remember(hint);
    if (*hint.lastPid == from)
        return true;
    bool plausible = true;
    const bool done =
        readFrom(from + 1 + *m_offset, newListSpace, [&](pid_t pid, std::int64_t /*position*/) {
            // After the numbers have wrapped around, old processes stand behind the new ones.
            if (pid > *hint.lastPid)
                return false;
            plausible = pid > from && (pids.empty() || pid > pids.back());
            pids.push_back(pid);
            return plausible;
        });
    return done && plausible;
}

} // namespace pulsebar::top
