#pragma once

#include "controller/GraphWindows.h"
#include "graph/GraphWindow.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace pulsebar {

/// The samples behind a graph key, oldest first; absent when the series has none.
using UsageCacheForKey = std::function<std::optional<UsageCache>(const QString &key)>;

/// Owns the open graph windows.
class GraphWindowRegistry : public GraphWindows
{
public:
    GraphWindowRegistry(GraphWindowFactory makeWindow, UsageCacheForKey cacheDataForKey);
    ~GraphWindowRegistry() override;

    /// A new window has its samples at once.
    bool showGraphViewForKey(const QString &key) override;
    /// A window may ask for this from inside one of its own event handlers: it lives until that has
    /// returned to the event loop.
    void closeGraphViewForKey(const QString &key) override;
    QStringList graphWindowKeys() const override;
    bool hideGraphWindow() const override { return m_hideGraphWindow; }
    void hideAllGraphWindow() override;
    void showAllGraphWindow() override;
    void feed() override;
    void storeSettings() override;

private:
    struct Entry
    {
        QString key;
        std::unique_ptr<GraphWindow> window;
    };
    using Entries = std::vector<Entry>;

    Entries::iterator find(const QString &key);
    bool open(const QString &key);
    void reportTooMany();
    /// What a window does may open and close others.
    template <typename Action> void forEach(Action action);

    GraphWindowFactory m_makeWindow;
    UsageCacheForKey m_cacheDataForKey;
    Entries m_entries;
    QObject m_closed; ///< parent of the windows that wait for their end
    bool m_hideGraphWindow = false;
    bool m_saidTooMany = false;
};

} // namespace pulsebar
