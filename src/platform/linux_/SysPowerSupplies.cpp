#include "platform/linux_/SysPowerSupplies.h"

#include "platform/linux_/low/SmallFile.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <memory>
#include <utility>

namespace pulsebar {

namespace {

/// How many readings trust what is known of the supplies of the same names.
constexpr int readingsBetweenLooks = 3;

enum BatteryFile {
    Status,
    Present,
    ChargeNow,
    ChargeFull,
    EnergyNow,
    EnergyFull,
    Capacity,
    CycleCount,
    VoltageNow,
    CurrentNow,
    PowerNow,
};
constexpr std::array batteryFiles = {"status",      "present",     "charge_now", "charge_full",
                                     "energy_now",  "energy_full", "capacity",   "cycle_count",
                                     "voltage_now", "current_now", "power_now"};
constexpr std::array externalFiles = {"online"};

/// Sorted.
std::optional<std::vector<std::string>> namesIn(const std::string &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> handle(::opendir(folder.c_str()), &::closedir);
    if (!handle)
        return std::nullopt;
    std::vector<std::string> names;
    while (const dirent *entry = ::readdir(handle.get())) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::ranges::sort(names, comesBefore);
    return names;
}

/// What is known of external power while the supplies are gone through.
struct ExternalPower
{
    bool isTold = false; ///< by a supply from outside
    bool isOnline = false;
    bool isUsed = false;   ///< by a battery that is charged
    bool isMissed = false; ///< by a battery that is emptied
    bool isEnough = false; ///< for a battery that rests

