#include "util/WindowSystem.h"

namespace pulsebar {

bool placesWindows(QStringView platform)
{
    return platform != u"wayland";
}

bool bypassesWindowManager(QStringView platform, bool insideWayland)
{
    return platform == u"xcb" && insideWayland;
}

} // namespace pulsebar
