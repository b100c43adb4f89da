#pragma once

#include "controller/BusObject.h"

namespace pulsebar {

class GraphWindows;

/// The graph windows as scripts reach them.
/// @param windows null: there are none, and none can be shown
BusProperty graphWindowKeysProperty(const QString &interface, GraphWindows *windows);
QVector<BusMethod> graphWindowMethods(const QString &interface, GraphWindows *windows);

} // namespace pulsebar
