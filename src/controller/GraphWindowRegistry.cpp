#include "controller/GraphWindowRegistry.h"

#include <QLoggingCategory>

#include <algorithm>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcGraph, "pulsebar.graph")

/// A closed window until it may go: deferred deletion knows in which event loop it was asked for.
struct ClosedWindow : QObject
{
    ClosedWindow(std::unique_ptr<GraphWindow> closed, QObject *parent)
        : QObject(parent)
        , window(std::move(closed))
    {
    }

    std::unique_ptr<GraphWindow> window;
};

} // namespace

GraphWindowRegistry::GraphWindowRegistry(GraphWindowFactory makeWindow,
                                         UsageCacheForKey cacheDataForKey)
    : m_makeWindow(std::move(makeWindow))
    , m_cacheDataForKey(std::move(cacheDataForKey))
{
}

GraphWindowRegistry::~GraphWindowRegistry() = default;

GraphWindowRegistry::Entries::iterator GraphWindowRegistry::find(const QString &key)
{
    return std::find_if(m_entries.begin(), m_entries.end(),
                        [&key](const Entry &entry) { return entry.key == key; });
}

template <typename Action> void GraphWindowRegistry::forEach(Action action)
{
    const QStringList keys = graphWindowKeys();
    for (const QString &key : keys) {
        const auto found = find(key);
        if (found != m_entries.end())
            action(key, *found->window);
    }
}

bool GraphWindowRegistry::showGraphViewForKey(const QString &key)
{
    const auto found = find(key);
    if (found == m_entries.end())
        return open(key);
    GraphWindow &window = *found->window;
    window.window();
    window.orderFront();
    return true;
}

bool GraphWindowRegistry::open(const QString &key)
{
    if (!isKey(key))
        return false;
    if (static_cast<qsizetype>(m_entries.size()) >= kMostOpen) {
        reportTooMany();
        return false;
    }
    std::unique_ptr<GraphWindow> made = m_makeWindow(key);
    GraphWindow &window = *made;
    m_entries.push_back({key, std::move(made)});
    window.window();
    window.setUsageCacheArray(m_cacheDataForKey(key));
    return true;
}

void GraphWindowRegistry::reportTooMany()
{
    if (m_saidTooMany)
        return;
    m_saidTooMany = true;
    qCWarning(lcGraph, "There are %d graph windows; no more are opened.",
              static_cast<int>(kMostOpen));
}

void GraphWindowRegistry::closeGraphViewForKey(const QString &key)
{
    const auto found = find(key);
    if (found == m_entries.end())
        return;
    auto *closed = new ClosedWindow(std::move(found->window), &m_closed);
    // Out of the registry first: the window may ask for this again while it closes.
    m_entries.erase(found);
    closed->deleteLater();
    closed->window->close();
}

QStringList GraphWindowRegistry::graphWindowKeys() const
{
    QStringList keys;
    for (const Entry &entry : m_entries)
        keys += entry.key;
    return keys;
}

void GraphWindowRegistry::hideAllGraphWindow()
{
    m_hideGraphWindow = true;
    forEach([](const QString & /*key*/, GraphWindow &window) { window.orderOut(); });
}

void GraphWindowRegistry::showAllGraphWindow()
{
    m_hideGraphWindow = false;
    forEach([](const QString & /*key*/, GraphWindow &window) { window.orderFront(); });
}

void GraphWindowRegistry::feed()
{
    forEach([this](const QString &key, GraphWindow &window) {
        window.setUsageCacheArray(m_cacheDataForKey(key));
    });
}

void GraphWindowRegistry::storeSettings()
{
    forEach([](const QString & /*key*/, GraphWindow &window) { window.storeSetting(); });
}

} // namespace pulsebar
