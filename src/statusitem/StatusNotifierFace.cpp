#include "statusitem/StatusNotifierFace.h"

#include "platform/ProcessNames.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(log, "pulsebar.panel", QtInfoMsg)

const QString connectionName = QStringLiteral("pulsebar-panel");
const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

bool ownWindows()
{
    return QGuiApplication::platformName() == u"xcb";
}

/// Which keys are held; only X11 tells it to a program that has no focus.
Qt::KeyboardModifiers heldModifiers()
{
    return ownWindows() ? QGuiApplication::queryKeyboardModifiers() : Qt::KeyboardModifiers();
}

/// The socket's path in "unix:path=/run/user/1000/bus,guid=…"; empty for other kinds.
QString busSocket()
{
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString beginning = QStringLiteral("unix:path=");
    const qsizetype at = address.indexOf(beginning);
    if (at < 0) {
        return {};
    }
    const QString rest = address.mid(at + beginning.size());
    return rest.section(u';', 0, 0).section(u',', 0, 0);
}

QDBusMessage busCall(const QString &method, const QString &argument)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        busService, QStringLiteral("/org/freedesktop/DBus"), busService, method);
    call.setArguments({argument});
    return call;
}

/// Hands the reply to `use` when it is there, and an error as well.
void whenAnswered(const QDBusConnection &bus, const QDBusMessage &call, QObject *context,
                  const std::function<void(const QDBusMessage &)> &use)
{
    auto *pending = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, context, [pending, use] {
        pending->deleteLater();
        use(pending->reply());
    });
}

} // namespace

StatusNotifierFace::StatusNotifierFace(const MenuSource &source, ProcessNames *names,
                                       QObject *parent)
    : QObject(parent)
    , m_names(names)
    , m_exporter(source)
    , m_bus(connectionName)
{
    m_exporter.setIconProperties(
        [this](const QString &image) { return m_icons.properties(image); });
    m_exporter.setKeyboard(heldModifiers);
    connect(&m_exporter, &MenuExporter::menuOpened, this, &StatusNotifierFace::menuOpened);
    m_item.setClickHandler([this](const QDBusMessage &call) { answerClick(call); });
    connectToBus();
}

StatusNotifierFace::~StatusNotifierFace()
{
    m_watcher.reset();
    m_item.unregister();
    m_bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

QString StatusNotifierFace::serviceName() const
{
    return QStringLiteral("org.kde.StatusNotifierItem-%1-1")
        .arg(QCoreApplication::applicationPid());
}

HostKind StatusNotifierFace::host() const
{
    return m_hasHost ? m_kind : HostKind::None;
}

void StatusNotifierFace::connectToBus()
{
    m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    if (!m_bus.isConnected()) {
        qCInfo(log) << "no session bus:" << m_bus.lastError().message();
        settle(HostKind::None, false);
        return;
    }
    m_busFolder.reset();
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(busLost()));
    watchHosts();
    whenAnswered(m_bus, busCall(QStringLiteral("GetNameOwner"), watcherService), this,
                 [this](const QDBusMessage &reply) {
                     watcherChanged(reply.type() == QDBusMessage::ReplyMessage
                                        ? reply.arguments().value(0).toString()
                                        : QString());
                 });
}

void StatusNotifierFace::watchHosts()
{
    m_watcher = std::make_unique<QDBusServiceWatcher>(watcherService, m_bus,
                                                      QDBusServiceWatcher::WatchForOwnerChange);
    connect(
        m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { watcherChanged(owner); });
    for (const char *signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        m_bus.connect(watcherService, watcherPath, watcherService, QString::fromLatin1(signal),
                      this, SLOT(hostsChanged()));
    }
}

void StatusNotifierFace::busLost()
{
    qCInfo(log) << "the session bus is gone";
    m_watcher.reset();
    m_item.unregister();
    m_registered = false;
    m_watcherOwner.clear();
    m_bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
    settle(HostKind::None, false);
    watchForBus();
}

void StatusNotifierFace::watchForBus()
{
    const QString socket = busSocket();
    if (socket.isEmpty()) {
        return;
    }
    m_busFolder = std::make_unique<QFileSystemWatcher>();
    m_busFolder->addPath(QFileInfo(socket).absolutePath());
    const auto retry = [this, socket] {
        if (QFileInfo::exists(socket)) {
            // Later: the watcher that calls cannot be deleted here.
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (!m_bus.isConnected()) {
                        connectToBus();
                    }
                },
                Qt::QueuedConnection);
        }
    };
    connect(m_busFolder.get(), &QFileSystemWatcher::directoryChanged, this, retry);
}

