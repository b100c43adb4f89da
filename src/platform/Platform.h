#pragma once

#include "platform/BatterySource.h"
#include "platform/Counters.h"
#include "platform/LoginItems.h"
#include "platform/ProcessIcons.h"
#include "platform/ProcessTable.h"
#include "platform/Processes.h"
#include "platform/SensorNames.h"
#include "platform/SmcTransport.h"
#include "platform/SystemFacts.h"
#include "platform/Workspace.h"

#include <memory>

namespace pulsebar {

/// Everything the program asks of an operating system, one contract per member. No member is
/// null: what a system does not offer is an object that answers "nothing here". A port provides
/// one function, makePlatform(), and the objects behind it.
struct Platform
{
    std::unique_ptr<CoreTicksSource> coreTicks;
    std::unique_ptr<InterfaceCountersSource> interfaceCounters;
    std::unique_ptr<DiskCountersSource> diskCounters;
    std::unique_ptr<SystemFacts> systemFacts;
    std::unique_ptr<ProcessIcons> processIcons;
    std::unique_ptr<Processes> processes;
    std::unique_ptr<ProcessTable> processTable;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<LoginItems> loginItems;
    std::unique_ptr<BatterySource> battery;
    /// Shared, because one object may be both: what measures the sensors is what knows their names.
    std::shared_ptr<SmcTransport> smc;
    std::shared_ptr<SensorNames> sensorNames;
};

/// The platform this build is for. Opens no file and no socket before something is asked.
std::unique_ptr<Platform> makePlatform();

} // namespace pulsebar
