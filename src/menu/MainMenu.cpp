#include "menu/MainMenu.h"

#include "menu/BatterySection.h"
#include "menu/CpuSection.h"
#include "menu/DetailSection.h"
#include "menu/DiskSection.h"
#include "menu/EnergySection.h"
#include "menu/FanSection.h"
#include "menu/MemorySection.h"
#include "menu/MenuRows.h"
#include "menu/NetworkSection.h"
#include "menu/TemperatureSection.h"
#include "menu/TitleTypes.h"
#include "util/Localisation.h"
#include "util/Sizes.h"
#include "util/Values.h"

#include <utility>

namespace pulsebar {

namespace {

void addProcesses(Menu &menu, const MainMenuState &state)
{
    const QVariantList processes = state.topDict.value(QStringLiteral("ProcessList")).toList();
    for (const QVariant &process : processes) {
        // A report with fewer rows than were asked for ends in an entry without anything.
        const QVariantMap entry = process.toMap();
        if (!entry.isEmpty())
            menu.addItem(processMenuItemForDictionary(entry, state.processes));
    }
    menu.addItem(MenuItem::separatorItem());
}

void addEnergy(Menu &menu, const QVariantMap &topDict)
{
    const QVariant shares = topDict.value(QStringLiteral("EnergyUsageDict"));
    if (isDictionary(shares))
        menu.addItem(powerUsageMenuItem(shares.toMap(), topDict));
}

void addTemperatures(Menu &menu, const MainMenuState &state)
{
    if (!state.preferences.titles.monitorTemperature)
        return;
    TemperatureMenuState section;
    section.temperatureKeys = state.temperatureKeys;
    section.minuteStats =
        state.topDict.value(QStringLiteral("CPUTemparaturesMinutesStats")).toMap();
    section.fahrenheit = state.preferences.fahrenheit;
    const QVariantMap temperatures = state.topDict.value(QStringLiteral("CPUTemparatures")).toMap();
    if (std::optional<MenuItem> item = makeTemperatureMenuForDict(temperatures, section))
        menu.addItem(*std::move(item));
}

void addFans(Menu &menu, const MainMenuState &state)
{
    if (!state.preferences.titles.monitorFanMove)
        return;
    const FanMenuState section{state.fanKeys,
                               state.topDict.value(QStringLiteral("FanMoveMinutesStats")).toList()};
    const QVariantMap fanMove = state.topDict.value(QStringLiteral("FanMove")).toMap();
    if (std::optional<MenuItem> item = makeFanMoveMenuForDict(fanMove, section))
        menu.addItem(*std::move(item));
}

void addMemoryAndDisks(Menu &menu, const QVariantMap &topDict)
{
    if (std::optional<MenuItem> memory = makeMemoryStatsMenu(topDict))
        menu.addItem(*std::move(memory));
    const QVector<MenuItem> disks = makeDisksStatsMenu(topDict);
    for (const MenuItem &disk : disks)
        menu.addItem(disk);
}

MenuItem rateItem(const QString &format, const QVariant &bytes, int type)
{
    return titleTypeItem(localizedFormat(format, fileSizeString(bytes)), type);
}

MenuItem networkItem(const QString &format, const QVariantMap &topDict, QStringView bytes,
                     const QString &record, int type)
{
    MenuItem item = rateItem(format, valueForKeyPath(topDict, bytes), type);
    item.submenu = menuForStaticsForNetwork(topDict.value(record), record);
    return item;
}

void addRates(Menu &menu, const QVariantMap &topDict)
{
    menu.addItem(networkItem(QStringLiteral("Network In: %@/sec"), topDict,
                             u"NetStatistics.InBytes", QStringLiteral("NetworkInMinuteStats"),
                             titles::kNetworkIn));
    menu.addItem(networkItem(QStringLiteral("Network Out: %@/sec"), topDict,
                             u"NetStatistics.OutBytes", QStringLiteral("NetworkOutMinuteStats"),
                             titles::kNetworkOut));
    // The blank lines it up with the row below.
    menu.addItem(rateItem(QStringLiteral(" Disk Read: %@/sec"),
                          topDict.value(QStringLiteral("diskReadBytesPerSec")), titles::kDiskRead));
    menu.addItem(rateItem(QStringLiteral("Disk Write: %@/sec"),
                          topDict.value(QStringLiteral("diskWriteBytesPerSec")),
                          titles::kDiskWrite));
}

void addBattery(Menu &menu, const QVariantMap &topDict)
{
    if (boolValue(valueForKeyPath(topDict, u"BatteryStats.BatteryEnabled")))
        menu.addItem(makeBatteryStatusMenu(topDict));
}

void addHideGraph(Menu &menu, bool hidden)
{
    menu.addItem(MenuItem::separatorItem());
    MenuItem item = actionItem(localizedString(QStringLiteral("Hide Graph")),
                               QStringLiteral("switchGraphWindow"));
    item.tag = kHideGraphTag;
    item.state = hidden ? ItemState::On : ItemState::Off;
    menu.addItem(std::move(item));
}

void addQuit(Menu &menu)
{
    menu.addItem(MenuItem::separatorItem());
    menu.addItemWithTitle(localizedString(QStringLiteral("Quit")), ItemTarget::Application,
                          QStringLiteral("terminate"));
}

} // namespace

void addMainMenu(Menu &menu, const MainMenuState &state)
{
    addProcesses(menu, state);
    if (state.networkProcesses)
        addNetworkProcesses(menu, *state.networkProcesses, state.preferences.networkMax);
    menu.addItem(CPUMenuItem(state.topDict));
    addEnergy(menu, state.topDict);
    addTemperatures(menu, state);
    addFans(menu, state);
    addMemoryAndDisks(menu, state.topDict);
    addRates(menu, state.topDict);
    addBattery(menu, state.topDict);
    menu.addItem(makeDetailMenu(state.topDict));
    addHideGraph(menu, state.hideGraphWindow);
    menu.addItem(makePreferenceOptionsMenu(state.preferences));
    addQuit(menu);
}

} // namespace pulsebar