void StatusNotifierFace::watcherChanged(const QString &owner)
{
    if (owner == m_watcherOwner && m_settled) {
        return;
    }
    m_watcherOwner = owner;
    if (owner.isEmpty()) {
        settle(HostKind::None, false);
        return;
    }
    if (m_registered) {
        callRegister();
    }
    withProgramName(owner, [this, owner](const QString &name) {
        if (owner == m_watcherOwner) {
            m_kind = hostKindOf(name);
            qCDebug(log) << "items are watched by" << name;
            askForHosts();
        }
    });
}

void StatusNotifierFace::hostsChanged()
{
    if (!m_watcherOwner.isEmpty()) {
        askForHosts();
    }
}

void StatusNotifierFace::askForHosts()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_watcherOwner, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call.setArguments({watcherService, QStringLiteral("IsStatusNotifierHostRegistered")});
    whenAnswered(m_bus, call, this, [this, owner = m_watcherOwner](const QDBusMessage &reply) {
        if (owner != m_watcherOwner) {
            return;
        }
        const QVariant value = reply.arguments().value(0).value<QDBusVariant>().variant();
        // A watcher that does not say is one that draws as well.
        const bool denied =
            reply.type() == QDBusMessage::ReplyMessage && value.isValid() && !value.toBool();
        settle(m_kind, !denied);
    });
}

void StatusNotifierFace::settle(HostKind kind, bool hasHost)
{
    const HostKind before = host();
    m_kind = kind;
    m_hasHost = hasHost;
    const bool first = !std::exchange(m_settled, true);
    if (first || before != host()) {
        Q_EMIT hostChanged();
    }
}

void StatusNotifierFace::withProgramName(const QString &busName,
                                         std::function<void(const QString &)> use)
{
    whenAnswered(m_bus, busCall(QStringLiteral("GetConnectionUnixProcessID"), busName), this,
                 [this, use = std::move(use)](const QDBusMessage &reply) {
                     const uint pid = reply.arguments().value(0).toUInt();
                     use(m_names && pid > 0 ? m_names->programName(pid) : QString());
                 });
}

void StatusNotifierFace::setOffered(bool offered)
{
    m_offered = offered;
    if (offered && !m_registered) {
        offer();
    } else if (!offered && m_registered) {
        withdraw();
    }
}

void StatusNotifierFace::setState(const NotifierState &state)
{
    const bool labelGoes = m_item.state().label && !state.label;
    if (labelGoes && m_registered && keepsLabels(host())) {
        // Only an item that it does not know yet has no label there.
        withdraw();
        m_item.setState(state);
        offer();
        return;
    }
    m_item.setState(state);
}

void StatusNotifierFace::offer()
{
    if (!m_bus.isConnected()) {
        return;
    }
    m_registered = m_exporter.registerOn(m_bus, StatusNotifierItem::menuPath()) &&
                   m_item.registerOn(m_bus) && m_bus.registerService(serviceName());
    if (!m_registered) {
        qCWarning(log) << "the item cannot be put on the bus:" << m_bus.lastError().message();
        return;
    }
    if (!m_watcherOwner.isEmpty()) {
        callRegister();
    }
}

void StatusNotifierFace::withdraw()
{
    m_registered = false;
    m_bus.unregisterService(serviceName());
    m_item.unregister();
    m_bus.unregisterObject(StatusNotifierItem::menuPath());
}

void StatusNotifierFace::callRegister()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherService, watcherPath, watcherService, QStringLiteral("RegisterStatusNotifierItem"));
    call.setArguments({serviceName()});
    call.setAutoStartService(false);
    whenAnswered(m_bus, call, this, [](const QDBusMessage &reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) {
            qCWarning(log) << "the panel did not take the item:" << reply.errorMessage();
        }
    });
}

void StatusNotifierFace::answerClick(const QDBusMessage &call)
{
    withProgramName(call.service(), [this, call](const QString &name) {
        const bool menuAsked = call.member() == u"ContextMenu";
        const ClickAnswer answer =
            menuAsked ? (ownWindows() ? ClickAnswer::OpenMenu : ClickAnswer::Ignore)
                      : clickAnswerFor(name, ownWindows());
        if (answer == ClickAnswer::Refuse) {
            m_bus.send(call.createErrorReply(QDBusError::UnknownMethod,
                                             QStringLiteral("the item has only a menu")));
            return;
        }
        m_bus.send(call.createReply());
        if (answer == ClickAnswer::OpenMenu) {
            Q_EMIT menuRequested();
        } else {
            qCDebug(log) << "click from" << name << "left to the panel";
        }
    });
}

} // namespace pulsebar
