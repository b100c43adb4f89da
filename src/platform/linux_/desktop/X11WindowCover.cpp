#include "platform/linux_/desktop/CoveredArea.h"
#include "platform/linux_/desktop/LinuxDesktop.h"
#include "platform/linux_/desktop/X11Events.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace pulsebar {

namespace {

constexpr std::uint8_t alphaDepth = 32;
constexpr std::uint32_t fullOpacity = 0xFFFFFFFF;
/// Of a shape. No covering window of an ordinary shape has nearly as many.
constexpr int mostRects = 1024;

/// A number of another program's, which may say "everything" with the largest one that there is.
/// The window system itself counts with 15 bits and a sign.
int pointsFrom(std::uint32_t number)
{
    constexpr int farthest = 32767;
    return std::clamp(int(number), -farthest, farthest);
}

/// What lies over a window, by the window manager's list (_NET_CLIENT_LIST_STACKING, EWMH).
///
/// Only the content of other windows counts, not their frames, which may be shaped or let something
/// shine through; and of a window with an alpha channel only what it says is opaque. One that is
/// put away (WM_STATE, ICCCM) covers nothing: compositing window managers keep it mapped for its
/// thumbnail.
///
/// What was found out is kept until an event says that it may be wrong, and asked for anew with the
/// next question. Events come for the list itself, for the windows that were asked about, and for
/// those above them.
class X11WindowCover : public WindowCover
{
public:
    explicit X11WindowCover(std::unique_ptr<X11Screen> screen)
        : m_screen(std::move(screen))
    {
    }

    bool isCovered(quintptr window) override;
    void setUncoveredListener(std::function<void()> listener) override
    {
        m_listener = std::move(listener);
    }

private:
    using Rects = std::vector<QRect>;

    void start();
    void watch(xcb_window_t window);
    const std::vector<xcb_window_t> &stacking();
    bool find(xcb_window_t window);
    const Rects &opaqueRects(xcb_window_t window);
    Rects readOpaqueRects(xcb_window_t window) const;
    Rects readShape(xcb_window_t window) const;
    Rects readOpaqueRegion(xcb_window_t window) const;
    std::optional<QRect> placeOf(xcb_window_t window) const;
    bool isPutAway(xcb_window_t window) const;
    bool hasAnotherState(xcb_window_t window) const;

    void handle(const xcb_generic_event_t &event);
    void handleProperty(const xcb_property_notify_event_t &event);
    void forget(xcb_window_t window);
    void forgetAnswers();
    void tell();

    std::unique_ptr<X11Screen> m_screen;
    std::unique_ptr<X11Events> m_events;
    std::function<void()> m_listener;
    xcb_atom_t m_stackingList = XCB_ATOM_NONE;
    xcb_atom_t m_opacity = XCB_ATOM_NONE;
    xcb_atom_t m_opaqueRegion = XCB_ATOM_NONE;
    xcb_atom_t m_state = XCB_ATOM_NONE;
    bool m_hasFixes = false;

    std::optional<std::vector<xcb_window_t>> m_stacking;    ///< from the bottom to the top
    std::map<xcb_window_t, std::optional<Rects>> m_watched; ///< with what is opaque, where known
    std::set<xcb_window_t> m_putAway;                       ///< of the watched ones
    std::map<xcb_window_t, bool> m_answers;
    bool m_mayBeUncovered = false;
};

void X11WindowCover::start()
{
    xcb_connection_t *connection = m_screen->connection();
    m_stackingList = m_screen->atom("_NET_CLIENT_LIST_STACKING");
    m_opacity = m_screen->atom("_NET_WM_WINDOW_OPACITY");
    m_opaqueRegion = m_screen->atom("_NET_WM_OPAQUE_REGION");
    m_state = m_screen->atom("WM_STATE");
    const xcb_query_extension_reply_t *fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (fixes && fixes->present) {
        // Shapes are told since version 2.
        const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            connection, xcb_xfixes_query_version(connection, 2, 0), nullptr));
        m_hasFixes = version && version->major_version >= 2;
    }
    m_events = std::make_unique<X11Events>(
        *m_screen, [this](const xcb_generic_event_t &event) { handle(event); }, [this] { tell(); });
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, m_screen->screen().root, XCB_CW_EVENT_MASK, &mask);
}

