// What the controller's menu is built from.

#include "controller/Controller.h"
#include "controller/GraphWindows.h"
#include "controller/Settings.h"
#include "controller/TitleTexts.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"
#include "platform/Processes.h"

namespace pulsebar {

TitleMenuState Controller::titleMenuState() const
{
    TitleMenuState state;
    state.titleTypesToDisplay = m_titles.titleTypesToDisplay();
    state.toggleTitleOptionArray = m_titles.toggleTitleOptionArray();
    state.batteryEnabled = titles::batteryIsEnabled(m_monitor.topDict());
    state.monitorTemperature = m_monitor.monitorTemperature();
    state.monitorFanMove = m_monitor.monitorFanMove();
    return state;
}

PreferenceMenuState Controller::preferenceMenuState() const
{
    PreferenceMenuState state;
    state.checkMemory = m_monitor.checkMemory();
    state.sortByMemory = m_monitor.sortByMemory();
    state.titles = titleMenuState();
    state.refreshSec = m_monitor.refreshSec();
    state.listMax = m_monitor.listMax();
    state.networkMax = m_networkMax;
    state.showIcon = m_showIcon;
    state.fahrenheit = m_monitor.fahrenheit();
    state.autoLaunch = autoLaunch();
    state.itemWidth = static_cast<double>(m_titles.itemWidth());
    state.titleOnPanel = titleOnPanel();
    return state;
}

ProcessMenuState Controller::processMenuState() const
{
    ProcessMenuState state;
    state.showIcon = m_showIcon;
    state.monitorProcessUsage = m_monitor.monitorProcessUsage();
    state.iconForPID = [this](const QString &pid) { return m_monitor.iconForPID(pid); };
    state.pathForPID = [this](const QString &pid) { return m_monitor.pathForPID(pid); };
    state.usageInfoDictForKey = [this](const QString &key) {
        return m_monitor.usageInfoDictForKey(key);
    };
    if (m_processes != nullptr)
        state.hold = [this](const QString &pid) { return m_processes->hold(pid, m_listedAt); };
    return state;
}

MainMenuState Controller::mainMenuState() const
{
    MainMenuState state;
    state.topDict = m_monitor.topDict();
    state.processes = processMenuState();
    if (m_networkMonitor != nullptr && m_networkMonitor->runNettop())
        state.networkProcesses = m_networkMonitor->topDict();
    state.hideGraphWindow = m_graphWindows != nullptr && m_graphWindows->hideGraphWindow();
    state.preferences = preferenceMenuState();
    return state;
}

void Controller::menuNeedsUpdate(Menu &menu)
{
    menu.removeAllItems();
    addMainMenu(menu, mainMenuState());
}

} // namespace pulsebar
