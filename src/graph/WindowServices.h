#pragma once

#include "graph/ResizeCursors.h"

#include <QObject>

namespace pulsebar {

class Compositing;
class WindowCover;
class WindowHints;
struct Desktop;

/// What the graph windows share of the desktop: one object for all of them, which outlives them.
class WindowServices : public QObject
{
    Q_OBJECT

public:
    /// Each part may be null. They must outlive this object, and nobody else may listen to them.
    struct Parts
    {
        WindowHints *hints = nullptr;
        Compositing *compositing = nullptr; ///< null: windows are translucent always
        WindowCover *cover = nullptr;       ///< null: no window counts as covered
    };

    /// The parts of a desktop that are about the windows which the toolkit shows on the running
    /// program's platform: an X server's, and no others beside it.
    static Parts partsOf(const Desktop &desktop);

    explicit WindowServices(const Parts &parts, QObject *parent = nullptr);
    ~WindowServices() override;

    WindowHints *hints() const { return m_parts.hints; }
    /// Whether windows are translucent now.
    bool composes() const;
    /// Whether other windows hide all of a mapped one.
    bool isCovered(quintptr window) const;

    /// Facts about the window system, as util/WindowSystem.h has them; of the running program's
    /// unless they are set.
    bool placesWindows() const { return m_placesWindows; }
    void setPlacesWindows(bool places) { m_placesWindows = places; }
    bool bypassesWindowManager() const { return m_bypassesWindowManager; }
    void setBypassesWindowManager(bool bypasses) { m_bypassesWindowManager = bypasses; }

    ResizeCursors &cursors() { return m_cursors; }

Q_SIGNALS:
    void compositingChanged();
    /// A window that was covered may be seen again.
    void uncovered();

private:
    Parts m_parts;
    bool m_placesWindows;
    bool m_bypassesWindowManager;
    ResizeCursors m_cursors;
};

} // namespace pulsebar
