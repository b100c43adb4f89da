#include "platform/linux_/hwmon/DiskRest.h"

#include <utility>

namespace pulsebar {

namespace {

bool isSameWork(const BlockStat &a, const BlockStat &b)
{
    return a.readOperations == b.readOperations && a.readSectors == b.readSectors &&
           a.writeOperations == b.writeOperations && a.writtenSectors == b.writtenSectors;
}

} // namespace

IdleTime::Clock::duration IdleTime::look(const BlockStat &stat, Clock::time_point now)
{
    if (!m_last || !isSameWork(*m_last, stat))
        m_lastWork = now;
    m_last = stat;
    return now - m_lastWork;
}

DiskRest::DiskRest(std::string statFile)
    : m_file(std::move(statFile))
{
}

bool DiskRest::mayHaveStopped(IdleTime::Clock::time_point now)
{
    const auto text = m_file.read();
    const auto stat = text ? parseBlockStat(*text) : std::nullopt;
    return stat && m_idle.look(*stat, now) >= kLeftAloneAfter;
}

} // namespace pulsebar
