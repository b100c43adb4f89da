#include "app/Graphs.h"

#include "graph/GraphWindowController.h"

#include <utility>

namespace pulsebar {

Graphs::Graphs(const Desktop &desktop, Settings &settings, UsageCacheForKey cacheDataForKey,
               SampleTextForKey sampleText)
    : m_sampleText(std::move(sampleText))
    , m_store(settings)
    , m_services(WindowServices::partsOf(desktop))
    , m_registry(
          [this](const QString &key) {
              return std::make_unique<GraphWindowController>(key, parts());
          },
          std::move(cacheDataForKey))
{
}

GraphWindowParts Graphs::parts()
{
    GraphWindowParts parts{m_store};
    parts.windowServices = &m_services;
    parts.screenChanges = &m_screenChanges;
    parts.sampleText = m_sampleText;
    parts.closeGraphViewForKey = [this](const QString &key) {
        m_registry.closeGraphViewForKey(key);
    };
    return parts;
}

} // namespace pulsebar
