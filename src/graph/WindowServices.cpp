#include "graph/WindowServices.h"

#include "platform/Desktop.h"
#include "util/WindowSystem.h"

#include <QGuiApplication>

namespace pulsebar {

namespace {

bool insideWayland()
{
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

WindowServices::Parts WindowServices::partsOf(const Desktop &desktop)
{
    if (QGuiApplication::platformName() != u"xcb") {
        return {};
    }
    // A Wayland compositor composes everything, and what lies over our windows it does not tell.
    if (insideWayland()) {
        return {desktop.windowHints.get(), nullptr, nullptr};
    }
    return {desktop.windowHints.get(), desktop.compositing.get(), desktop.windowCover.get()};
}

WindowServices::WindowServices(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_placesWindows(pulsebar::placesWindows(QGuiApplication::platformName()))
    , m_bypassesWindowManager(
          pulsebar::bypassesWindowManager(QGuiApplication::platformName(), insideWayland()))
{
    if (m_parts.compositing) {
        m_parts.compositing->setListener([this] { Q_EMIT compositingChanged(); });
    }
    if (m_parts.cover) {
        m_parts.cover->setUncoveredListener([this] { Q_EMIT uncovered(); });
    }
}

WindowServices::~WindowServices()
{
    if (m_parts.compositing) {
        m_parts.compositing->setListener({});
    }
    if (m_parts.cover) {
        m_parts.cover->setUncoveredListener({});
    }
}

bool WindowServices::composes() const
{
    return !m_parts.compositing || m_parts.compositing->isRunning();
}

bool WindowServices::isCovered(quintptr window) const
{
    return m_parts.cover && m_parts.cover->isCovered(window);
}

} // namespace pulsebar
