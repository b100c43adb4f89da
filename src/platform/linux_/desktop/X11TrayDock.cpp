#include "platform/linux_/desktop/X11TrayDock.h"

#include "platform/linux_/desktop/LinuxDesktop.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>

namespace pulsebar {

namespace {

// System Tray Protocol: message opcodes; XEmbed: version and "wants to be mapped".
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t xembedVersion = 0;
constexpr std::uint32_t xembedMapped = 1;
// WM_NORMAL_HINTS: which fields are set.
constexpr std::uint32_t minimumSizeSet = 1U << 4;
constexpr std::uint32_t baseSizeSet = 1U << 8;

constexpr std::uint32_t windowEvents =
    XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS;

Qt::MouseButton buttonOf(xcb_button_t detail)
{
    switch (detail) {
    case XCB_BUTTON_INDEX_1:
        return Qt::LeftButton;
    case XCB_BUTTON_INDEX_2:
        return Qt::MiddleButton;
    case XCB_BUTTON_INDEX_3:
        return Qt::RightButton;
    default:
        return Qt::NoButton;
    }
}

/// One premultiplied pixel over an opaque one.
std::uint32_t over(std::uint32_t pixel, std::uint32_t background)
{
    const std::uint32_t through = 255 - (pixel >> 24);
    std::uint32_t result = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        const std::uint32_t below = (background >> shift) & 0xFF;
        const std::uint32_t sum = ((pixel >> shift) & 0xFF) + below * through / 255;
        result |= std::min(sum, 255U) << shift;
    }
    return result;
}

} // namespace

X11TrayDock::X11TrayDock(std::unique_ptr<X11Screen> screen)
    : m_screen(std::move(screen))
    , m_selection(m_screen->atom("_NET_SYSTEM_TRAY_S" + std::to_string(m_screen->number())))
    , m_managerMessage(m_screen->atom("MANAGER"))
    , m_opcode(m_screen->atom("_NET_SYSTEM_TRAY_OPCODE"))
    , m_xembedInfo(m_screen->atom("_XEMBED_INFO"))
    , m_colours(m_screen->atom("_NET_SYSTEM_TRAY_COLORS"))
{
    xcb_connection_t *connection = m_screen->connection();
    // New trays announce themselves to whoever listens to the root window's structure.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, m_screen->screen().root, XCB_CW_EVENT_MASK, &mask);
    lookForManager();
    m_events = std::make_unique<X11Events>(
        *m_screen, [this](const xcb_generic_event_t &event) { handle(event); });
}

X11TrayDock::~X11TrayDock() = default;

void X11TrayDock::lookForManager()
{
    xcb_connection_t *connection = m_screen->connection();
    // Between asking and listening the owner must not vanish unseen.
    xcb_grab_server(connection);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, m_selection), nullptr));
    m_manager = reply ? reply->owner : xcb_window_t(XCB_NONE);
    if (m_manager != XCB_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection, m_manager, XCB_CW_EVENT_MASK, &mask);
    }
    xcb_ungrab_server(connection);
    xcb_flush(connection);
}

X11TrayDock::Visual X11TrayDock::trayVisual() const
{
    const auto said = m_screen->property(m_manager, m_screen->atom("_NET_SYSTEM_TRAY_VISUAL"));
    if (!said.empty()) {
        if (const auto depth = m_screen->depthOf(said.front())) {
            return {said.front(), *depth};
        }
    }
    return {m_screen->screen().root_visual, m_screen->screen().root_depth};
}

void X11TrayDock::createWindow(QSize size)
{
    xcb_connection_t *connection = m_screen->connection();
    const xcb_window_t root = m_screen->screen().root;
    const Visual visual = trayVisual();
    m_depth = visual.depth;
    m_colormap = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, root, visual.id);
    // A window of the tray's own depth may share its background; another depth starts clear.
    const bool clear = visual.depth == 32;
    const std::array<std::uint32_t, 4> values{
        clear ? 0U : std::uint32_t(XCB_BACK_PIXMAP_PARENT_RELATIVE), 0, windowEvents, m_colormap};
    const std::uint32_t mask = (clear ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP) |
                               XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    m_window = xcb_generate_id(connection);
    xcb_create_window(connection, visual.depth, m_window, root, -1, -1, std::uint16_t(size.width()),
                      std::uint16_t(size.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                      mask, values.data());
    m_context = xcb_generate_id(connection);
    xcb_create_gc(connection, m_context, m_window, 0, nullptr);
    describeWindow(size);
}

