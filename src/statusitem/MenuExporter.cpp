#include "statusitem/MenuExporter.h"

#include "dbusmenuadaptor.h"

#include <QDBusMessage>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(log, "pulsebar.menu", QtInfoMsg)

QVariantMap onlyNamed(const QVariantMap &all, const QStringList &names)
{
    if (names.isEmpty()) {
        return all;
    }
    QVariantMap chosen;
    for (const QString &name : names) {
        const auto found = all.constFind(name);
        if (found != all.constEnd()) {
            chosen.insert(name, *found);
        }
    }
    return chosen;
}

} // namespace

MenuExporter::MenuExporter(const MenuSource &source, QObject *parent)
    : QObject(parent)
    , m_source(source)
{
    registerDBusTypes();
    new DBusMenuAdaptor(this);
    m_showers.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_showers, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString &name) {
                m_openAt.remove(name);
                m_showers.removeWatchedService(name);
            });
}

void MenuExporter::setIconProperties(MenuIconProperties iconProperties)
{
    m_iconProperties = std::move(iconProperties);
}

void MenuExporter::setKeyboard(std::function<Qt::KeyboardModifiers()> modifiers)
{
    m_keyboard = std::move(modifiers);
}

bool MenuExporter::registerOn(QDBusConnection connection, const QString &path)
{
    m_openAt.clear();
    m_showers.setWatchedServices({});
    m_showers.setConnection(connection);
    m_builds.add(m_source.build());
    m_announced = m_builds.revision();
    return connection.registerObject(path, this, QDBusConnection::ExportAdaptors);
}

void MenuExporter::menuReplaced()
{
    if (m_builds.revision() > 0 && m_openAt.isEmpty()) {
        m_builds.add(m_source.build());
        announceLayout();
    }
}

/// Builds that a panel learned of by the answer to "AboutToShow" are made up for here: another
/// panel may know none of them.
void MenuExporter::announceLayout()
{
    if (std::exchange(m_announced, m_builds.revision()) != m_builds.revision()) {
        Q_EMIT LayoutUpdated(m_builds.revision(), 0);
    }
}

QString MenuExporter::textDirection() const
{
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

QVariantMap MenuExporter::propertiesOf(const NumberedMenu &build, int id,
                                       const QStringList &names) const
{
    const MenuItem *item = build.item(id);
    if (!item) {
        return onlyNamed({{QStringLiteral("children-display"), QStringLiteral("submenu")}}, names);
    }
    return onlyNamed(menuRowProperties(*item, m_iconProperties), names);
}

MenuLayoutNode MenuExporter::layoutOf(const NumberedMenu &build, int id, int depth,
                                      const QStringList &names) const
{
    MenuLayoutNode node{id, propertiesOf(build, id, names), {}};
    if (depth == 0) {
        return node;
    }
    const QVector<int> children = build.children(id);
    for (const int child : children) {
        node.children.append(layoutOf(build, child, depth < 0 ? depth : depth - 1, names));
    }
    return node;
}

uint MenuExporter::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                             MenuLayoutNode &layout)
{
    const NumberedMenu *build = m_builds.buildOf(parentId);
    if (build) {
        layout = layoutOf(*build, parentId, recursionDepth, propertyNames);
    } else {
        refuse(parentId);
    }
    return m_builds.revision();
}

MenuItemPropertiesList MenuExporter::GetGroupProperties(const QList<int> &ids,
                                                        const QStringList &propertyNames)
{
    MenuItemPropertiesList list;
    for (const int id : ids) {
        if (const NumberedMenu *build = m_builds.buildOf(id)) {
            list.append({id, propertiesOf(*build, id, propertyNames)});
        }
    }
    return list;
}

QDBusVariant MenuExporter::GetProperty(int id, const QString &name)
{
    const NumberedMenu *build = m_builds.buildOf(id);
    const QVariant value = build ? propertiesOf(*build, id, {}).value(name) : QVariant();
    if (!value.isValid()) {
        refuse(id);
        return QDBusVariant(QString());
    }
    return QDBusVariant(value);
}

void MenuExporter::Event(int id, const QString &eventId, const QDBusVariant & /*data*/,
                         uint /*timestamp*/)
{
    if (!handleEvent(id, eventId)) {
        refuse(id);
    }
}

QList<int> MenuExporter::EventGroup(const MenuEventList &events)
{
    QList<int> unknown;
    for (const MenuEvent &event : events) {
        if (!handleEvent(event.id, event.eventId)) {
            unknown.append(event.id);
        }
    }
    if (!events.isEmpty() && unknown.size() == events.size()) {
        refuse(unknown.first());
    }
    return unknown;
}

bool MenuExporter::handleEvent(int id, const QString &eventId)
{
    if (!m_builds.buildOf(id)) {
        qCDebug(log) << "event" << eventId << "for a row that is gone:" << id;
        return false;
    }
    if (eventId == u"clicked" || eventId == u"opened") {
        Q_EMIT menuOpened();
    }
    if (eventId == u"clicked") {
        click(id);
    } else if (id == 0 && (eventId == u"opened" || eventId == u"closed")) {
        setOpen(eventId == u"opened");
    }
    return true;
}

void MenuExporter::click(int id)
{
    const NumberedMenu *build = m_builds.buildOf(id);
    const MenuItem *item = build ? build->item(id) : nullptr;
    if (!item) {
        return;
    }
    const Qt::KeyboardModifiers held = m_keyboard ? m_keyboard() : Qt::KeyboardModifiers();
    // After the answer: an action may ask the user something, and the panel would wait for us.
    QMetaObject::invokeMethod(
        this,
        [this, holder = *build->holder(id), chosen = *item, held] {
            m_source.perform(holder, chosen, held);
        },
        Qt::QueuedConnection);
}

QString MenuExporter::caller() const
{
    return calledFromDBus() ? message().service() : QString();
}

void MenuExporter::setOpen(bool open)
{
    const QString name = caller();
    if (open && !m_openAt.contains(name)) {
        m_openAt.insert(name);
        m_showers.addWatchedService(name);
    } else if (!open && m_openAt.remove(name)) {
        m_showers.removeWatchedService(name);
    }
}

bool MenuExporter::openElsewhere() const
{
    return m_openAt.size() > (m_openAt.contains(caller()) ? 1 : 0);
}

bool MenuExporter::AboutToShow(int id)
{
    if (id == 0) {
        m_builds.add(m_source.build());
        return true;
    }
    if (!m_builds.buildOf(id)) {
        refuse(id);
    }
    return false;
}

QList<int> MenuExporter::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    for (const int id : ids) {
        if (!m_builds.buildOf(id)) {
            idErrors.append(id);
        }
    }
    if (!ids.contains(0)) {
        return {};
    }
    // Whoever asks in a group need not tell of the opening; nobody asks so without one.
    Q_EMIT menuOpened();
    m_builds.add(m_source.build());
    if (!openElsewhere()) {
        announceLayout();
    }
    return {0};
}

void MenuExporter::refuse(int id)
{
    if (calledFromDBus()) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no such menu row: %1").arg(id));
    }
}

} // namespace pulsebar
