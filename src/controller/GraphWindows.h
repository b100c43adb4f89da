#pragma once

#include <QString>

namespace pulsebar {

/// The floating graphs, as the menu reaches them.
class GraphWindows
{
public:
    virtual ~GraphWindows() = default;

    /// Opens the window for the series of a graph key, or raises the one that is open.
    virtual void showGraphViewForKey(const QString &key) = 0;
    /// True while all graph windows are hidden.
    virtual bool hideGraphWindow() const = 0;
    /// Hides all graph windows, or shows all again.
    virtual void switchGraphWindow() = 0;
};

} // namespace pulsebar
