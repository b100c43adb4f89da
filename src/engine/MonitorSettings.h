#pragma once

#include <QVariantList>

#include <algorithm>

namespace pulsebar {

/// The settings of a TopMonitor. The initial values are those of a new monitor.
struct MonitorSettings
{
    bool runTop = false;              ///< the sampler should run
    bool monitorWithTimer = false;    ///< the repeating timer is wanted
    bool autoEnableMonitor = true;    ///< setting the observe array recomputes the flags
    bool monitorCPU = true;           ///< load per core
    bool monitorNetwork = true;       ///< network counters
    bool monitorBattery = true;       ///< battery
    bool monitorProcessUsage = false; ///< usage statistics per process
    bool monitorTemperature = true;   ///< temperatures
    bool monitorFanMove = true;       ///< fans
    bool checkMemory = false;         ///< ask the sampler for memory columns
    bool sortByMemory = false;        ///< ask the sampler to sort by resident memory
    bool fahrenheit = false;          ///< temperatures in Fahrenheit
    int listMax = 10;                 ///< number of processes
    int refreshSec = 2;               ///< seconds between samples, meant to lie in 1..60
    QVariantList observeArray;        ///< observe entries, see HardwareEvents.h

    /// refreshSec as a divisor: a damaged settings file may say 0 or less, which counts as 1.
    int interval() const { return std::max(refreshSec, 1); }
    /// Length of a usage cache: one minute of samples, 0 from 61 seconds on.
    int cacheLength() const { return 60 / interval(); }
};

} // namespace pulsebar
