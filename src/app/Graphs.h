#pragma once

#include "controller/GraphSettings.h"
#include "controller/GraphWindowRegistry.h"
#include "graph/ScreenChanges.h"
#include "graph/WindowServices.h"

namespace pulsebar {

struct Desktop;
struct GraphWindowParts;
class Settings;

/// The floating graphs, with what they share of the desktop.
class Graphs
{
public:
    /// All that is handed in must outlive it.
    Graphs(const Desktop &desktop, Settings &settings, UsageCacheForKey cacheDataForKey);

    GraphWindows &windows() { return m_registry; }

private:
    GraphWindowParts parts();

    GraphSettings m_store;
    WindowServices m_services;
    ScreenChanges m_screenChanges;
    GraphWindowRegistry m_registry;
};

} // namespace pulsebar
