#include "statusitem/StatusNotifierItem.h"

#include "StatusNotifierItemXml.h"

#include <QDBusObjectPath>

#include <array>
#include <utility>

namespace pulsebar {

namespace {

constexpr QLatin1String itemInterface("org.kde.StatusNotifierItem");
constexpr QLatin1String propertiesInterface("org.freedesktop.DBus.Properties");

constexpr std::array propertyNames{
    "Category",
    "Id",
    "Title",
    "Status",
    "WindowId",
    "IconThemePath",
    "IconName",
    "IconPixmap",
    "OverlayIconName",
    "OverlayIconPixmap",
    "AttentionIconName",
    "AttentionIconPixmap",
    "AttentionMovieName",
    "ToolTip",
    "ItemIsMenu",
    "Menu",
    "XAyatanaLabel",
    "XAyatanaLabelGuide",
    "XAyatanaOrderingIndex",
};

QString statusOf(const NotifierState &state)
{
    if (state.passive) {
        return QStringLiteral("Passive");
    }
    return state.attention ? QStringLiteral("NeedsAttention") : QStringLiteral("Active");
}

/// What stays the same as long as the item lives; invalid for other names.
QVariant constantProperty(const QString &name)
{
    if (name == u"Category") {
        return QStringLiteral("SystemServices");
    }
    if (name == u"Id") {
        return QStringLiteral("pulsebar");
    }
    if (name == u"WindowId") {
        return 0;
    }
    if (name == u"ItemIsMenu") {
        return true;
    }
    if (name == u"Menu") {
        return QVariant::fromValue(QDBusObjectPath(StatusNotifierItem::menuPath()));
    }
    if (name == u"XAyatanaOrderingIndex") {
        return 0U;
    }
    if (name == u"OverlayIconPixmap") {
        return QVariant::fromValue(ItemPixmapList());
    }
    if (name == u"IconThemePath" || name == u"OverlayIconName" || name == u"AttentionMovieName") {
        return QString();
    }
    return {};
}

} // namespace

StatusNotifierItem::StatusNotifierItem(QObject *parent)
    : QDBusVirtualObject(parent)
{
    registerDBusTypes();
}

bool StatusNotifierItem::registerOn(const QDBusConnection &connection)
{
    m_connection = connection;
    return m_connection->registerVirtualObject(objectPath(), this);
}

void StatusNotifierItem::unregister()
{
    if (m_connection) {
        m_connection->unregisterObject(objectPath());
    }
    m_connection.reset();
}

void StatusNotifierItem::setClickHandler(std::function<void(const QDBusMessage &)> handler)
{
    m_clickHandler = std::move(handler);
}

void StatusNotifierItem::setState(const NotifierState &state)
{
    const NotifierState before = std::exchange(m_state, state);
    if (before.title != state.title) {
        send(QStringLiteral("NewTitle"));
        send(QStringLiteral("NewToolTip"));
    }
    if (before.iconName != state.iconName || before.pixmaps != state.pixmaps) {
        send(QStringLiteral("NewIcon"));
        if (before.attention || state.attention) {
            send(QStringLiteral("NewAttentionIcon"));
        }
    }
    if (before.label != state.label || before.labelGuide != state.labelGuide) {
        send(QStringLiteral("XAyatanaNewLabel"),
             {state.label.value_or(QString()), state.label ? state.labelGuide : QString()});
    }
    if (statusOf(before) != statusOf(state)) {
        send(QStringLiteral("NewStatus"), {statusOf(state)});
    }
}

void StatusNotifierItem::send(const QString &signal, const QVariantList &arguments) const
{
    if (!m_connection) {
        return;
    }
    QDBusMessage message = QDBusMessage::createSignal(objectPath(), itemInterface, signal);
    message.setArguments(arguments);
    m_connection->send(message);
}

const ItemPixmapList &StatusNotifierItem::pixmaps() const
{
    if (m_renderedFor != m_state.pixmaps) {
        m_rendered = renderPixmaps(m_state.pixmaps);
        m_renderedFor = m_state.pixmaps;
    }
    return m_rendered;
}

QVariant StatusNotifierItem::property(const QString &name) const
{
    if (name == u"Title") {
        return m_state.title;
    }
    if (name == u"Status") {
        return statusOf(m_state);
    }
    if (name == u"IconName") {
        return m_state.iconName;
    }
    if (name == u"IconPixmap") {
        return QVariant::fromValue(m_state.iconName.isEmpty() ? pixmaps() : ItemPixmapList());
    }
    // Panels that know of no attention draw the usual icon, so that is the one to be noticed; those
    // that do get the same.
    if (name == u"AttentionIconName") {
        return m_state.attention ? m_state.iconName : QString();
    }
    if (name == u"AttentionIconPixmap") {
        return QVariant::fromValue(
            m_state.attention && m_state.iconName.isEmpty() ? pixmaps() : ItemPixmapList());
    }
    if (name == u"ToolTip") {
        return QVariant::fromValue(ItemToolTip{{}, {}, m_state.title, {}});
    }
    if (name == u"XAyatanaLabel" || name == u"XAyatanaLabelGuide") {
        if (!m_state.label) {
            return {};
        }
        return name == u"XAyatanaLabel" ? *m_state.label : m_state.labelGuide;
    }
    return constantProperty(name);
}

QVariantMap StatusNotifierItem::allProperties() const
{
    QVariantMap all;
    for (const char *name : propertyNames) {
        const QString key = QString::fromLatin1(name);
        const QVariant value = property(key);
        if (value.isValid()) {
            all.insert(key, value);
        }
    }
    return all;
}

QString StatusNotifierItem::introspect(const QString &path) const
{
    return path == objectPath() ? QString::fromUtf8(statusNotifierItemXml) : QString();
}

bool StatusNotifierItem::handleMessage(const QDBusMessage &message,
                                       const QDBusConnection &connection)
{
    if (message.interface() == propertiesInterface) {
        return answerProperties(message, connection);
    }
    if (message.interface().isEmpty() || message.interface() == itemInterface) {
        return answerMethod(message, connection);
    }
    return false;
}

bool StatusNotifierItem::answerProperties(const QDBusMessage &message,
                                          const QDBusConnection &connection)
{
    const QString interface = message.arguments().value(0).toString();
    if (!interface.isEmpty() && interface != itemInterface) {
        return connection.send(message.createErrorReply(
            QDBusError::UnknownInterface, QStringLiteral("no such interface: %1").arg(interface)));
    }
    if (message.member() == u"GetAll" && message.signature() == u"s") {
        return connection.send(message.createReply(QVariant(allProperties())));
    }
    if (message.member() == u"Get" && message.signature() == u"ss") {
        const QString name = message.arguments().at(1).toString();
        const QVariant value = property(name);
        return connection.send(
            value.isValid()
                ? message.createReply(QVariant::fromValue(QDBusVariant(value)))
                : message.createErrorReply(QDBusError::UnknownProperty,
                                           QStringLiteral("no such property: %1").arg(name)));
    }
    if (message.member() == u"Set" && message.signature() == u"ssv") {
        return connection.send(message.createErrorReply(
            QDBusError::PropertyReadOnly, QStringLiteral("the item's properties are read-only")));
    }
    return false;
}

bool StatusNotifierItem::answerMethod(const QDBusMessage &message,
                                      const QDBusConnection &connection)
{
    const QString member = message.member();
    const QString signature = message.signature();
    if ((member == u"Activate" || member == u"ContextMenu") && signature == u"ii") {
        if (m_clickHandler) {
            m_clickHandler(message);
            return true;
        }
        return connection.send(message.createReply());
    }
    const bool accepted = (member == u"SecondaryActivate" && signature == u"ii") ||
                          (member == u"Scroll" && signature == u"is") ||
                          (member == u"ProvideXdgActivationToken" && signature == u"s") ||
                          (member == u"XAyatanaSecondaryActivate" && signature == u"u");
    return accepted && connection.send(message.createReply());
}

} // namespace pulsebar
