#pragma once

#include <QString>
#include <QVector>

namespace pulsebar {

/// A button of a notification. The name is what its listener is told; "default" names no button but
/// a click on the notification itself.
struct NotificationAction
{
    QString name;
    QString label;

    bool operator==(const NotificationAction &other) const = default;
};

/// What is told. Both texts are plain text and may hold names that any program gives itself:
/// whoever shows them shows one line each, without control characters, of a bounded length.
struct Notification
{
    QString summary;
    QString body;
    QVector<NotificationAction> actions;

    bool operator==(const Notification &other) const = default;
};

/// Messages that the desktop shows beside the program. Each goes by a key of the caller's: there is
/// one notification of a key at most, and a new one takes the place of the one before.
class Notifications
{
public:
    /// Told from the run loop, never from inside a call to the notifications.
    class Listener
    {
    public:
        virtual ~Listener() = default;
        /// The user chose an action of the notification of that key.
        virtual void notificationActionChosen(const QString &key, const QString &action) = 0;
        /// Nobody shows the notification of that key: there is no one to show it, they refused, or
        /// they went away with it.
        virtual void notificationNotShown(const QString &key) = 0;
    };

    virtual ~Notifications() = default;

    /// The listener must outlive the notifications or be taken away with nullptr.
    virtual void setListener(Listener *listener) = 0;

    /// Shows a notification, or replaces the one of the same key.
    virtual void show(const QString &key, const Notification &notification) = 0;
    /// Takes the notification of the key away, be it shown or still under way. Does nothing when
    /// there is none.
    virtual void withdraw(const QString &key) = 0;
};

} // namespace pulsebar
