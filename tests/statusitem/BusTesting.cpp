#include "BusTesting.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QUuid>

#include <stdexcept>

namespace pulsebar::testing {

namespace {
constexpr int patience = 5000;
PrivateBus *theBus = nullptr;

/// A bus that starts no services: what this machine has installed is nothing to a test.
constexpr const char *busConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
} // namespace

bool waitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

void settle(const QList<QDBusConnection> &connections)
{
    // Twice: what the first round brings may send messages of its own.
    for (int round = 0; round < 2; ++round) {
        for (const QDBusConnection &connection : connections) {
            QDBusPendingCallWatcher pending(connection.asyncCall(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"))));
            waitFor([&pending] { return pending.isFinished(); });
        }
        QCoreApplication::sendPostedEvents();
    }
}

PrivateBus::PrivateBus()
{
    theBus = this;
    qputenv("DBUS_SESSION_BUS_ADDRESS", address().toLocal8Bit());
    start();
}

PrivateBus::~PrivateBus()
{
    stop();
}

PrivateBus &PrivateBus::instance()
{
    return *theBus;
}

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
}

void PrivateBus::start()
{
    QFile configuration(m_folder.filePath(QStringLiteral("bus.conf")));
    if (!configuration.open(QIODevice::WriteOnly)) {
        throw std::runtime_error("the bus cannot be configured");
    }
    configuration.write(QString::fromLatin1(busConfiguration).arg(address()).toUtf8());
    configuration.close();
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + configuration.fileName(),
                    QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                    QStringLiteral("--print-address")});
    // The address is printed once the bus listens.
    if (!m_daemon.waitForReadyRead(patience)) {
        throw std::runtime_error("no bus: " + m_daemon.readAllStandardError().toStdString());
    }
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished(patience);
    QFile::remove(m_folder.filePath(QStringLiteral("bus")));
}

Client::Client()
    : m_name(QUuid::createUuid().toString())
    , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name))
{
}

Client::~Client()
{
    m_bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(m_name);
}

QDBusMessage Client::call(const QString &service, const QString &path, const QString &interface,
                          const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    QDBusPendingCallWatcher pending(m_bus.asyncCall(message, patience));
    waitFor([&pending] { return pending.isFinished(); });
    return pending.reply();
}

FakeWatcher::FakeWatcher(bool host)
    : m_host(host)
{
    m_client.bus().registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                                  QDBusConnection::ExportAllContents);
    m_client.bus().registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
}

FakeWatcher::~FakeWatcher()
{
    m_client.bus().unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
}

void FakeWatcher::setHost(bool host)
{
    m_host = host;
    if (host) {
        Q_EMIT StatusNotifierHostRegistered();
    } else {
        Q_EMIT StatusNotifierHostUnregistered();
    }
}

SignalLog::SignalLog(Client &client, const QString &path, const QString &interface,
                     const QStringList &names)
{
    for (const QString &name : names) {
        client.bus().connect(QString(), path, interface, name, this, SLOT(received(QDBusMessage)));
    }
}

void SignalLog::received(const QDBusMessage &message)
{
    m_seen.append(message.member());
    m_lastArguments = message.arguments();
}

} // namespace pulsebar::testing
