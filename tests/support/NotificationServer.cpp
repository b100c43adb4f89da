#include "support/NotificationServer.h"

#include <stdexcept>
#include <utility>

namespace pulsebar::testing {

namespace {
const QString kName = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
// Why a notification was closed, in the protocol's numbers.
constexpr uint kDismissed = 2;
constexpr uint kClosedByCall = 3;
} // namespace

NotificationServer::NotificationServer(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    if (!m_bus.registerObject(kPath, this, QDBusConnection::ExportScriptableContents) ||
        !m_bus.registerService(kName))
        throw std::runtime_error("the bus has a notification server already");
}

NotificationServer::~NotificationServer()
{
    m_bus.unregisterService(kName);
    m_bus.unregisterObject(kPath);
}

void NotificationServer::choose(uint id, const QString &action)
{
    Q_EMIT ActionInvoked(id, action);
    dismiss(id);
}

void NotificationServer::dismiss(uint id)
{
    visible.remove(id);
    Q_EMIT NotificationClosed(id, kDismissed);
}

QStringList NotificationServer::GetCapabilities()
{
    ++askedAbilities;
    return abilities;
}

uint NotificationServer::Notify(const QString &program, uint replaces, const QString &icon,
                                const QString &summary, const QString &body,
                                const QStringList &actions, const QVariantMap &hints, int timeout)
{
    if (refuses) {
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("too many notifications"));
        return 0;
    }
    const uint id = sameNumber.value_or(replaces != 0 ? replaces : ++m_last);
    const ShownNotification shown{id,   replaces, program, icon,   summary,
                                  body, actions,  hints,   timeout};
    all += shown;
    visible.insert(id, shown);
    return id;
}

void NotificationServer::CloseNotification(uint id)
{
    if (visible.remove(id) > 0)
        Q_EMIT NotificationClosed(id, kClosedByCall);
}

} // namespace pulsebar::testing
