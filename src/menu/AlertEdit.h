#pragma once

#include "menu/AlertRule.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace pulsebar {

/// An alert that the user wants to edit, and what there is to choose from.
struct AlertEdit
{
    QString id; ///< of the alert; empty for one that is to be made
    AlertRule rule;
    QStringList sensors;   ///< names of the temperatures that are measured now
    QStringList processes; ///< names of processes that run now
    bool fahrenheit = false;
};

/// Lets the user edit, and hands over the sound rule that he accepts; nothing where he cancels. Who
/// asks for the same alert again while he edits it sees the same panel.
using EditAlert =
    std::function<void(const AlertEdit &edit, std::function<void(const AlertRule &rule)> accepted)>;

} // namespace pulsebar
