#pragma once

#include "engine/UsageCache.h"

#include <functional>
#include <memory>
#include <optional>

class QString;

namespace pulsebar {

/// One open graph, as the registry of open graphs sees it.
class GraphWindow
{
public:
    virtual ~GraphWindow() = default;

    /// Makes the window, the first time. It is shown shortly after.
    virtual void window() = 0;
    /// Takes the window off the screen; it goes on being fed.
    virtual void orderOut() = 0;
    virtual void orderFront() = 0;
    /// The newest samples, oldest first; absent when the series has none.
    virtual void setUsageCacheArray(const std::optional<UsageCache> &array) = 0;
    /// Closes the window and stores its settings.
    virtual void close() = 0;
    /// Stores the settings as close() does; the window stays open.
    virtual void storeSetting() = 0;
};

/// Makes the graph of a key.
using GraphWindowFactory = std::function<std::unique_ptr<GraphWindow>(const QString &key)>;

} // namespace pulsebar