bool X11WindowCover::isCovered(quintptr window)
{
    if (!m_events) {
        start();
    }
    const auto id = xcb_window_t(window);
    const auto known = m_answers.find(id);
    if (known != m_answers.end()) {
        return known->second;
    }
    const bool covered = find(id);
    m_answers[id] = covered;
    return covered;
}

/// Before a window is looked at, so that no change falls between.
void X11WindowCover::watch(xcb_window_t window)
{
    if (m_watched.try_emplace(window).second) {
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_screen->connection(), window, XCB_CW_EVENT_MASK, &mask);
    }
}

const std::vector<xcb_window_t> &X11WindowCover::stacking()
{
    if (!m_stacking) {
        m_stacking = m_screen->property(m_screen->screen().root, m_stackingList);
    }
    return *m_stacking;
}

bool X11WindowCover::find(xcb_window_t window)
{
    const std::vector<xcb_window_t> &windows = stacking();
    const auto self = std::find(windows.begin(), windows.end(), window);
    if (self == windows.end() || self + 1 == windows.end()) {
        return false;
    }
    watch(window);
    const std::optional<QRect> place = placeOf(window);
    if (!place) {
        return false;
    }
    Rects above;
    for (auto at = self + 1; at != windows.end(); ++at) {
        const Rects &opaque = opaqueRects(*at);
        above.insert(above.end(), opaque.begin(), opaque.end());
    }
    return isHiddenBy(*place, above);
}

const X11WindowCover::Rects &X11WindowCover::opaqueRects(xcb_window_t window)
{
    watch(window);
    std::optional<Rects> &rects = m_watched[window];
    if (!rects) {
        const bool putAway = isPutAway(window);
        if (putAway) {
            m_putAway.insert(window);
        }
        rects = putAway ? Rects() : readOpaqueRects(window);
    }
    return *rects;
}

bool X11WindowCover::isPutAway(xcb_window_t window) const
{
    constexpr std::uint32_t iconic = 3;
    const auto state = m_screen->property(window, m_state);
    return !state.empty() && state.front() == iconic;
}

/// The rectangles of a window that nothing shines through, on the screen.
X11WindowCover::Rects X11WindowCover::readOpaqueRects(xcb_window_t window) const
{
    xcb_connection_t *connection = m_screen->connection();
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, window), nullptr));
    const auto opacity = m_screen->property(window, m_opacity);
    const auto place = placeOf(window);
    const bool translucent = !opacity.empty() && opacity.front() != fullOpacity;
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE || translucent || !place) {
        return {};
    }
    const bool hasAlpha = m_screen->depthOf(attributes->visual) == alphaDepth;
    Rects rects = hasAlpha ? readOpaqueRegion(window) : readShape(window);
    for (QRect &rect : rects) {
        rect = rect.translated(place->topLeft()) & *place;
    }
    return rects;
}

/// In the window's own coordinates, as readOpaqueRegion().
X11WindowCover::Rects X11WindowCover::readShape(xcb_window_t window) const
{
    xcb_connection_t *connection = m_screen->connection();
    if (!m_hasFixes) {
        return {};
    }
    const xcb_xfixes_region_t region = xcb_generate_id(connection);
    constexpr std::uint8_t bounding = 0; // SHAPE's kind
    xcb_xfixes_create_region_from_window(connection, region, window, bounding);
    const XcbReply<xcb_xfixes_fetch_region_reply_t> reply(xcb_xfixes_fetch_region_reply(
        connection, xcb_xfixes_fetch_region(connection, region), nullptr));
    xcb_xfixes_destroy_region(connection, region);
    Rects rects;
    if (reply) {
        const xcb_rectangle_t *first = xcb_xfixes_fetch_region_rectangles(reply.get());
        const int count =
            std::min(xcb_xfixes_fetch_region_rectangles_length(reply.get()), mostRects);
        std::transform(first, first + count, std::back_inserter(rects),
                       [](const xcb_rectangle_t &rect) {
                           return QRect(rect.x, rect.y, rect.width, rect.height);
                       });
    }
    return rects;
}

