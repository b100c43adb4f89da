// What the rows of the "Preference" submenu do.

#include "controller/ApplicationUtility.h"
#include "controller/Controller.h"
#include "controller/LoginItem.h"
#include "controller/Settings.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"

namespace pulsebar {

void Controller::switchCheckMemory(const Choice & /*choice*/)
{
    m_monitor.setCheckMemory(!m_monitor.checkMemory());
}

void Controller::switchSortByMemory(const Choice & /*choice*/)
{
    m_monitor.setSortByMemory(!m_monitor.sortByMemory());
}

void Controller::changeTitleToDisplayType(const Choice &choice)
{
    m_titles.changeTitleToDisplayType(choice.item.tag,
                                      choice.modifiers.testFlag(Qt::ControlModifier));
}

void Controller::changeToggleTitleOption(const Choice &choice)
{
    m_titles.changeToggleTitleOption(choice.item.tag);
}

void Controller::changeRefreshTime(const Choice &choice)
{
    setRefreshSec(choice.item.tag);
}

void Controller::setRefreshSec(int seconds)
{
    m_monitor.setRefreshSec(seconds);
    if (m_networkMonitor != nullptr)
        m_networkMonitor->setRefreshSec(seconds);
}

void Controller::changeProcessListMax(const Choice &choice)
{
    m_monitor.setListMax(choice.item.tag);
}

void Controller::changeNetworkListMax(const Choice &choice)
{
    const bool wanted = choice.item.tag != 0;
    if (wanted != (m_networkMax != 0))
        runNettop(wanted);
    m_networkMax = choice.item.tag;
}

void Controller::runNettop(bool on)
{
    if (m_networkMonitor != nullptr)
        m_networkMonitor->setRunNettop(on);
}

void Controller::switchShowIcon(const Choice & /*choice*/)
{
    m_showIcon = !m_showIcon;
}

void Controller::switchFahrenheit(const Choice & /*choice*/)
{
    const bool fahrenheit = !m_monitor.fahrenheit();
    m_monitor.setFahrenheit(fahrenheit);
    m_alertWatch.changeScale(fahrenheit);
    m_alerts.changeScale(fahrenheit);
}

void Controller::switchAutoLaunch(const Choice & /*choice*/)
{
    m_settings.setValue(preferences::kAutoLaunch, !autoLaunch());
    // Other than the rest it is not kept until the end: the list of login items changes now.
    m_settings.synchronize();
    if (m_loginItems != nullptr)
        ChangeOurApplicationsLoginSetting(*m_loginItems, autoLaunch(), m_applicationPath());
}

bool Controller::autoLaunch() const
{
    return m_settings.value(preferences::kAutoLaunch);
}

void Controller::setItemWidth(const Choice &choice)
{
    m_titles.setItemWidth(static_cast<float>(choice.item.tag));
}

void Controller::changeTitleOnPanel(const Choice &choice)
{
    setTitleOnPanel(choice.item.representedObject.toString());
}

void Controller::showManual(const Choice & /*choice*/)
{
    if (m_application != nullptr)
        m_application->showManual();
}

} // namespace pulsebar