void X11TrayDock::describeWindow(QSize size)
{
    xcb_connection_t *connection = m_screen->connection();
    constexpr char name[] = "Pulsebar";
    constexpr char windowClass[] = "pulsebar\0Pulsebar";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, sizeof name - 1, name);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, sizeof windowClass, windowClass);
    m_screen->setProperty(m_window, m_xembedInfo, m_xembedInfo, {xembedVersion, xembedMapped});
    const auto width = std::uint32_t(size.width());
    const auto height = std::uint32_t(size.height());
    m_screen->setProperty(m_window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                          {minimumSizeSet | baseSizeSet, 0, 0, width, height, width, height, 0, 0,
                           0, 0, 0, 0, 0, 0, width, height, 0});
}

void X11TrayDock::dock(QSize wanted)
{
    if (!available() || wanted.isEmpty()) {
        return;
    }
    xcb_connection_t *connection = m_screen->connection();
    if (m_window != XCB_NONE) {
        describeWindow(wanted);
        const std::array<std::uint32_t, 2> size{std::uint32_t(wanted.width()),
                                                std::uint32_t(wanted.height())};
        xcb_configure_window(connection, m_window,
                             XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    } else {
        m_size = wanted;
        createWindow(wanted);
        m_screen->sendMessage(m_manager, XCB_EVENT_MASK_NO_EVENT, m_manager, m_opcode,
                              {XCB_CURRENT_TIME, requestDock, m_window, 0, 0});
    }
    xcb_flush(connection);
}

void X11TrayDock::undock()
{
    if (m_window == XCB_NONE) {
        return;
    }
    xcb_destroy_window(m_screen->connection(), m_window);
    windowGone();
    xcb_flush(m_screen->connection());
}

void X11TrayDock::windowGone()
{
    xcb_free_gc(m_screen->connection(), m_context);
    xcb_free_colormap(m_screen->connection(), m_colormap);
    m_window = XCB_NONE;
    m_embedded = false;
    m_mapped = false;
    m_picture.clear();
}

QRect X11TrayDock::geometry() const
{
    if (!docked()) {
        return {};
    }
    xcb_connection_t *connection = m_screen->connection();
    const XcbReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, m_window, m_screen->screen().root, 0, 0),
        nullptr));
    return {place ? QPoint(place->dst_x, place->dst_y) : QPoint(), m_size};
}

std::optional<std::uint32_t> X11TrayDock::foreground() const
{
    // Foreground, error, warning and success; 16 bits each for red, green, blue.
    const auto colours = m_screen->property(m_manager, m_colours);
    if (colours.size() < 3) {
        return std::nullopt;
    }
    return 0xFF000000U | (colours[0] >> 8 & 0xFF) << 16 | (colours[1] >> 8 & 0xFF) << 8 |
           (colours[2] >> 8 & 0xFF);
}

void X11TrayDock::draw(QSize size, std::span<const std::uint32_t> pixels)
{
    const auto needed = std::size_t(size.width()) * std::size_t(size.height());
    if (size.isEmpty() || pixels.size() < needed) {
        return;
    }
    m_pictureSize = size;
    m_picture.assign(pixels.begin(), pixels.begin() + std::ptrdiff_t(needed));
    present();
}

/// What the panel shows through a window of its own depth; empty when the display does not tell.
std::vector<std::uint32_t> X11TrayDock::pixelsBehind(QSize size) const
{
    xcb_connection_t *connection = m_screen->connection();
    xcb_clear_area(connection, 0, m_window, 0, 0, 0, 0);
    const XcbReply<xcb_get_image_reply_t> below(xcb_get_image_reply(
        connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, 0, 0,
                      std::uint16_t(size.width()), std::uint16_t(size.height()), ~0U),
        nullptr));
    std::vector<std::uint32_t> pixels(std::size_t(size.width()) * std::size_t(size.height()));
    const std::size_t bytes = pixels.size() * sizeof(std::uint32_t);
    if (!below || std::size_t(xcb_get_image_data_length(below.get())) < bytes) {
        return {};
    }
    std::memcpy(pixels.data(), xcb_get_image_data(below.get()), bytes);
    return pixels;
}