X11WindowCover::Rects X11WindowCover::readOpaqueRegion(xcb_window_t window) const
{
    // X, y, width and height, one after the other.
    const auto numbers = m_screen->property(window, m_opaqueRegion);
    Rects rects;
    for (std::size_t at = 0; at + 4 <= numbers.size(); at += 4) {
        rects.emplace_back(pointsFrom(numbers[at]), pointsFrom(numbers[at + 1]),
                           std::max(0, pointsFrom(numbers[at + 2])),
                           std::max(0, pointsFrom(numbers[at + 3])));
    }
    return rects;
}

std::optional<QRect> X11WindowCover::placeOf(xcb_window_t window) const
{
    xcb_connection_t *connection = m_screen->connection();
    const auto sizeAsked = xcb_get_geometry(connection, window);
    const auto placeAsked =
        xcb_translate_coordinates(connection, window, m_screen->screen().root, 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, sizeAsked, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, placeAsked, nullptr));
    if (!size || !place) {
        return std::nullopt;
    }
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

void X11WindowCover::handle(const xcb_generic_event_t &event)
{
    switch (X11Events::type(event)) {
    case XCB_PROPERTY_NOTIFY:
        handleProperty(X11Events::as<xcb_property_notify_event_t>(event));
        break;
    case XCB_CONFIGURE_NOTIFY:
        forget(X11Events::as<xcb_configure_notify_event_t>(event).window);
        break;
    case XCB_MAP_NOTIFY:
        forget(X11Events::as<xcb_map_notify_event_t>(event).window);
        break;
    case XCB_UNMAP_NOTIFY:
        forget(X11Events::as<xcb_unmap_notify_event_t>(event).window);
        break;
    case XCB_DESTROY_NOTIFY:
        forget(X11Events::as<xcb_destroy_notify_event_t>(event).window);
        break;
    default:
        break;
    }
}

void X11WindowCover::handleProperty(const xcb_property_notify_event_t &event)
{
    if (event.window == m_screen->screen().root) {
        if (event.atom == m_stackingList) {
            m_stacking.reset();
            forgetAnswers();
        }
    } else if (event.atom == m_opacity || event.atom == m_opaqueRegion ||
               (event.atom == m_state && hasAnotherState(event.window))) {
        forget(event.window);
    }
}

/// A window manager sets the state, too, of a window that it just mapped, and to what it was.
bool X11WindowCover::hasAnotherState(xcb_window_t window) const
{
    return isPutAway(window) != m_putAway.contains(window);
}

/// It is watched again when it is looked at again, so that nothing is told of windows that no
/// longer matter.
void X11WindowCover::forget(xcb_window_t window)
{
    m_putAway.erase(window);
    if (m_watched.erase(window) == 0) {
        return;
    }
    const std::uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(m_screen->connection(), window, XCB_CW_EVENT_MASK, &nothing);
    xcb_flush(m_screen->connection());
    forgetAnswers();
}

void X11WindowCover::forgetAnswers()
{
    m_mayBeUncovered = m_mayBeUncovered || std::any_of(m_answers.begin(), m_answers.end(),
                                                       [](const auto &it) { return it.second; });
    m_answers.clear();
}

/// Once for all events that came together.
void X11WindowCover::tell()
{
    if (std::exchange(m_mayBeUncovered, false) && m_listener) {
        m_listener();
    }
}

} // namespace

std::unique_ptr<WindowCover> makeWindowCover()
{
    auto screen = X11Screen::open();
    return screen ? std::make_unique<X11WindowCover>(std::move(screen)) : nullptr;
}

} // namespace pulsebar
