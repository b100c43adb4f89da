#include "statusitem/DesktopShade.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace pulsebar {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

/// The value of a variant, through any number of variants around it (old portals send two).
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

} // namespace

void DesktopShade::PaletteListener::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Q_EMIT m_shade.changed();
    }
}

DesktopShade::DesktopShade(QObject *parent)
    : QObject(parent)
    , m_palette(*this)
{
    askPortal();
}

void DesktopShade::askPortal()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"),
                this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface,
                                                       QStringLiteral("Read"));
    call.setArguments({appearance, colorScheme});
    // A desktop that follows a preference runs its portal already.
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
        pending->deleteLater();
        if (!pending->isError()) {
            setScheme(pending->reply().arguments().value(0));
        }
    });
}

void DesktopShade::settingChanged(const QString &group, const QString &key,
                                  const QDBusVariant &value)
{
    if (group == appearance && key == colorScheme) {
        setScheme(value.variant());
    }
}

void DesktopShade::setScheme(const QVariant &value)
{
    constexpr uint preferDark = 1;
    constexpr uint preferLight = 2;
    const uint scheme = unwrapped(value).toUInt();
    std::optional<bool> said;
    if (scheme == preferDark || scheme == preferLight) {
        said = scheme == preferDark;
    }
    if (said != m_said) {
        m_said = said;
        Q_EMIT changed();
    }
}

bool DesktopShade::dark() const
{
    const QPalette palette = QGuiApplication::palette();
    return m_said.value_or(palette.color(QPalette::Window).lightness() <
                           palette.color(QPalette::WindowText).lightness());
}

} // namespace pulsebar
