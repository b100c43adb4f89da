#include "app/SessionBus.h"

#include "controller/Scripting.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace pulsebar {

NameClaim claimName(QDBusConnection &bus, const QString &name)
{
    if (!bus.isConnected())
        return NameClaim::NoBus;
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus.interface()->registerService(name, QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return NameClaim::NoBus;
    return reply.value() == QDBusConnectionInterface::ServiceRegistered ? NameClaim::Ours
                                                                        : NameClaim::AnotherRuns;
}

bool askRunningProgram(const QDBusConnection &bus)
{
    static constexpr int kPatience = 5000; // milliseconds
    QDBusMessage message = QDBusMessage::createMethodCall(
        Scripting::kService, Scripting::kPath, Scripting::kControl, QStringLiteral("openMenu"));
    message.setAutoStartService(false);
    return bus.call(message, QDBus::Block, kPatience).type() == QDBusMessage::ReplyMessage;
}

} // namespace pulsebar
