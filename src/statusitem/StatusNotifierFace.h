#pragma once

#include "statusitem/FaceChooser.h"
#include "statusitem/MenuExporter.h"
#include "statusitem/MenuIcons.h"
#include "statusitem/StatusNotifierItem.h"

#include <QDBusServiceWatcher>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>

#include <functional>

namespace pulsebar {

class ProcessNames;

/// The item as panels with a StatusNotifierWatcher know it. It has a bus connection of its own,
/// named org.kde.StatusNotifierItem-<pid>-1, follows the watcher as it comes and goes, and comes
/// back after the bus itself was away.
class StatusNotifierFace : public QObject
{
    Q_OBJECT

public:
    /// `names` may be absent: then every host is unknown.
    StatusNotifierFace(const MenuSource &source, ProcessNames *names, QObject *parent = nullptr);
    ~StatusNotifierFace() override;

    /// False only until the bus has said who serves, if anybody does.
    bool settled() const { return m_settled; }
    HostKind host() const;

    /// Offers the item to the watcher, or takes it back.
    void setOffered(bool offered);
    void setState(const NotifierState &state);
    /// The menu is another one altogether, as when the first delegate has come.
    void menuReplaced() { m_exporter.menuReplaced(); }

Q_SIGNALS:
    /// `settled` or `host` changed.
    void hostChanged();
    /// A panel asks the item itself for a menu.
    void menuRequested();
    /// A panel shows the exported menu.
    void menuOpened();

private Q_SLOTS:
    void busLost();
    void hostsChanged();

private:
    void connectToBus();
    void watchForBus();
    void watchHosts();
    void watcherChanged(const QString &owner);
    void askForHosts();
    void settle(HostKind kind, bool hasHost);
    void offer();
    void withdraw();
    void callRegister();
    void withProgramName(const QString &busName, std::function<void(const QString &)> use);
    void answerClick(const QDBusMessage &call);
    QString serviceName() const;

    ProcessNames *m_names;
    MenuIcons m_icons;
    StatusNotifierItem m_item;
    MenuExporter m_exporter;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    std::unique_ptr<QFileSystemWatcher> m_busFolder;
    QDBusConnection m_bus;
    QString m_watcherOwner;
    HostKind m_kind = HostKind::None;
    bool m_hasHost = false;
    bool m_settled = false;
    bool m_offered = false;
    bool m_registered = false;
};

} // namespace pulsebar
