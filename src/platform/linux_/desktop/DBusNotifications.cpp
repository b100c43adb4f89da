#include "platform/linux_/desktop/DBusNotifications.h"

#include "platform/linux_/desktop/LinuxDesktop.h"
#include "util/PlainLine.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QLoggingCategory>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logNotifications, "pulsebar.notifications", QtInfoMsg)

const QString serverName = QStringLiteral("org.freedesktop.Notifications");
const QString serverPath = QStringLiteral("/org/freedesktop/Notifications");
const QString desktopEntry = QStringLiteral("org.pulsebar.Pulsebar");

constexpr qsizetype longestSummary = 160;
constexpr qsizetype longestBody = 600;
constexpr qsizetype longestLabel = 80;
constexpr uchar normalUrgency = 1;
/// The server decides how long it shows a notification.
constexpr int serversChoice = -1;

/// As the markup of a body has it; the server need not know any other entities.
QString escaped(QString text)
{
    text.replace(u'&', QStringLiteral("&amp;"));
    text.replace(u'<', QStringLiteral("&lt;"));
    return text.replace(u'>', QStringLiteral("&gt;"));
}

} // namespace

DBusNotifications::DBusNotifications(QDBusConnection bus)
    : m_bus(std::move(bus))
{
}

DBusNotifications::~DBusNotifications()
{
    for (const Shown &shown : std::as_const(m_shown)) {
        if (shown.id != 0)
            close(shown.id);
    }
}

void DBusNotifications::show(const QString &key, const Notification &notification)
{
    watchServer();
    Shown &shown = m_shown[key];
    shown.withdrawn = false;
    shown.next = notification;
    if (m_abilities)
        sendNext(key);
    else
        askAbilities();
}

void DBusNotifications::withdraw(const QString &key)
{
    const auto found = m_shown.find(key);
    if (found == m_shown.end())
        return;
    found->next.reset();
    if (found->asking) {
        found->withdrawn = true; // its number is not known yet
        return;
    }
    if (found->id != 0)
        close(found->id);
    m_shown.erase(found);
}

void DBusNotifications::watchServer()
{
    if (m_watcher != nullptr)
        return;
    m_watcher =
        new QDBusServiceWatcher(serverName, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &before, const QString &) {
                if (!before.isEmpty())
                    serverGone();
            });
    // Naming the service here would ask the bus for its owner, and wait for the answer.
    m_bus.connect(QString(), serverPath, serverName, QStringLiteral("ActionInvoked"), this,
                  SLOT(actionInvoked(QDBusMessage)));
    m_bus.connect(QString(), serverPath, serverName, QStringLiteral("NotificationClosed"), this,
                  SLOT(notificationClosed(QDBusMessage)));
}

void DBusNotifications::serverGone()
{
    qCDebug(logNotifications) << "the notification server is gone";
    ++m_generation;
    m_server.clear();
    m_abilities.reset();
    m_askingAbilities = false;
    const QStringList keys = m_shown.keys();
    for (const QString &key : keys)
        fail(key);
}

void DBusNotifications::askAbilities()
{
    if (std::exchange(m_askingAbilities, true))
        return;
    call(QStringLiteral("GetCapabilities"), {},
         [this](const QDBusMessage &reply) { takeAbilities(reply); });
}

void DBusNotifications::takeAbilities(const QDBusMessage &reply)
{
    m_askingAbilities = false;
    const bool answered = reply.type() == QDBusMessage::ReplyMessage;
    if (answered) {
        const QStringList words = reply.arguments().value(0).toStringList();
        m_server = reply.service();
        m_abilities = {words.contains(QStringLiteral("actions")),
                       words.contains(QStringLiteral("body-markup"))};
    } else {
        qCDebug(logNotifications) << "no notification server:" << reply.errorMessage();
    }
    const QStringList keys = m_shown.keys();
    for (const QString &key : keys) {
        if (answered)
            sendNext(key);
        else
            fail(key);
    }
}

void DBusNotifications::sendNext(const QString &key)
{
    Shown &shown = m_shown[key];
    if (shown.asking || !shown.next)
        return;
    shown.asking = true;
    const Notification notification = *std::exchange(shown.next, std::nullopt);
    call(QStringLiteral("Notify"), argumentsFor(shown.id, notification),
         [this, key](const QDBusMessage &reply) { taken(key, reply); });
}

