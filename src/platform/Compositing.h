#pragma once

#include <functional>

namespace pulsebar {

/// Whether windows can be translucent: something composes the screen from the windows' pictures.
class Compositing
{
public:
    virtual ~Compositing() = default;

    /// Known without asking anew.
    virtual bool isRunning() = 0;
    /// Called after isRunning() changed.
    virtual void setListener(std::function<void()> listener) = 0;
};

} // namespace pulsebar
