#pragma once

#include <QtGlobal>

#include <functional>

namespace pulsebar {

/// Which of the program's windows cannot be seen, because others lie over them.
class WindowCover
{
public:
    virtual ~WindowCover() = default;

    /// Whether other windows, none of which lets anything shine through, hide all of a mapped
    /// window. False when that cannot be told.
    /// `window` is the window system's own number of it.
    virtual bool isCovered(quintptr window) = 0;
    /// Called when the answer may have changed from covered to not covered.
    virtual void setUncoveredListener(std::function<void()> listener) = 0;
};

} // namespace pulsebar
