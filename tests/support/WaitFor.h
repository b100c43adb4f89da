#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <functional>

namespace pulsebar {

/// Runs the event loop until the condition holds.
/// @return false when it did not within the time, which is only there to end a failing test
inline bool waitFor(const std::function<bool()> &condition, int milliseconds = 20000)
{
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(milliseconds);
    // What other threads and processes do is looked at now and then, as it wakes no event loop.
    QTimer glance;
    glance.start(5);
    while (!condition()) {
        if (!deadline.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace pulsebar
