#include "controller/AlertTeller.h"

#include "controller/AlarmText.h"
#include "platform/Processes.h"
#include "statusitem/StatusItem.h"
#include "util/Localisation.h"

#include <utility>

namespace pulsebar {

namespace {

const QString kDefaultAction = QStringLiteral("default");
const QString kShowAction = QStringLiteral("show");
const QString kQuitAction = QStringLiteral("quit");

} // namespace

AlertTeller::AlertTeller(StatusItem &item, AlertTellerParts parts)
    : m_item(item)
    , m_parts(std::move(parts))
{
    if (m_parts.notifications != nullptr)
        m_parts.notifications->setListener(this);
    connect(&m_item, &StatusItem::menuOpened, this, &AlertTeller::menuOpened);
}

AlertTeller::~AlertTeller()
{
    if (m_parts.notifications != nullptr)
        m_parts.notifications->setListener(nullptr);
}

std::shared_ptr<HeldProcess> AlertTeller::culpritOf(const Alarm &alarm) const
{
    if (!alarm.culprit || alarm.culprit->number <= 0 || !m_parts.hold || !m_parts.quit)
        return nullptr;
    return m_parts.hold(alarm.culprit->number);
}

void AlertTeller::tell(const Alarm &alarm)
{
    const Told told{alertGraphKey(alarm), culpritOf(alarm)};
    m_told.insert(alarm.id, told);
    if (m_parts.notifications == nullptr) {
        notificationNotShown(alarm.id);
        return;
    }
    Notification notification =
        alarmNotification(alarm, m_parts.fahrenheit && m_parts.fahrenheit());
    const QString show = localizedString(QStringLiteral("Show"));
    notification.actions = {{kDefaultAction, show}, {kShowAction, show}};
    if (told.process)
        notification.actions += {kQuitAction, localizedString(QStringLiteral("Quit"))};
    m_parts.notifications->show(alarm.id, notification);
}

void AlertTeller::end(const QString &id)
{
    m_told.remove(id);
    if (m_parts.notifications != nullptr)
        m_parts.notifications->withdraw(id);
    m_unseen.remove(id);
    m_item.setNeedsAttention(!m_unseen.isEmpty());
}

void AlertTeller::notificationNotShown(const QString &id)
{
    if (!m_told.contains(id))
        return;
    m_unseen.insert(id);
    m_item.setNeedsAttention(true);
}

void AlertTeller::menuOpened()
{
    m_unseen.clear();
    m_item.setNeedsAttention(false);
}

void AlertTeller::notificationActionChosen(const QString &id, const QString &action)
{
    const auto told = m_told.constFind(id);
    if (told == m_told.cend())
        return;
    if (action == kQuitAction && told->process)
        m_parts.quit(told->process);
    else if (action == kDefaultAction || action == kShowAction)
        show(*told);
}

void AlertTeller::show(const Told &told)
{
    const QString &key = told.graphKey;
    const bool shown = !key.isEmpty() && m_parts.showGraph && m_parts.showGraph(key);
    if (!shown && m_parts.openMenu)
        m_parts.openMenu();
}

} // namespace pulsebar
