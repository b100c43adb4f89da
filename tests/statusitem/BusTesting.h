#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace pulsebar::testing {

/// Runs the event loop until the condition holds; false after five seconds.
bool waitFor(const std::function<bool()> &condition);

/// Runs the event loop until everything that is under way on a bus has been handled: a message to
/// and fro on every one of the connections.
void settle(const QList<QDBusConnection> &connections);

/// A session bus of the test's own. Its address is put into the environment; as the bus library
/// reads that once, there is one such bus in a program.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();

    /// The one that runs.
    static PrivateBus &instance();

    void start();
    void stop();
    QString address() const;

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// A connection of its own, as another program has.
class Client
{
public:
    Client();
    ~Client();

    QDBusConnection &bus() { return m_bus; }
    /// Calls while the event loop runs, so that the callee may live in this program.
    QDBusMessage call(const QString &service, const QString &path, const QString &interface,
                      const QString &method, const QVariantList &arguments = {});

private:
    QString m_name;
    QDBusConnection m_bus;
};

/// Takes items as a panel's watcher does.
class FakeWatcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    explicit FakeWatcher(bool host = true);
    ~FakeWatcher() override;

    bool hasHost() const { return m_host; }
    void setHost(bool host);
    QStringList items() const { return m_items; }
    Client &client() { return m_client; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service) { m_items.append(service); }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();

private:
    Client m_client;
    bool m_host;
    QStringList m_items;
};

/// Counts the signals of an interface by their name.
class SignalLog : public QObject
{
    Q_OBJECT

public:
    SignalLog(Client &client, const QString &path, const QString &interface,
              const QStringList &names);
    int count(const QString &name) const { return int(m_seen.count(name)); }
    QVariantList lastArguments() const { return m_lastArguments; }
    void clear() { m_seen.clear(); }

private Q_SLOTS:
    void received(const QDBusMessage &message);

private:
    QStringList m_seen;
    QVariantList m_lastArguments;
};

} // namespace pulsebar::testing
