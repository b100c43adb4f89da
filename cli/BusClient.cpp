#include "BusClient.h"

#include "JsonText.h"

#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QXmlStreamReader>

namespace pulsebar::cli {

namespace {

const QString &propertiesInterface()
{
    static const QString name = QStringLiteral("org.freedesktop.DBus.Properties");
    return name;
}

} // namespace

BusClient::BusClient()
    : m_connection(QDBusConnection::sessionBus())
{
}

bool BusClient::isRunning() const
{
    return m_connection.isConnected() && m_connection.interface()->isServiceRegistered(kService);
}

Answer BusClient::call(const QString &interface, const QString &method,
                       const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    const QDBusMessage reply = m_connection.call(message);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return {{}, QDBusError(reply)};
    return {reply.arguments().isEmpty() ? QVariant() : plainValue(reply.arguments().constFirst()),
            {}};
}

Answer BusClient::get(const QString &interface, const QString &property) const
{
    return call(propertiesInterface(), QStringLiteral("Get"), {interface, property});
}

Answer BusClient::set(const QString &interface, const QString &property,
                      const QVariant &value) const
{
    return call(propertiesInterface(), QStringLiteral("Set"),
                {interface, property, QVariant::fromValue(QDBusVariant(value))});
}

Answer BusClient::callControl(const QString &method, const QVariantList &arguments) const
{
    return call(kControl, method, arguments);
}

std::optional<DeclaredProperty> BusClient::findProperty(const QString &name) const
{
    const Answer xml = call(QStringLiteral("org.freedesktop.DBus.Introspectable"),
                            QStringLiteral("Introspect"), {});
    return propertyInXml(xml.value.toString(), name);
}

std::optional<DeclaredProperty> propertyInXml(const QString &xml, const QString &name)
{
    QXmlStreamReader reader(xml);
    QString interface;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("interface"))
            interface = attributes.value(QLatin1String("name")).toString();
        const bool isOurs = interface.startsWith(BusClient::kService);
        if (isOurs && reader.name() == QLatin1String("property") &&
            attributes.value(QLatin1String("name")) == name)
            return DeclaredProperty{interface, name,
                                    attributes.value(QLatin1String("type")).toString()};
    }
    return std::nullopt;
}

} // namespace pulsebar::cli
