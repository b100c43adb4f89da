#pragma once

#include <QRect>
#include <QSize>

#include <cstdint>
#include <optional>
#include <span>

namespace pulsebar {

/// One window of ours inside the desktop's system tray (the XEmbed kind, where the program draws
/// its own window). All sizes and places are device pixels; places are counted from the top left
/// of the root window.
class TrayDock
{
public:
    /// Told from the run loop, never from inside a call to the dock.
    class Listener
    {
    public:
        virtual ~Listener() = default;
        /// A tray manager came or went.
        virtual void trayAvailableChanged() = 0;
        /// The window was docked, was given another size, or was put out by the tray.
        virtual void traySizeChanged() = 0;
        virtual void trayClicked(Qt::MouseButton button) = 0;
    };

    virtual ~TrayDock() = default;

    /// The listener must outlive the dock or be taken away with nullptr.
    virtual void setListener(Listener *listener) = 0;

    /// Whether a tray manager runs now.
    virtual bool available() const = 0;

    /// Asks the tray to take a window of `wanted` size. Asking again while a window is docked asks
    /// for the new size. The tray decides: `geometry()` says what it gave. Does nothing without a
    /// tray.
    virtual void dock(QSize wanted) = 0;
    virtual void undock() = 0;

    /// True from the moment the tray has embedded and shown the window.
    virtual bool docked() const = 0;
    /// What the tray gave and where; empty while not docked.
    virtual QRect geometry() const = 0;

    /// The colour (0xRRGGBB) that the tray says its texts have; nothing when it does not say.
    virtual std::optional<std::uint32_t> foreground() const = 0;

    /// The colour (0xRRGGBB) of the panel behind the docked window, on the average; nothing where
    /// it cannot be seen. Asks the display, so for drawing only.
    virtual std::optional<std::uint32_t> background() const = 0;

    /// Shows a picture: `size.width() * size.height()` premultiplied 0xAARRGGBB values, row by row.
    /// What is transparent lets the panel through. The picture is kept for redrawing.
    virtual void draw(QSize size, std::span<const std::uint32_t> pixels) = 0;
};

} // namespace pulsebar
