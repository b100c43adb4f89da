#pragma once

#include <QtGlobal>

namespace pulsebar {

/// What a window asks of the window manager, and of the compositor, beyond what the toolkit offers.
/// `window` is the window system's own number of a mapped window.
class WindowHints
{
public:
    virtual ~WindowHints() = default;

    /// Keeps a window on every workspace and out of task lists and pagers.
    virtual void keepOnAllWorkspaces(quintptr window) = 0;
    /// Asks for no shadow around a window.
    virtual void withoutShadow(quintptr window) = 0;
};

} // namespace pulsebar
