#pragma once

#include "engine/Collectors.h"
#include "platform/Counters.h"
#include "platform/ProcessIcons.h"

#include <QString>

#include <functional>

namespace pulsebar {

/// Where the figures of a sample come from. A source that is not there is null, and its keys are
/// left out of the samples. All must outlive the monitor.
struct MonitorSources
{
    CoreTicksSource *coreTicks = nullptr;
    InterfaceCountersSource *interfaces = nullptr;
    DiskCountersSource *disks = nullptr;
    ProcessIcons *icons = nullptr;
    BatteryCollector *battery = nullptr;
    TemperatureCollector *temperatures = nullptr;
    FanCollector *fans = nullptr;
};

/// How to find the sampler.
struct SamplerCommand
{
    /// Answers the program's absolute path, asked anew at every start; empty when it is missing.
    std::function<QString()> program;
};

} // namespace pulsebar
