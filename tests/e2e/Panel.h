#pragma once

#include "e2e/Desktop.h"

#include <QObject>
#include <QStringList>

namespace pulsebar::e2e {

/// Stands for the panel's end of the status notifier protocol: takes every item that is offered.
/// To be made before the program is started, so that the program finds a panel from the first.
class Panel : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost SCRIPTABLE true)

public:
    /// Throws when the bus does not let it be a panel.
    explicit Panel(Desktop &desktop);
    ~Panel() override;

    bool hasHost() const { return true; }
    /// The bus names of the items, in the order in which they were offered.
    QStringList items;

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString &service) { items += service; }

private:
    Desktop &m_desktop;
};

} // namespace pulsebar::e2e
