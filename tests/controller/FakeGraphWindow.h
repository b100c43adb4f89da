#pragma once

#include "graph/GraphWindow.h"

#include <QStringList>
#include <QVector>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace pulsebar {

/// What became of one window. It outlives the window.
struct FakeGraph
{
    QStringList calls; ///< names, in order
    QVector<std::optional<UsageCache>> arrays;
    int alive = 0;
    int fronted = 0;
    /// Run by each call, with the call's name.
    std::function<void(const QString &call)> onCall = [](const QString & /*call*/) {};
};

class FakeGraphWindow : public GraphWindow
{
public:
    explicit FakeGraphWindow(FakeGraph &graph)
        : m_graph(graph)
    {
        ++m_graph.alive;
    }
    ~FakeGraphWindow() override { --m_graph.alive; }

    void window() override { note("window"); }
    void orderOut() override { note("orderOut"); }
    void orderFront() override
    {
        ++m_graph.fronted;
        note("orderFront");
    }
    void setUsageCacheArray(const std::optional<UsageCache> &array) override
    {
        m_graph.arrays += array;
        note("setUsageCacheArray");
    }
    void close() override { note("close"); }
    void storeSetting() override { note("storeSetting"); }

private:
    void note(const char *call)
    {
        m_graph.calls += QString::fromLatin1(call);
        m_graph.onCall(m_graph.calls.constLast());
    }

    FakeGraph &m_graph;
};

/// Windows by key; one that was closed and opened again goes on with its record.
class FakeGraphs
{
public:
    GraphWindowFactory factory()
    {
        return [this](const QString &key) {
            made += key;
            return std::make_unique<FakeGraphWindow>(of(key));
        };
    }

    FakeGraph &of(const QString &key)
    {
        std::unique_ptr<FakeGraph> &graph = m_graphs[key.toStdString()];
        if (!graph)
            graph = std::make_unique<FakeGraph>();
        return *graph;
    }

    QStringList made; ///< keys, in order

private:
    std::map<std::string, std::unique_ptr<FakeGraph>> m_graphs;
};

} // namespace pulsebar