QVariantList DBusNotifications::argumentsFor(quint32 id, const Notification &notification) const
{
    QStringList actions;
    if (m_abilities->actions) {
        for (const NotificationAction &action : notification.actions)
            actions << action.name << plainLine(action.label, longestLabel);
    }
    const QString body = plainLine(notification.body, longestBody);
    const QVariantMap hints{{QStringLiteral("desktop-entry"), desktopEntry},
                            {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)}};
    return {QStringLiteral("Pulsebar"),
            id,
            desktopEntry,
            plainLine(notification.summary, longestSummary),
            m_abilities->markup ? escaped(body) : body,
            actions,
            hints,
            serversChoice};
}

void DBusNotifications::taken(const QString &key, const QDBusMessage &reply)
{
    const bool answered = reply.type() == QDBusMessage::ReplyMessage;
    const quint32 id = answered ? reply.arguments().value(0).toUInt() : 0;
    // No notification has the number 0.
    if (id == 0) {
        qCWarning(logNotifications)
            << "a notification was refused:"
            << (answered ? QStringLiteral("it was given no number") : reply.errorMessage());
        fail(key);
        return;
    }
    // A number names one notification: a click on it must not count for another alarm.
    const QString before = keyOf(id);
    if (!before.isEmpty())
        m_shown[before].id = 0;
    Shown &shown = m_shown[key];
    shown.asking = false;
    shown.id = id;
    if (shown.withdrawn)
        withdraw(key);
    else
        sendNext(key);
}

void DBusNotifications::fail(const QString &key)
{
    const bool wanted = !m_shown.take(key).withdrawn;
    if (wanted && m_listener != nullptr)
        m_listener->notificationNotShown(key);
}

void DBusNotifications::close(quint32 id)
{
    QDBusMessage message = QDBusMessage::createMethodCall(serverName, serverPath, serverName,
                                                          QStringLiteral("CloseNotification"));
    message.setArguments({id});
    message.setAutoStartService(false);
    m_bus.call(message, QDBus::NoBlock);
}

void DBusNotifications::call(const QString &method, const QVariantList &arguments,
                             const Answer &answer)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(serverName, serverPath, serverName, method);
    message.setArguments(arguments);
    const QDBusPendingCall pending = m_bus.asyncCall(message);
    const auto use = [this, answer, generation = m_generation](const QDBusMessage &reply) {
        if (generation == m_generation)
            answer(reply);
    };
    // Without a bus nobody reports the end.
    if (pending.isFinished()) {
        QMetaObject::invokeMethod(
            this, [pending, use] { use(pending.reply()); }, Qt::QueuedConnection);
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(pending, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, use] {
        watcher->deleteLater();
        use(watcher->reply());
    });
}

bool DBusNotifications::isFromServer(const QDBusMessage &signal) const
{
    return !m_server.isEmpty() && signal.service() == m_server;
}

QString DBusNotifications::keyOf(quint32 id) const
{
    for (auto shown = m_shown.cbegin(); id != 0 && shown != m_shown.cend(); ++shown) {
        if (shown->id == id)
            return shown.key();
    }
    return {};
}

void DBusNotifications::actionInvoked(const QDBusMessage &signal)
{
    if (!isFromServer(signal) || signal.signature() != u"us")
        return;
    const QString key = keyOf(signal.arguments().at(0).toUInt());
    if (!key.isEmpty() && m_listener != nullptr)
        m_listener->notificationActionChosen(key, signal.arguments().at(1).toString());
}

void DBusNotifications::notificationClosed(const QDBusMessage &signal)
{
    if (!isFromServer(signal) || signal.signature() != u"uu")
        return;
    const auto found = m_shown.find(keyOf(signal.arguments().at(0).toUInt()));
    if (found == m_shown.end())
        return;
    found->id = 0;
    if (!found->asking && !found->next)
        m_shown.erase(found);
}

std::unique_ptr<Notifications> makeNotifications()
{
    return std::make_unique<DBusNotifications>(QDBusConnection::sessionBus());
}

} // namespace pulsebar