    void addSupply(std::optional<std::int64_t> online)
    {
        isTold = isTold || online;
        isOnline = isOnline || online.value_or(0) != 0;
    }
    void addBattery(std::string_view status)
    {
        isUsed = isUsed || status == "Charging";
        isMissed = isMissed || status == "Discharging";
        isEnough = isEnough || status == "Full" || status == "Not charging";
    }
    bool isConnected() const { return isTold ? isOnline : isUsed || (isEnough && !isMissed); }
};

BatteryInfo infoOf(const BatteryFigures &figures)
{
    BatteryInfo info;
    if (figures.present != 0) // a driver that does not tell has no battery that could be taken out
        info.flags |= BatteryInfo::kInstalled;
    if (figures.status == "Charging")
        info.flags |= BatteryInfo::kCharging;
    const ChargeLevel level = chargeLevel(figures);
    info.current = level.now;
    info.capacity = level.full;
    if (figures.cycleCount && *figures.cycleCount >= 0)
        info.cycleCount = figures.cycleCount;
    info.voltage = millivolts(figures);
    info.amperage = milliamperes(figures);
    return info;
}

} // namespace

PatientFiles::Options SysPowerSupplies::defaultOptions()
{
    PatientFiles::Options options;
    options.budget = std::chrono::milliseconds(300);
    return options;
}

SysPowerSupplies::SysPowerSupplies(const Sysroot &root)
    : SysPowerSupplies(root, defaultOptions())
{
}

SysPowerSupplies::SysPowerSupplies(const Sysroot &root, PatientFiles::Options options)
    : m_folder(root.path("/sys/class/power_supply/"))
    , m_files(std::move(options))
{
}

std::string SysPowerSupplies::attribute(const std::string &name, const char *file) const
{
    constexpr std::size_t limit = 64;
    const auto text = readWholeFile(m_folder + name + '/' + file, limit);
    return std::string(parseSupplyText(text.value_or("")));
}

bool SysPowerSupplies::isOfTheMachine(const std::string &name) const
{
    return attribute(name, "scope") != "Device";
}

SysPowerSupplies::Supply SysPowerSupplies::newSupply(const std::string &name, bool isBattery)
{
    Supply supply{name, isBattery, {}};
    const auto add = [&](const char *file) {
        supply.files.push_back({m_files.add(m_folder + name + '/' + file)});
    };
    if (isBattery)
        std::ranges::for_each(batteryFiles, add);
    else
        std::ranges::for_each(externalFiles, add);
    return supply;
}

void SysPowerSupplies::forget(const Supply &supply)
{
    for (const SupplyFile &file : supply.files)
        m_files.remove(file.handle);
}

/// Supplies that have gone are forgotten, and new ones added, each in its place.
void SysPowerSupplies::lookAt(std::vector<std::string> names)
{
    auto before = std::exchange(m_supplies, {});
    m_readingsUntilLook = readingsBetweenLooks;
    for (const auto &name : names) {
        const std::string type = attribute(name, "type");
        if (type.empty()) // one that is just being made
            m_readingsUntilLook = 0;
        const bool isBattery = type == "Battery";
        if ((!isBattery && !isExternalSupply(type)) || !isOfTheMachine(name))
            continue;
        const auto known = std::ranges::find_if(before, [&](const Supply &supply) {
            return supply.name == name && supply.isBattery == isBattery;
        });
        if (known == before.end()) {
            m_supplies.push_back(newSupply(name, isBattery));
            continue;
        }
        m_supplies.push_back(std::move(*known));
        before.erase(known);
    }
    for (const Supply &gone : before)
        forget(gone);
    m_names = std::move(names);
}

std::string_view SysPowerSupplies::textOf(SupplyFile &file)
{
    const FileReading reading = m_files.read(file.handle);
    if (file.wasThere && reading.isGone())
        m_hasLost = true;
    if (!reading.isNotYet())
        file.wasThere = reading.isValue();
    return parseSupplyText(reading.text);
}

std::optional<std::int64_t> SysPowerSupplies::numberOf(SupplyFile &file)
{
    return parseSupplyNumber(textOf(file));
}

/// What is not needed is not read. The status stays valid until the next file is.
BatteryFigures SysPowerSupplies::figuresOf(Supply &battery)
{
    const auto number = [&](BatteryFile file) { return numberOf(battery.files[file]); };
    BatteryFigures figures;
    figures.present = number(Present);
    figures.chargeNow = number(ChargeNow);
    figures.chargeFull = number(ChargeFull);
    if (!hasChargePair(figures)) {
        figures.energyNow = number(EnergyNow);
        figures.energyFull = number(EnergyFull);
    }
    if (!hasChargePair(figures))
        figures.capacity = number(Capacity);
    figures.cycleCount = number(CycleCount);
    figures.voltageNow = number(VoltageNow);
    figures.currentNow = number(CurrentNow);
    if (!figures.currentNow)
        figures.powerNow = number(PowerNow);
    figures.status = textOf(battery.files[Status]);
    return figures;
}

std::vector<BatteryInfo> SysPowerSupplies::readAll()
{
    m_files.beginRound();
    m_hasLost = false;
    ExternalPower power;
    std::vector<BatteryInfo> batteries;
    for (Supply &supply : m_supplies) {
        if (!supply.isBattery) {
            power.addSupply(numberOf(supply.files.front()));
            continue;
        }
        const BatteryFigures figures = figuresOf(supply);
        power.addBattery(figures.status);
        batteries.push_back(infoOf(figures));
    }
    for (BatteryInfo &battery : batteries)
        battery.flags |= power.isConnected() ? BatteryInfo::kConnected : 0;
    return batteries;
}

std::optional<std::vector<BatteryInfo>> SysPowerSupplies::readBatteries()
{
    auto names = namesIn(m_folder);
    if (!names) {
        lookAt({});
        return std::nullopt;
    }
    const bool isDue = m_readingsUntilLook-- <= 0 || *names != m_names;
    if (isDue)
        lookAt(std::move(*names));
    auto batteries = readAll();
    if (isDue || !m_hasLost)
        return batteries;
    lookAt(std::exchange(m_names, {}));
    return readAll();
}

} // namespace pulsebar
