#pragma once

#include "controller/AlertWatch.h"
#include "platform/Notifications.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <functional>
#include <memory>

namespace pulsebar {

class HeldProcess;
class StatusItem;

/// What the teller can do for the user; what is empty is not there.
struct AlertTellerParts
{
    Notifications *notifications = nullptr; ///< null: the item draws attention instead
    /// Answers the process of a number as it was listed in the newest sample, or null.
    std::function<std::shared_ptr<HeldProcess>(qint64 number)> hold = {};
    std::function<bool()> fahrenheit = {};
    std::function<void()> openMenu = {};
    /// @return false where the graph cannot be shown
    std::function<bool(const QString &key)> showGraph = {};
    /// The normal quit.
    std::function<void(const std::shared_ptr<HeldProcess> &process)> quit = {};
};

/// Tells the user of alarms: by a notification, which goes when the condition ends, and offers to
/// show what is watched and to quit the process that caused it. The process is held from the moment
/// of telling, so that whoever gets its number later is not asked to quit.
///
/// Where nobody shows notifications the status item draws attention, until the condition ends or
/// the menu is opened.
class AlertTeller : public QObject, private Notifications::Listener
{
    Q_OBJECT

public:
    /// The item and the parts must outlive it.
    AlertTeller(StatusItem &item, AlertTellerParts parts);
    ~AlertTeller() override;

    void tell(const Alarm &alarm);
    void end(const QString &id);

private:
    struct Told
    {
        QString graphKey;                     ///< empty where there is no graph
        std::shared_ptr<HeldProcess> process; ///< null where none is to be quit
    };

    void notificationActionChosen(const QString &id, const QString &action) override;
    void notificationNotShown(const QString &id) override;
    void menuOpened();
    void show(const Told &told);
    std::shared_ptr<HeldProcess> culpritOf(const Alarm &alarm) const;

    StatusItem &m_item;
    AlertTellerParts m_parts;
    QHash<QString, Told> m_told;
    QSet<QString> m_unseen; ///< alarms for which the item draws attention
};

} // namespace pulsebar
