#pragma once

#include "platform/SystemFacts.h"

#include <QString>

namespace pulsebar {

/// Hardware facts by name, each in its fixed unit.
class SystemInformation
{
public:
    /// @param facts may be null (nothing is known); must outlive this object
    explicit SystemInformation(const SystemFacts *facts)
        : m_facts(facts)
    {
    }

    /// "N/A" when the system rejects the selector.
    QString sysStringForType(int selector) const;
    /// The fact divided by `divisor` (integer division); -1 when the system rejects the selector.
    qint64 sysNumberForType(int selector, qint64 divisor) const;

    QString machineName() const;
    QString modelName() const;
    QString diskName() const;
    QString diskStat() const;
    QString machineArchitecture() const;
    qint64 PHYSMEM() const;      ///< mebibytes
    qint64 userMemory() const;   ///< mebibytes
    qint64 pageSize() const;     ///< mebibytes, so normally 0
    qint64 busFreq() const;      ///< megahertz
    qint64 cpuFreq() const;      ///< megahertz
    qint64 cacheLine() const;    ///< bytes
    qint64 L1IcacheSize() const; ///< bytes
    qint64 L1DcacheSize() const; ///< bytes
    qint64 L2cacheSize() const;  ///< mebibytes
    qint64 L3cacheSize() const;  ///< mebibytes
    qint64 hwMaxID() const; ///< asks for the end marker of the selectors, which no system knows

private:
    QString text(SystemFact fact) const { return sysStringForType(static_cast<int>(fact)); }
    qint64 number(SystemFact fact, qint64 divisor) const
    {
        return sysNumberForType(static_cast<int>(fact), divisor);
    }

    const SystemFacts *m_facts;
};

} // namespace pulsebar
