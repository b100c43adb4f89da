#pragma once

#include "platform/TrayDock.h"
#include "platform/linux_/desktop/X11Events.h"
#include "platform/linux_/desktop/X11Screen.h"

#include <memory>
#include <vector>

namespace pulsebar {

/// A window of our own in the tray that owns the selection _NET_SYSTEM_TRAY_S<screen>. It takes the
/// tray's visual, so that a tray with transparency shows through; on another tray the text is laid
/// over the background that the tray gives the window.
class X11TrayDock : public TrayDock
{
public:
    explicit X11TrayDock(std::unique_ptr<X11Screen> screen);
    ~X11TrayDock() override;

    void setListener(Listener *listener) override { m_listener = listener; }
    bool available() const override { return m_manager != XCB_NONE; }
    void dock(QSize wanted) override;
    void undock() override;
    bool docked() const override { return m_embedded && m_mapped; }
    QRect geometry() const override;
    std::optional<std::uint32_t> foreground() const override;
    std::optional<std::uint32_t> background() const override;
    void draw(QSize size, std::span<const std::uint32_t> pixels) override;

private:
    struct Visual
    {
        xcb_visualid_t id;
        std::uint8_t depth;
    };

    void handle(const xcb_generic_event_t &event);
    void handleClientMessage(const xcb_client_message_event_t &message);
    void handleReparent(const xcb_reparent_notify_event_t &event);
    void handleConfigure(const xcb_configure_notify_event_t &event);
    void setMapped(bool mapped);
    void lookForManager();
    void managerGone();
    void windowGone();
    Visual trayVisual() const;
    void createWindow(QSize size);
    void describeWindow(QSize size);
    void present() const;
    std::vector<std::uint32_t> pixelsBehind(QSize size) const;
    std::vector<std::uint32_t> overBackground() const;

    std::unique_ptr<X11Screen> m_screen;
    std::unique_ptr<X11Events> m_events;
    Listener *m_listener = nullptr;
    xcb_atom_t m_selection;
    xcb_atom_t m_managerMessage;
    xcb_atom_t m_opcode;
    xcb_atom_t m_xembedInfo;
    xcb_atom_t m_colours;
    xcb_window_t m_manager = XCB_NONE;
    xcb_window_t m_window = XCB_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_context = XCB_NONE;
    std::uint8_t m_depth = 0;
    bool m_embedded = false;
    bool m_mapped = false;
    QSize m_size;
    QSize m_pictureSize;
    std::vector<std::uint32_t> m_picture;
};

} // namespace pulsebar
