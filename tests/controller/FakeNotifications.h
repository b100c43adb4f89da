#pragma once

#include "platform/Notifications.h"

#include <QHash>
#include <QStringList>

namespace pulsebar {

/// Notifications that are shown to nobody but the test.
class FakeNotifications : public Notifications
{
public:
    void setListener(Listener *newListener) override { listener = newListener; }
    void show(const QString &key, const Notification &notification) override
    {
        visible.insert(key, notification);
        ++shown;
    }
    void withdraw(const QString &key) override { visible.remove(key); }

    /// The names of the actions that a notification offers.
    QStringList actions(const QString &key) const
    {
        QStringList names;
        for (const NotificationAction &action : visible.value(key).actions)
            names += action.name + u':' + action.label;
        return names;
    }

    Listener *listener = nullptr;
    QHash<QString, Notification> visible;
    int shown = 0;
};

} // namespace pulsebar
