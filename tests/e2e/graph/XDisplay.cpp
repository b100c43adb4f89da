#include "e2e/graph/XDisplay.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace pulsebar::e2e {

namespace {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T> using Reply = std::unique_ptr<T, Free>;

} // namespace

XDisplay::XDisplay(Desktop &desktop)
    : m_desktop(desktop)
    , m_connection(
          xcb_connect(desktop.environment().value(QStringLiteral("DISPLAY")).toUtf8().constData(),
                      nullptr),
          &xcb_disconnect)
    , m_screen(xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data)
{
    if (xcb_connection_has_error(m_connection.get()))
        throw std::runtime_error("the test's display cannot be reached");
}

quint32 XDisplay::root() const
{
    return m_screen->root;
}

quint32 XDisplay::topLevel(quint32 window) const
{
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        m_connection.get(), xcb_query_tree(m_connection.get(), window), nullptr));
    return !tree || tree->parent == root() ? window : topLevel(tree->parent);
}

void XDisplay::resizeScreen(QSize size) const
{
    const QString name = QStringLiteral("%1x%2 of the test").arg(size.width()).arg(size.height());
    const QString output = QStringLiteral("screen");
    const QString width = QString::number(size.width());
    const QString height = QString::number(size.height());
    const QString zero = QStringLiteral("0");
    const auto xrandr = [this](const QStringList &arguments) {
        return Process(QStringLiteral("xrandr"), arguments, m_desktop.environment()).waitForEnd();
    };
    // One that is there already is used again.
    xrandr({QStringLiteral("--newmode"), name, zero, width, zero, zero, width, height, zero, zero,
            height});
    xrandr({QStringLiteral("--addmode"), output, name});
    if (xrandr({QStringLiteral("--output"), output, QStringLiteral("--mode"), name}) != 0)
        throw std::runtime_error("the test's screen cannot be resized");
}

quint32 XDisplay::atom(const char *name) const
{
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection.get(),
        xcb_intern_atom(m_connection.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QString XDisplay::atomName(quint32 atom) const
{
    const Reply<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(
        m_connection.get(), xcb_get_atom_name(m_connection.get(), atom), nullptr));
    return reply ? QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                       xcb_get_atom_name_name_length(reply.get()))
                 : QString();
}

QByteArray XDisplay::property(quint32 window, quint32 name) const
{
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection.get(),
        xcb_get_property(m_connection.get(), 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096),
        nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

void XDisplay::collect(quint32 window, QList<XWindow> &into) const
{
    xcb_connection_t *connection = m_connection.get();
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree)
        return;
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t child = children[i];
        const auto geometryCookie = xcb_get_geometry(connection, child);
        const auto attributesCookie = xcb_get_window_attributes(connection, child);
        const auto placeCookie = xcb_translate_coordinates(connection, child, root(), 0, 0);
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection, geometryCookie, nullptr));
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, attributesCookie, nullptr));
        const Reply<xcb_translate_coordinates_reply_t> place(
            xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
        const QString title = QString::fromUtf8(property(child, atom("_NET_WM_NAME")));
        if (geometry && attributes && place)
            into +=
                {child, title, QRect(place->dst_x, place->dst_y, geometry->width, geometry->height),
                 attributes->map_state == XCB_MAP_STATE_VIEWABLE};
        collect(child, into);
    }
}

std::optional<XWindow> XDisplay::window(const QString &title) const
{
    QList<XWindow> all;
    collect(root(), all);
    all.removeIf([&title](const XWindow &window) { return window.title != title; });
    return all.size() == 1 ? std::optional(all.constFirst()) : std::nullopt;
}

QRect XDisplay::frame(const QString &title) const
{
    const std::optional<XWindow> found = window(title);
    return found && found->shown ? found->frame : QRect();
}

