#pragma once

#include "menu/Menu.h"

#include <QString>
#include <QVector>

namespace pulsebar {

/// An alert as the menu lists it.
struct AlertRow
{
    QString id; ///< carried by its rows: a menu that was built earlier acts on no other alert
    QString title;
    bool enabled = true;
};

struct AlertMenuState
{
    QVector<AlertRow> alerts;
    bool mayAdd = true; ///< false while there are as many as can be
};

/// The "Alerts" item: each alert with its check mark ("switchAlert"), "Add Alert…" ("addAlert"),
/// and the submenus "Edit…" ("editAlert") and "Remove" ("removeAlert") of all alerts, which cannot
/// be opened while there are none. The rows carry the alert's id.
MenuItem makeAlertsMenu(const AlertMenuState &state);

} // namespace pulsebar
