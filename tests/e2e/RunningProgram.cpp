#include "e2e/RunningProgram.h"

#include <QDBusConnectionInterface>
#include <QDBusVariant>

#include <stdexcept>

namespace pulsebar::e2e {

namespace {

const QString kService = QStringLiteral("org.pulsebar.Pulsebar");
const QString kPath = QStringLiteral("/org/pulsebar/Pulsebar");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace

RunningProgram::RunningProgram(Desktop &desktop)
    : m_desktop(desktop)
{
    QDBusConnection &bus = desktop.bus();
    bus.connect(kService, kPath, kControl, QStringLiteral("topDictChanged"), this,
                SLOT(countSample()));
    bus.connect(kService, kPath, kControl, QStringLiteral("hardwareEvent"), this,
                SLOT(keepEvent(QVariantMap)));
    bus.connect(kService, kPath, kProperties, QStringLiteral("PropertiesChanged"), this,
                SLOT(keepChange(QString, QVariantMap, QStringList)));
    m_process = desktop.startProgram();
    if (!waitFor([&bus] { return bus.interface()->isServiceRegistered(kService).value(); }))
        throw std::runtime_error("the program does not come up: " + m_process->log().toStdString());
}

void RunningProgram::keepChange(const QString & /*interface*/, const QVariantMap &changed,
                                const QStringList & /*invalidated*/)
{
    changes += changed;
}

bool RunningProgram::waitForSamples(int count)
{
    const int wanted = samples + count;
    return waitFor([this, wanted] { return samples >= wanted; });
}

Reply RunningProgram::call(const QString &interface, const QString &method,
                           const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_desktop.bus().call(message);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return {{}, reply.errorName()};
    QVariant value = reply.arguments().value(0);
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = qvariant_cast<QDBusVariant>(value).variant();
    return {value, {}};
}

Reply RunningProgram::get(QLatin1String interface, const char *property) const
{
    return call(kProperties, QStringLiteral("Get"),
                {QString(interface), QString::fromLatin1(property)});
}

QString RunningProgram::set(QLatin1String interface, const char *property,
                            const QVariant &value) const
{
    return call(kProperties, QStringLiteral("Set"),
                {QString(interface), QString::fromLatin1(property),
                 QVariant::fromValue(QDBusVariant(value))})
        .error;
}

Reply RunningProgram::control(const char *method, const QVariantList &arguments) const
{
    return call(kControl, QString::fromLatin1(method), arguments);
}

int RunningProgram::quit()
{
    control("quit");
    return m_process->waitForEnd();
}

} // namespace pulsebar::e2e
