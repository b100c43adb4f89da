#pragma once

#include <QtGlobal>

namespace pulsebar {

/// What a window asks of the window manager beyond what the toolkit offers.
class WindowHints
{
public:
    virtual ~WindowHints() = default;

    /// Keeps a mapped window on every workspace and out of task lists and pagers.
    /// `window` is the window system's own number of it.
    virtual void keepOnAllWorkspaces(quintptr window) = 0;
};

} // namespace pulsebar
