#pragma once

#include "platform/ProcessNames.h"
#include "platform/TrayDock.h"
#include "platform/WindowHints.h"

#include <memory>

namespace pulsebar {

/// The system tray of the X screen that DISPLAY names (freedesktop System Tray and XEmbed
/// protocols). Nothing without an X server.
std::unique_ptr<TrayDock> makeTrayDock();

/// Extended window manager hints on the same screen. Nothing without an X server.
std::unique_ptr<WindowHints> makeWindowHints();

/// Names from /proc/PID/cmdline.
std::unique_ptr<ProcessNames> makeProcessNames();

} // namespace pulsebar
