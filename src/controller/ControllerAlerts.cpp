// How the controller tells of alerts, and what the rows of their menu do.

#include "controller/Controller.h"
#include "engine/TopMonitor.h"
#include "platform/Processes.h"

namespace pulsebar {

AlertTellerParts Controller::alertTellerParts(Notifications *notifications)
{
    AlertTellerParts parts;
    parts.notifications = notifications;
    parts.fahrenheit = [this] { return m_monitor.fahrenheit(); };
    parts.openMenu = [this] { openMenu(); };
    parts.showGraph = [this](const QString &key) { return showGraphViewForKey(key); };
    if (m_processes == nullptr)
        return parts;
    parts.hold = [this](qint64 number) {
        return m_processes->hold(QString::number(number), m_listedAt);
    };
    parts.quit = [this](const std::shared_ptr<HeldProcess> &process) {
        m_processActions.quitProcess(process);
    };
    return parts;
}

void Controller::switchAlert(const Choice &choice)
{
    m_alertActions.switchAlert(choice.item.representedObject.toString());
}

void Controller::addAlert(const Choice & /*choice*/)
{
    m_alertActions.addAlert();
}

void Controller::editAlert(const Choice &choice)
{
    m_alertActions.editAlert(choice.item.representedObject.toString());
}

void Controller::removeAlert(const Choice &choice)
{
    m_alertActions.removeAlert(choice.item.representedObject.toString());
}

} // namespace pulsebar
