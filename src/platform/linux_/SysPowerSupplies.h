#pragma once

#include "platform/BatterySource.h"
#include "platform/linux_/low/PatientFiles.h"
#include "platform/linux_/low/Sysroot.h"
#include "platform/linux_/low/power_supply.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// The machine's batteries from /sys/class/power_supply, by name. What is marked as belonging to a
/// device of its own (`scope` "Device": a mouse, a phone) neither powers the machine nor is powered
/// by its mains.
///
/// External power is connected when a supply of type Mains, USB or Wireless is online. On a machine
/// that has none such, the batteries' status says it: one that is charged, full or kept at a
/// threshold is connected to something, and one that is being emptied is not.
///
/// Where plugging in makes a supply appear, as docks and many USB adapters do, it has to be noticed
/// as fast as one that goes online, so each reading lists the folder's names. What the supplies are
/// is looked at when the names are others or a file that was there has gone, else at every fourth
/// reading. Some firmware takes tens of milliseconds per file; it is waited for only when a supply
/// is new, and then not for long.
class SysPowerSupplies : public BatterySource
{
public:
    explicit SysPowerSupplies(const Sysroot &root);
    SysPowerSupplies(const Sysroot &root, PatientFiles::Options options);

    std::optional<std::vector<BatteryInfo>> readBatteries() override;

    /// How long a first reading is waited for, all files together: without it a machine would seem
    /// to be unplugged when the program starts, and to be plugged in at the next sample.
    static PatientFiles::Options defaultOptions();

private:
    struct SupplyFile
    {
        PatientFiles::Handle handle = 0;
        bool wasThere = false;
    };
    struct Supply
    {
        std::string name;
        bool isBattery = false;
        std::vector<SupplyFile> files; ///< as batteryFiles or externalFiles in the source
    };

    void lookAt(std::vector<std::string> names);
    Supply newSupply(const std::string &name, bool isBattery);
    void forget(const Supply &supply);
    bool isOfTheMachine(const std::string &name) const;
    std::string attribute(const std::string &name, const char *file) const;

    std::string_view textOf(SupplyFile &file);
    std::optional<std::int64_t> numberOf(SupplyFile &file);
    BatteryFigures figuresOf(Supply &battery);
    std::vector<BatteryInfo> readAll();

    std::string m_folder;
    PatientFiles m_files;
    std::vector<Supply> m_supplies;   ///< in the order of their names
    std::vector<std::string> m_names; ///< of all folders, when they were looked at
    int m_readingsUntilLook = 0;
    bool m_hasLost = false; ///< a file that was there has gone
};

} // namespace pulsebar
