#include "engine/SystemInformation.h"

namespace pulsebar {

namespace {

constexpr qint64 Mebi = 1048576;
constexpr qint64 Mega = 1000000;
constexpr int EndOfSelectors = 26;

} // namespace

QString SystemInformation::sysStringForType(int selector) const
{
    const auto text = m_facts ? m_facts->text(selector) : std::nullopt;
    return text ? QString::fromStdString(*text) : QStringLiteral("N/A");
}

qint64 SystemInformation::sysNumberForType(int selector, qint64 divisor) const
{
    const auto number = m_facts ? m_facts->number(selector) : std::nullopt;
    return number && divisor != 0 ? *number / divisor : -1;
}

QString SystemInformation::machineName() const
{
    return text(SystemFact::Machine);
}

QString SystemInformation::modelName() const
{
    return text(SystemFact::Model);
}

QString SystemInformation::diskName() const
{
    return text(SystemFact::DiskNames);
}

QString SystemInformation::diskStat() const
{
    return text(SystemFact::DiskStatistics);
}

QString SystemInformation::machineArchitecture() const
{
    return text(SystemFact::MachineArchitecture);
}

qint64 SystemInformation::PHYSMEM() const
{
    return number(SystemFact::PhysicalMemory, Mebi);
}

qint64 SystemInformation::userMemory() const
{
    return number(SystemFact::UserMemory, Mebi);
}

qint64 SystemInformation::pageSize() const
{
    return number(SystemFact::PageSize, Mebi);
}

qint64 SystemInformation::busFreq() const
{
    return number(SystemFact::BusFrequency, Mega);
}

qint64 SystemInformation::cpuFreq() const
{
    return number(SystemFact::CpuFrequency, Mega);
}

qint64 SystemInformation::cacheLine() const
{
    return number(SystemFact::CacheLine, 1);
}

qint64 SystemInformation::L1IcacheSize() const
{
    return number(SystemFact::L1InstructionCache, 1);
}

qint64 SystemInformation::L1DcacheSize() const
{
    return number(SystemFact::L1DataCache, 1);
}

qint64 SystemInformation::L2cacheSize() const
{
    return number(SystemFact::L2Cache, Mebi);
}

qint64 SystemInformation::L3cacheSize() const
{
    return number(SystemFact::L3Cache, Mebi);
}

qint64 SystemInformation::hwMaxID() const
{
    return sysNumberForType(EndOfSelectors, 1);
}

} // namespace pulsebar
