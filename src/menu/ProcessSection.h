#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace pulsebar {

/// What the row of a process is built from, beside its entry in the list. A lookup that is not set
/// finds nothing. Process numbers are texts, as the list has them.
struct ProcessMenuState
{
    bool showIcon = false;
    bool monitorProcessUsage = false;
    /// Name of a themed icon or path of an image; empty when there is none (yet).
    std::function<QString(const QString &pid)> iconForPID;
    /// Where the program is; empty when that is not known (yet).
    std::function<QString(const QString &pid)> pathForPID;
    /// The record of a process key, as TopMonitor answers it.
    std::function<std::optional<QVariantMap>(const QString &key)> usageInfoDictForKey;
    /// Keeps hold of the listed process for as long as its row exists. Null when it has ended.
    std::function<std::shared_ptr<HeldProcess>(const QString &pid)> hold;
};

/// One process with its details and what can be done to it.
///
/// The submenu's title is the process's graph key, "CPUUsage__" and the process key ("412//name",
/// or the name alone for an entry without a number).
/// @param process an entry of "ProcessList"
MenuItem processMenuItemForDictionary(const QVariantMap &process, const ProcessMenuState &state);

} // namespace pulsebar
