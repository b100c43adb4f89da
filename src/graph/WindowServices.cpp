#include "graph/WindowServices.h"

#include "platform/Compositing.h"
#include "platform/WindowCover.h"
#include "util/WindowSystem.h"

#include <QGuiApplication>

namespace pulsebar {

WindowServices::WindowServices(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_placesWindows(pulsebar::placesWindows(QGuiApplication::platformName()))
    , m_bypassesWindowManager(pulsebar::bypassesWindowManager(
          QGuiApplication::platformName(), !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")))
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