std::optional<std::uint32_t> X11TrayDock::background() const
{
    // A window with an alpha channel is put over the panel later; it sees nothing.
    if (!docked() || m_depth == 32) {
        return std::nullopt;
    }
    const std::vector<std::uint32_t> pixels = pixelsBehind(m_size);
    if (pixels.empty()) {
        return std::nullopt;
    }
    std::uint32_t average = 0;
    for (const int shift : {0, 8, 16}) {
        const auto sum = std::accumulate(pixels.begin(), pixels.end(), std::uint64_t(0),
                                         [shift](std::uint64_t before, std::uint32_t pixel) {
                                             return before + ((pixel >> shift) & 0xFF);
                                         });
        average |= std::uint32_t(sum / pixels.size()) << shift;
    }
    return average;
}

std::vector<std::uint32_t> X11TrayDock::overBackground() const
{
    std::vector<std::uint32_t> background = pixelsBehind(m_pictureSize);
    background.resize(m_picture.size(), 0xFF000000);
    std::transform(m_picture.begin(), m_picture.end(), background.begin(), background.begin(),
                   over);
    return background;
}

void X11TrayDock::present() const
{
    if (!docked() || m_picture.empty()) {
        return;
    }
    const std::vector<std::uint32_t> pixels = m_depth == 32 ? m_picture : overBackground();
    xcb_put_image(m_screen->connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_context,
                  std::uint16_t(m_pictureSize.width()), std::uint16_t(m_pictureSize.height()), 0, 0,
                  0, m_depth, std::uint32_t(pixels.size() * sizeof(std::uint32_t)),
                  reinterpret_cast<const std::uint8_t *>(pixels.data()));
    xcb_flush(m_screen->connection());
}

void X11TrayDock::handle(const xcb_generic_event_t &event)
{
    switch (X11Events::type(event)) {
    case XCB_CLIENT_MESSAGE:
        handleClientMessage(X11Events::as<xcb_client_message_event_t>(event));
        break;
    case XCB_DESTROY_NOTIFY:
        if (X11Events::as<xcb_destroy_notify_event_t>(event).window == m_manager) {
            managerGone();
        } else if (X11Events::as<xcb_destroy_notify_event_t>(event).window == m_window) {
            windowGone();
            if (m_listener) {
                m_listener->traySizeChanged();
            }
        }
        break;
    case XCB_REPARENT_NOTIFY:
        handleReparent(X11Events::as<xcb_reparent_notify_event_t>(event));
        break;
    case XCB_CONFIGURE_NOTIFY:
        handleConfigure(X11Events::as<xcb_configure_notify_event_t>(event));
        break;
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
        if (X11Events::as<xcb_map_notify_event_t>(event).window == m_window) {
            setMapped(X11Events::type(event) == XCB_MAP_NOTIFY);
        }
        break;
    case XCB_EXPOSE:
        if (X11Events::as<xcb_expose_event_t>(event).count == 0) {
            present();
        }
        break;
    case XCB_BUTTON_PRESS:
        if (m_listener) {
            m_listener->trayClicked(
                buttonOf(X11Events::as<xcb_button_press_event_t>(event).detail));
        }
        break;
    default:
        break;
    }
}

void X11TrayDock::handleClientMessage(const xcb_client_message_event_t &message)
{
    if (message.type != m_managerMessage || message.data.data32[1] != m_selection) {
        return;
    }
    undock();
    lookForManager();
    if (m_listener) {
        m_listener->trayAvailableChanged();
    }
}

void X11TrayDock::managerGone()
{
    undock();
    lookForManager();
    if (m_listener) {
        m_listener->trayAvailableChanged();
    }
}

void X11TrayDock::handleReparent(const xcb_reparent_notify_event_t &event)
{
    if (event.window != m_window) {
        return;
    }
    m_embedded = event.parent != m_screen->screen().root;
    if (m_listener) {
        m_listener->traySizeChanged();
    }
}

void X11TrayDock::handleConfigure(const xcb_configure_notify_event_t &event)
{
    const QSize size(event.width, event.height);
    if (event.window != m_window || size == m_size) {
        return;
    }
    m_size = size;
    if (docked() && m_listener) {
        m_listener->traySizeChanged();
    }
}

void X11TrayDock::setMapped(bool mapped)
{
    if (m_mapped != mapped) {
        m_mapped = mapped;
        if (m_listener) {
            m_listener->traySizeChanged();
        }
    }
}

std::unique_ptr<TrayDock> makeTrayDock()
{
    auto screen = X11Screen::open();
    return screen ? std::make_unique<X11TrayDock>(std::move(screen)) : nullptr;
}

} // namespace pulsebar
