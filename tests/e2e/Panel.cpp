#include "e2e/Panel.h"

#include <stdexcept>

namespace pulsebar::e2e {

namespace {
const QString kService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kPath = QStringLiteral("/StatusNotifierWatcher");
} // namespace

Panel::Panel(Desktop &desktop)
    : m_desktop(desktop)
{
    if (!desktop.bus().registerObject(kPath, this,
                                      QDBusConnection::ExportScriptableSlots |
                                          QDBusConnection::ExportScriptableProperties) ||
        !desktop.bus().registerService(kService))
        throw std::runtime_error("the test cannot stand for a panel");
}

Panel::~Panel()
{
    m_desktop.bus().unregisterService(kService);
    m_desktop.bus().unregisterObject(kPath);
}

} // namespace pulsebar::e2e
