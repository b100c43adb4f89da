// What the controller's menu is built from.

#include "controller/Controller.h"
#include "controller/Settings.h"
#include "controller/TitleTexts.h"
#include "engine/TopMonitor.h"
#include "util/Localisation.h"

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

void Controller::menuNeedsUpdate(Menu &menu)
{
    menu.removeAllItems();
    menu.addItem(makePreferenceOptionsMenu(preferenceMenuState()));
    menu.addItem(MenuItem::separatorItem());
    MenuItem quitItem;
    quitItem.title = localizedString(QStringLiteral("Quit"));
    quitItem.action = QStringLiteral("terminate");
    quitItem.target = ItemTarget::Application;
    menu.addItem(std::move(quitItem));
}

} // namespace pulsebar
