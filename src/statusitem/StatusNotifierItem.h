#pragma once

#include "statusitem/NotifierPixmaps.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>
#include <optional>

namespace pulsebar {

/// What a panel can read of the item.
struct NotifierState
{
    /// Never empty: panels list their items by it.
    QString title;
    /// The text a panel draws; without it the two label properties do not exist.
    std::optional<QString> label;
    QString labelGuide;
    /// Empty where the pixmaps are to be drawn.
    QString iconName;
    PixmapContent pixmaps;
    /// The icon is to be noticed, and drawn so.
    bool attention = false;
    /// "Passive" steps back for another face.
    bool passive = false;
};

/// The object that panels read: org.kde.StatusNotifierItem. It answers the bus by itself because
/// two of its properties come and go, which no generated adaptor can do.
class StatusNotifierItem : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit StatusNotifierItem(QObject *parent = nullptr);

    static QString objectPath() { return QStringLiteral("/StatusNotifierItem"); }
    static QString menuPath() { return QStringLiteral("/MenuBar"); }

    bool registerOn(const QDBusConnection &connection);
    /// Nothing is sent while unregistered.
    void unregister();

    /// Tells the panels what differs from before.
    void setState(const NotifierState &state);
    const NotifierState &state() const { return m_state; }

    /// Called with "Activate" and "ContextMenu" calls; the callee answers them.
    void setClickHandler(std::function<void(const QDBusMessage &call)> handler);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    bool answerProperties(const QDBusMessage &message, const QDBusConnection &connection);
    bool answerMethod(const QDBusMessage &message, const QDBusConnection &connection);
    QVariant property(const QString &name) const;
    QVariantMap allProperties() const;
    const ItemPixmapList &pixmaps() const;
    void send(const QString &signal, const QVariantList &arguments = {}) const;

    std::optional<QDBusConnection> m_connection;
    NotifierState m_state;
    std::function<void(const QDBusMessage &)> m_clickHandler;
    // Drawn when a panel asks: most never do, or only for what they show.
    mutable std::optional<PixmapContent> m_renderedFor;
    mutable ItemPixmapList m_rendered;
};

} // namespace pulsebar