QStringList XDisplay::shownTitles() const
{
    QList<XWindow> all;
    collect(root(), all);
    QStringList titles;
    for (const XWindow &window : all) {
        if (window.shown && !window.title.isEmpty())
            titles += window.title;
    }
    titles.sort();
    return titles;
}

QList<QRect> XDisplay::shownOfType(const char *type) const
{
    QList<XWindow> all;
    collect(root(), all);
    QList<QRect> frames;
    for (const XWindow &window : all) {
        if (window.shown && atoms(window.id, "_NET_WM_WINDOW_TYPE").value(0) == QLatin1String(type))
            frames += window.frame;
    }
    return frames;
}

QImage XDisplay::look(const QRect &part) const
{
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        m_connection.get(),
        xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(),
                      static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                      static_cast<std::uint16_t>(part.width()),
                      static_cast<std::uint16_t>(part.height()), ~0U),
        nullptr));
    if (!reply)
        throw std::runtime_error("the test's display shows no picture");
    return QImage(xcb_get_image_data(reply.get()), part.width(), part.height(),
                  QImage::Format_RGB32)
        .copy();
}

void XDisplay::fake(int type, int detail, QPoint at) const
{
    xcb_connection_t *connection = m_connection.get();
    xcb_test_fake_input(connection, static_cast<std::uint8_t>(type),
                        static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, root(),
                        static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 0);
    // An answer says that the server has done what came before.
    const Reply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void XDisplay::point(QPoint at) const
{
    fake(XCB_MOTION_NOTIFY, 0, at);
}

void XDisplay::press(int button) const
{
    fake(XCB_BUTTON_PRESS, button);
}

void XDisplay::release(int button) const
{
    fake(XCB_BUTTON_RELEASE, button);
}

void XDisplay::click(QPoint at) const
{
    point(at);
    press();
    release();
}

void XDisplay::drag(QPoint from, QPoint to) const
{
    static constexpr int kSteps = 5;
    point(from);
    press();
    for (int step = 1; step <= kSteps; ++step)
        point(from + (to - from) * step / kSteps);
    release();
}

void XDisplay::key(quint32 keysym) const
{
    xcb_connection_t *connection = m_connection.get();
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const int first = setup->min_keycode;
    const int count = setup->max_keycode - first + 1;
    const Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        connection,
        xcb_get_keyboard_mapping(connection, static_cast<std::uint8_t>(first),
                                 static_cast<std::uint8_t>(count)),
        nullptr));
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int code = 0; code < count; ++code) {
        if (symbols[code * mapping->keysyms_per_keycode] != keysym)
            continue;
        fake(XCB_KEY_PRESS, first + code);
        fake(XCB_KEY_RELEASE, first + code);
        return;
    }
    throw std::runtime_error("the test's keyboard has no such key");
}

QStringList XDisplay::atoms(quint32 window, const char *name) const
{
    const QByteArray value = property(window, atom(name));
    QStringList names;
    for (qsizetype at = 0; at + 4 <= value.size(); at += 4) {
        quint32 one = 0;
        std::memcpy(&one, value.constData() + at, sizeof one);
        names += atomName(one);
    }
    return names;
}

std::optional<quint32> XDisplay::number(quint32 window, const char *name) const
{
    const QByteArray value = property(window, atom(name));
    if (value.size() < qsizetype(sizeof(quint32)))
        return std::nullopt;
    quint32 first = 0;
    std::memcpy(&first, value.constData(), sizeof first);
    return first;
}

void XDisplay::requestClose(quint32 window) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("_NET_CLOSE_WINDOW");
    xcb_send_event(m_connection.get(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection.get());
}

quint32 XDisplay::openWindow(const QRect &frame) const
{
    xcb_connection_t *connection = m_connection.get();
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root(),
                      static_cast<std::int16_t>(frame.x()), static_cast<std::int16_t>(frame.y()),
                      static_cast<std::uint16_t>(frame.width()),
                      static_cast<std::uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection, window);
    xcb_flush(connection);
    return window;
}

} // namespace pulsebar::e2e
