#include "menu/AlertMenu.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"

#include <utility>

namespace pulsebar {

namespace {

MenuItem alertItem(const AlertRow &alert, const QString &action)
{
    MenuItem item = actionItem(alert.title, action);
    item.representedObject = alert.id;
    return item;
}

MenuItem alertsItem(const QString &key, const QString &action, const QVector<AlertRow> &alerts)
{
    auto submenu = std::make_shared<Menu>(localizedString(key));
    for (const AlertRow &alert : alerts)
        submenu->addItem(alertItem(alert, action));
    MenuItem item = submenuItem(localizedString(key), std::move(submenu));
    item.enabled = !alerts.isEmpty();
    return item;
}

} // namespace

MenuItem makeAlertsMenu(const AlertMenuState &state)
{
    const QString key = QStringLiteral("Alerts");
    auto submenu = std::make_shared<Menu>(localizedString(key));
    for (const AlertRow &alert : state.alerts) {
        MenuItem item = alertItem(alert, QStringLiteral("switchAlert"));
        item.state = alert.enabled ? ItemState::On : ItemState::Off;
        submenu->addItem(std::move(item));
    }
    if (!state.alerts.isEmpty())
        submenu->addItem(MenuItem::separatorItem());
    MenuItem add =
        actionItem(localizedString(QStringLiteral("Add Alert\u2026")), QStringLiteral("addAlert"));
    add.enabled = state.mayAdd;
    submenu->addItem(std::move(add));
    submenu->addItem(
        alertsItem(QStringLiteral("Edit\u2026"), QStringLiteral("editAlert"), state.alerts));
    submenu->addItem(
        alertsItem(QStringLiteral("Remove"), QStringLiteral("removeAlert"), state.alerts));
    return submenuItem(localizedString(key), std::move(submenu));
}

} // namespace pulsebar
