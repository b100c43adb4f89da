#include "controller/BusObject.h"

#include <QDBusVariant>
#include <QVariantMap>

namespace pulsebar {

namespace {

const QString &propertiesInterface()
{
    static const QString name = QStringLiteral("org.freedesktop.DBus.Properties");
    return name;
}

QString busErrorName(const char *name)
{
    return QStringLiteral("org.freedesktop.DBus.Error.") + QLatin1String(name);
}

QDBusMessage errorReply(const QDBusMessage &message, const BusError &error)
{
    return message.createErrorReply(error.name, error.text);
}

QDBusMessage unknownMember(const QDBusMessage &message, const char *error, const QString &member)
{
    return errorReply(message,
                      {busErrorName(error), QStringLiteral("There is no %1 here").arg(member)});
}

} // namespace

BusObject::BusObject(QString path, QString interfaces, QObject *parent)
    : QDBusVirtualObject(parent)
    , m_path(std::move(path))
    , m_interfaces(std::move(interfaces))
{
}

bool BusObject::registerOn(QDBusConnection &connection)
{
    if (!connection.registerVirtualObject(m_path, this))
        return false;
    m_connection = connection;
    return true;
}

void BusObject::emitSignal(const QString &interface, const QString &name,
                           const QVariantList &arguments)
{
    if (!m_connection)
        return;
    QDBusMessage signal = QDBusMessage::createSignal(m_path, interface, name);
    signal.setArguments(arguments);
    m_connection->send(signal);
}

void BusObject::emitPropertyChanged(const QString &interface, const QString &name)
{
    const BusProperty *property = findProperty(interface, name);
    if (property == nullptr)
        return;
    const BusResult value = property->read();
    if (const auto *changed = std::get_if<QVariant>(&value))
        emitSignal(propertiesInterface(), QStringLiteral("PropertiesChanged"),
                   {interface, QVariantMap{{name, *changed}}, QStringList()});
}

QString BusObject::introspect(const QString & /*path*/) const
{
    return m_interfaces;
}

bool BusObject::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    // What remains is QtDBus's own: introspection, and the peer interface.
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable"))
        return false;
    const QDBusMessage reply = answer(message);
    if (message.isReplyRequired())
        connection.send(reply);
    return true;
}

QDBusMessage BusObject::answer(const QDBusMessage &message) const
{
    if (message.interface() == propertiesInterface())
        return answerProperties(message);
    for (const BusMethod &method : m_methods) {
        const bool isMeant =
            method.name == message.member() &&
            (message.interface().isEmpty() || method.interface == message.interface());
        if (!isMeant)
            continue;
        if (message.signature() != method.signature)
            return errorReply(message,
                              {busErrorName("InvalidArgs"),
                               QStringLiteral("%1 takes (%2)").arg(method.name, method.signature)});
        const BusResult result = method.call(message.arguments());
        if (const auto *error = std::get_if<BusError>(&result))
            return errorReply(message, *error);
        const QVariant &value = std::get<QVariant>(result);
        return value.isValid() ? message.createReply(value) : message.createReply();
    }
    return knowsInterface(message.interface()) || message.interface().isEmpty()
               ? unknownMember(message, "UnknownMethod", message.member())
               : unknownMember(message, "UnknownInterface", message.interface());
}

QDBusMessage BusObject::answerProperties(const QDBusMessage &message) const
{
    const bool knowsIt = knowsInterface(message.arguments().value(0).toString());
    if (message.member() == QLatin1String("Get") && message.signature() == QLatin1String("ss"))
        return answerGet(message);
    if (message.member() == QLatin1String("Set") && message.signature() == QLatin1String("ssv"))
        return answerSet(message);
    if (message.member() == QLatin1String("GetAll") && message.signature() == QLatin1String("s"))
        return knowsIt ? answerGetAll(message)
                       : unknownMember(message, "UnknownInterface",
                                       message.arguments().value(0).toString());
    return unknownMember(message, "UnknownMethod", message.member());
}

QDBusMessage BusObject::answerGet(const QDBusMessage &message) const
{
    const QString name = message.arguments().at(1).toString();
    const BusProperty *property = findProperty(message.arguments().at(0).toString(), name);
    if (property == nullptr)
        return unknownMember(message, "UnknownProperty", name);
    const BusResult result = property->read();
    if (const auto *error = std::get_if<BusError>(&result))
        return errorReply(message, *error);
    return message.createReply(QVariant::fromValue(QDBusVariant(std::get<QVariant>(result))));
}

QDBusMessage BusObject::answerGetAll(const QDBusMessage &message) const
{
    const QString interface = message.arguments().at(0).toString();
    QVariantMap all;
    for (const BusProperty &property : m_properties) {
        if (property.interface != interface)
            continue;
        const BusResult result = property.read();
        if (const auto *value = std::get_if<QVariant>(&result))
            all.insert(property.name, *value);
    }
    return message.createReply(all);
}

QDBusMessage BusObject::answerSet(const QDBusMessage &message) const
{
    const QString name = message.arguments().at(1).toString();
    const BusProperty *property = findProperty(message.arguments().at(0).toString(), name);
    if (property == nullptr)
        return unknownMember(message, "UnknownProperty", name);
    if (!property->write)
        return errorReply(message, {busErrorName("PropertyReadOnly"),
                                    QStringLiteral("%1 cannot be set").arg(name)});
    const auto value = qvariant_cast<QDBusVariant>(message.arguments().at(2)).variant();
    const std::optional<BusError> error = property->write(value);
    return error ? errorReply(message, *error) : message.createReply();
}

const BusProperty *BusObject::findProperty(const QString &interface, const QString &name) const
{
    for (const BusProperty &property : m_properties) {
        const bool isMeant = interface.isEmpty() || property.interface == interface;
        if (isMeant && property.name == name)
            return &property;
    }
    return nullptr;
}

bool BusObject::knowsInterface(const QString &interface) const
{
    for (const BusProperty &property : m_properties) {
        if (property.interface == interface)
            return true;
    }
    return false;
}

} // namespace pulsebar
