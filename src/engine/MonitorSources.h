#pragma once

#include "engine/Collectors.h"
#include "platform/Counters.h"
#include "platform/ProcessIcons.h"
#include "platform/Workspace.h"

#include <QString>

#include <chrono>
#include <functional>

namespace pulsebar {

/// How the path of a process is asked for.
struct PathQueryCommand
{
    QString program = QStringLiteral("/bin/ps");
    /// After this time a query counts as answered with nothing, and its child is ended.
    std::chrono::milliseconds patience = std::chrono::seconds(5);
};

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
    Workspace *workspace = nullptr;
    PathQueryCommand pathQuery = {};
};

/// How to find the sampler.
struct SamplerCommand
{
    /// Answers the program's absolute path, asked anew at every start; empty when it is missing.
    std::function<QString()> program;
};

} // namespace pulsebar
