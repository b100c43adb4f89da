#pragma once

#include "engine/Collectors.h"
#include "platform/BatterySource.h"

#include <QVariantMap>

namespace pulsebar {

/// The record of the first battery, as BatteryCollector describes it; further batteries are left
/// out. "BatteryRemainPercent" is always there: without a capacity it is infinite or not a number.
/// What the source does not tell of cycles, voltage and amperage is not in the record.
QVariantMap batteryStatus(BatterySource &source);

/// Whether a battery is installed: 4 when there is one (the bit that says so), else 0.
int isBatteryEnabled(BatterySource &source);

/// Asks the system's power management, anew each time.
class Battery : public BatteryCollector
{
public:
    /// @param source outlives the collector
    explicit Battery(BatterySource &source)
        : m_source(source)
    {
    }

    QVariantMap batteryStatus() override { return pulsebar::batteryStatus(m_source); }

private:
    BatterySource &m_source;
};

} // namespace pulsebar
