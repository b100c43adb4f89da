#pragma once

#include "statusitem/DBusTypes.h"
#include "statusitem/MenuRowProperties.h"
#include "statusitem/MenuSource.h"
#include "statusitem/NumberedMenu.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>

#include <functional>

namespace pulsebar {

/// Shows the menu to panels over D-Bus (com.canonical.dbusmenu, version 3).
///
/// Panels differ on when they read the menu again, and some close an open menu whose layout
/// changes. So: asking about one menu ("AboutToShow") builds it and says so in the answer only;
/// asking in a group builds it and signals "LayoutUpdated", which one client library needs, unless
/// nothing has changed since the last signal. A submenu stands complete with its root and is never
/// built by itself. Between two openings nothing is built or sent: an open menu stays still, and so
/// no row's properties change without a new layout ("ItemsPropertiesUpdated" is never due).
class MenuExporter : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// `source` must outlive the exporter.
    explicit MenuExporter(const MenuSource &source, QObject *parent = nullptr);

    void setIconProperties(MenuIconProperties iconProperties);
    /// Asked at a click, for panels do not tell which keys were held.
    void setKeyboard(std::function<Qt::KeyboardModifiers()> modifiers);

    /// Puts the menu on the bus, built, for some panels read it at once.
    bool registerOn(QDBusConnection connection, const QString &path);

    /// The menu is another one altogether; panels that have read it are told, unless it is open.
    void menuReplaced();

    /// The protocol's properties and methods.
    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                   MenuLayoutNode &layout);
    MenuItemPropertiesList GetGroupProperties(const QList<int> &ids,
                                              const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const MenuEventList &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parent);
    void ItemsPropertiesUpdated(const pulsebar::MenuItemPropertiesList &updated,
                                const pulsebar::MenuItemKeysList &removed);
    void ItemActivationRequested(int id, uint timestamp);
    /// Not of the protocol: the user has the menu before him. Said anew at a click, for not every
    /// panel tells of openings.
    void menuOpened();

private:
    bool handleEvent(int id, const QString &eventId);
    void click(int id);
    void setOpen(bool open);
    bool openElsewhere() const;
    void announceLayout();
    QString caller() const;
    void refuse(int id);
    MenuLayoutNode layoutOf(const NumberedMenu &build, int id, int depth,
                            const QStringList &names) const;
    QVariantMap propertiesOf(const NumberedMenu &build, int id, const QStringList &names) const;

    const MenuSource &m_source;
    MenuIconProperties m_iconProperties;
    std::function<Qt::KeyboardModifiers()> m_keyboard;
    MenuBuilds m_builds;
    /// The revision that panels were last told of, or could read when they met the menu.
    quint32 m_announced = 0;
    QDBusServiceWatcher m_showers;
    QSet<QString> m_openAt;
};

} // namespace pulsebar
