#pragma once

#include "graph/WindowServices.h"
#include "platform/Compositing.h"
#include "platform/WindowCover.h"
#include "platform/WindowHints.h"

#include <QVector>

#include <functional>
#include <utility>

namespace pulsebar {

class FakeWindowHints : public WindowHints
{
public:
    void keepOnAllWorkspaces(quintptr window) override { onAllWorkspaces.append(window); }
    void withoutShadow(quintptr window) override { shadowless.append(window); }

    QVector<quintptr> onAllWorkspaces;
    QVector<quintptr> shadowless;
};

class FakeCompositing : public Compositing
{
public:
    bool isRunning() override { return m_running; }
    void setListener(std::function<void()> listener) override { m_listener = std::move(listener); }
    void run(bool running)
    {
        m_running = running;
        m_listener();
    }

private:
    bool m_running = true;
    std::function<void()> m_listener;
};

class FakeWindowCover : public WindowCover
{
public:
    bool isCovered(quintptr /*window*/) override
    {
        ++questions;
        return covered;
    }
    void setUncoveredListener(std::function<void()> listener) override
    {
        m_listener = std::move(listener);
    }
    void uncover()
    {
        covered = false;
        m_listener();
    }
    /// Says that it may have been uncovered, though it was not.
    void stir() { m_listener(); }

    bool covered = false;
    int questions = 0;

private:
    std::function<void()> m_listener;
};

/// A desktop on which tests show windows.
struct FakeWindowServices
{
    FakeWindowHints hints;
    FakeCompositing compositing;
    FakeWindowCover cover;
    WindowServices services{{&hints, &compositing, &cover}};
};

} // namespace pulsebar
