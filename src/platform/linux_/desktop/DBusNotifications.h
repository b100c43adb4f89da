#pragma once

#include "platform/Notifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

class QDBusServiceWatcher;

namespace pulsebar {

/// The desktop's notification server (freedesktop.org's Desktop Notifications, version 1.2). It is
/// first spoken to when something is to be shown; one that the bus can start is started by that.
/// Nothing here waits for an answer.
///
/// What a server can do is asked once, and again when another takes its place. One that goes away
/// takes its notifications with it.
class DBusNotifications : public QObject, public Notifications
{
    Q_OBJECT

public:
    explicit DBusNotifications(QDBusConnection bus);
    /// Takes away what is shown: nobody would answer its buttons.
    ~DBusNotifications() override;

    void setListener(Listener *listener) override { m_listener = listener; }
    void show(const QString &key, const Notification &notification) override;
    void withdraw(const QString &key) override;

private Q_SLOTS:
    void actionInvoked(const QDBusMessage &signal);
    void notificationClosed(const QDBusMessage &signal);

private:
    struct Abilities
    {
        bool actions = false;
        bool markup = false; ///< bodies are markup, whether wanted or not
    };
    /// What is known of one key.
    struct Shown
    {
        quint32 id = 0;      ///< the server's number; 0 while nothing is shown
        bool asking = false; ///< a call to show it has no answer yet
        bool withdrawn = false;
        std::optional<Notification> next; ///< to be shown as soon as it can be
    };
    using Answer = std::function<void(const QDBusMessage &)>;

    void watchServer();
    void serverGone();
    void askAbilities();
    void takeAbilities(const QDBusMessage &reply);
    void sendNext(const QString &key);
    void taken(const QString &key, const QDBusMessage &reply);
    void close(quint32 id);
    void fail(const QString &key);
    QVariantList argumentsFor(quint32 id, const Notification &notification) const;
    void call(const QString &method, const QVariantList &arguments, const Answer &answer);
    bool isFromServer(const QDBusMessage &signal) const;
    QString keyOf(quint32 id) const;

    QDBusConnection m_bus;
    Listener *m_listener = nullptr;
    QDBusServiceWatcher *m_watcher = nullptr; ///< null until something was to be shown
    QString m_server;                         ///< the unique name that answered
    std::optional<Abilities> m_abilities;
    bool m_askingAbilities = false;
    int m_generation = 0; ///< of servers; answers of earlier ones count for nothing
    QHash<QString, Shown> m_shown;
};

} // namespace pulsebar
