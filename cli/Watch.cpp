#include "Watch.h"

#include "ExitStatus.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QDateTime>

#include <cstdio>

namespace pulsebar::cli {

namespace {

bool print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

} // namespace

Watch::Watch(const BusClient &client, WatchFormat &format)
    : m_client(client)
    , m_format(format)
{
}

bool Watch::start()
{
    auto *watcher = new QDBusServiceWatcher(BusClient::kService, m_client.connection(),
                                            QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Watch::stopWatching);
    QDBusConnection bus = m_client.connection();
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(stopWatching()));
    return bus.connect(BusClient::kService, BusClient::kPath, BusClient::kControl,
                       QStringLiteral("topDictChanged"), this, SLOT(printSample())) &&
           print(m_format.header());
}

void Watch::stopWatching()
{
    reportNotRunning();
    QCoreApplication::exit(kNotRunning);
}

void Watch::printSample()
{
    WatchSample sample;
    const Answer title = m_client.get(BusClient::kControl, QStringLiteral("title"));
    if (title.failed())
        return; // it is going away; the loss of its name follows
    sample.title = title.value.toString();
    sample.time = QDateTime::currentMSecsSinceEpoch();
    if (m_format.needsLoad()) {
        const Answer load = m_client.get(QStringLiteral("org.pulsebar.Pulsebar.Scripting1"),
                                         QStringLiteral("CPUTotalUsage"));
        if (!load.failed())
            sample.load = load.value.toDouble();
    }
    if (!print(m_format.line(sample) + u'\n'))
        QCoreApplication::exit(kDone);
}

} // namespace pulsebar::cli
