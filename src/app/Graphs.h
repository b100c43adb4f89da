#pragma once

#include "controller/GraphSettings.h"
#include "controller/GraphWindowRegistry.h"
#include "graph/ScreenChanges.h"
#include "graph/WindowServices.h"

#include <functional>

namespace pulsebar {

struct Desktop;
struct GraphWindowParts;
class Settings;

/// What there is to tell about a sample of a graph's series, counted back from its newest one.
using SampleTextForKey = std::function<QString(const QString &key, std::size_t back)>;

/// The floating graphs, with what they share of the desktop.
class Graphs
{
public:
    /// All that is handed in must outlive it.
    Graphs(const Desktop &desktop, Settings &settings, UsageCacheForKey cacheDataForKey,
           SampleTextForKey sampleText);

    GraphWindows &windows() { return m_registry; }

private:
    GraphWindowParts parts();

    SampleTextForKey m_sampleText;
    GraphSettings m_store;
    WindowServices m_services;
    ScreenChanges m_screenChanges;
    GraphWindowRegistry m_registry;
};

} // namespace pulsebar
