// What the controller's menu is built from, and who carries out its rows.

#include "controller/Controller.h"
#include "controller/GraphWindows.h"
#include "controller/Settings.h"
#include "controller/TitleTexts.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"
#include "platform/Processes.h"
#include "util/Text.h"

#include <QHash>

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
    state.alerts = m_alertActions.menuState();
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
        state.networkProcesses = m_networkMonitor->topDict().value_or(QVariantMap());
    state.temperatureKeys = m_monitor.temperatureKeys();
    state.fanKeys = m_monitor.fanKeys();
    state.hideGraphWindow = m_graphWindows != nullptr && m_graphWindows->hideGraphWindow();
    state.preferences = preferenceMenuState();
    return state;
}

void Controller::menuNeedsUpdate(Menu &menu)
{
    menu.removeAllItems();
    addMainMenu(menu, mainMenuState());
}

Controller::Action Controller::actionNamed(const QString &name)
{
    static const QHash<QString, Action> actions{
        {QStringLiteral("switchCheckMemory"), &Controller::switchCheckMemory},
        {QStringLiteral("switchSortByMemory"), &Controller::switchSortByMemory},
        {QStringLiteral("changeTitleToDisplayType"), &Controller::changeTitleToDisplayType},
        {QStringLiteral("changeToggleTitleOption"), &Controller::changeToggleTitleOption},
        {QStringLiteral("changeRefreshTime"), &Controller::changeRefreshTime},
        {QStringLiteral("changeProcessListMax"), &Controller::changeProcessListMax},
        {QStringLiteral("changeNetworkListMax"), &Controller::changeNetworkListMax},
        {QStringLiteral("switchShowIcon"), &Controller::switchShowIcon},
        {QStringLiteral("switchFahrenheit"), &Controller::switchFahrenheit},
        {QStringLiteral("switchAutoLaunch"), &Controller::switchAutoLaunch},
        {QStringLiteral("setItemWidth"), &Controller::setItemWidth},
        {QStringLiteral("showManual"), &Controller::showManual},
        {QStringLiteral("changeTitleOnPanel"), &Controller::changeTitleOnPanel},
        {QStringLiteral("switchAlert"), &Controller::switchAlert},
        {QStringLiteral("addAlert"), &Controller::addAlert},
        {QStringLiteral("editAlert"), &Controller::editAlert},
        {QStringLiteral("removeAlert"), &Controller::removeAlert},
        {QStringLiteral("showGraphView"), &Controller::showGraphView},
        {QStringLiteral("switchGraphWindow"), &Controller::switchGraphWindow},
        {QStringLiteral("dummy"), &Controller::dummy},
        {QStringLiteral("showDetailWindow"), &Controller::showDetailWindow},
        {QStringLiteral("chooseProcess"), &Controller::chooseProcess},
        {QStringLiteral("showProcessInFinder"), &Controller::showProcessInFinder},
        {QStringLiteral("quitProcess"), &Controller::quitProcess},
        {QStringLiteral("killProcess"), &Controller::killProcess},
        {QStringLiteral("killProcessAsRoot"), &Controller::killProcessAsRoot},
        {QStringLiteral("terminate"), &Controller::terminate},
    };
    return actions.value(name, nullptr);
}

void Controller::performAction(const Menu &menu, const MenuItem &item,
                               Qt::KeyboardModifiers modifiers)
{
    const Action action = actionNamed(item.action);
    if (action != nullptr)
        (this->*action)({menu, item, modifiers});
}

void Controller::showGraphView(const Choice &choice)
{
    showGraphViewForKey(choice.menu.title());
}

void Controller::switchGraphWindow(const Choice & /*choice*/)
{
    if (m_graphWindows != nullptr)
        m_graphWindows->switchGraphWindow();
}

void Controller::dummy(const Choice &choice)
{
    const QString &title = choice.item.title;
    if (!title.startsWith(QLatin1String("Core #")))
        return;
    if (const Text number = substringFromTo(title, QStringLiteral("#"), QStringLiteral(":")))
        showGraphViewForKey(QStringLiteral("CPU") + *number);
}

bool Controller::showGraphViewForKey(const QString &key)
{
    return m_graphWindows != nullptr && m_graphWindows->showGraphViewForKey(key);
}

void Controller::showDetailWindow(const Choice & /*choice*/)
{
    if (m_showDetailWindow)
        m_showDetailWindow();
}

void Controller::chooseProcess(const Choice &choice)
{
    m_processActions.chooseProcess(choice.item);
}

void Controller::showProcessInFinder(const Choice &choice)
{
    m_processActions.showProcessInFinder(choice.menu, choice.item);
}

void Controller::quitProcess(const Choice &choice)
{
    m_processActions.quitProcess(choice.menu, choice.item, choice.modifiers);
}

void Controller::killProcess(const Choice &choice)
{
    m_processActions.killProcess(choice.menu, choice.item);
}

void Controller::killProcessAsRoot(const Choice &choice)
{
    m_processActions.killProcessAsRoot(choice.menu, choice.item);
}

void Controller::terminate(const Choice & /*choice*/)
{
    quit();
}

} // namespace pulsebar
