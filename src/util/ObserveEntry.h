#pragma once

namespace pulsebar::observed {

/// The values of an observe entry's "type": what it watches.
enum Type {
    CpuLoad = 10,
    Network = 11,
    Battery = 12,
    ProcessShare = 15,
    Temperature = 17,
    Fans = 18,
};

/// The values of "batteryTriggerEventType", in an entry that watches the battery.
enum BatteryTrigger { PercentThreshold = 0, CablePluggedIn = 1, CableUnplugged = 2 };

} // namespace pulsebar::observed
