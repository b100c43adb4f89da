#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <optional>

namespace pulsebar::testing {

/// What a program asked to be shown.
struct ShownNotification
{
    uint id = 0;       ///< the number it was given
    uint replaces = 0; ///< the number that the program named, 0 for a new one
    QString program;
    QString icon;
    QString summary;
    QString body;
    QStringList actions; ///< names and labels by turns
    QVariantMap hints;
    int timeout = 0;
};

/// Stands for the desktop's notification server on a test's bus: shows nothing, but takes notes.
class NotificationServer : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    /// Owns the server's name from now on; throws when the bus does not let it.
    explicit NotificationServer(QDBusConnection bus);
    ~NotificationServer() override;

    /// Everything that was asked for, in order.
    QVector<ShownNotification> all;
    /// What a user would see now, by number.
    QHash<uint, ShownNotification> visible;
    /// How often it was asked what it can do.
    int askedAbilities = 0;
    QStringList abilities{QStringLiteral("body"), QStringLiteral("body-markup"),
                          QStringLiteral("actions")};
    bool refuses = false;
    /// The number that every notification is given, be it a good one or not.
    std::optional<uint> sameNumber;

    /// As when the user chooses an action; the notification is closed by that.
    void choose(uint id, const QString &action);
    /// As when the user closes it.
    void dismiss(uint id);

public Q_SLOTS:
    Q_SCRIPTABLE QStringList GetCapabilities();
    Q_SCRIPTABLE uint Notify(const QString &program, uint replaces, const QString &icon,
                             const QString &summary, const QString &body,
                             const QStringList &actions, const QVariantMap &hints, int timeout);
    Q_SCRIPTABLE void CloseNotification(uint id);

Q_SIGNALS:
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString &action);
    Q_SCRIPTABLE void NotificationClosed(uint id, uint reason);

private:
    QDBusConnection m_bus;
    uint m_last = 0;
};

} // namespace pulsebar::testing
