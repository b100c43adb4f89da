#pragma once

#include "platform/AdministratorRights.h"
#include "platform/ApplicationWindows.h"
#include "platform/Compositing.h"
#include "platform/FileViewer.h"
#include "platform/Notifications.h"
#include "platform/ProcessNames.h"
#include "platform/TrayDock.h"
#include "platform/UrlOpener.h"
#include "platform/WindowCover.h"
#include "platform/WindowHints.h"

#include <memory>

namespace pulsebar {

/// The system tray of the X screen that DISPLAY names (freedesktop System Tray and XEmbed
/// protocols). Nothing without an X server.
std::unique_ptr<TrayDock> makeTrayDock();

/// Extended window manager hints on the same screen. Nothing without an X server.
std::unique_ptr<WindowHints> makeWindowHints();

/// Whether a compositing manager runs on the same screen. Nothing without an X server.
std::unique_ptr<Compositing> makeCompositing();

/// Which windows managed ones hide on the same screen, by the window manager's own list of how they
/// lie over each other. Nothing without an X server.
std::unique_ptr<WindowCover> makeWindowCover();

/// Names from /proc/PID/cmdline.
std::unique_ptr<ProcessNames> makeProcessNames();

/// Windows of the X screen that DISPLAY names at the time of the question (EWMH, ICCCM). Without an
/// X server nobody has windows.
std::unique_ptr<ApplicationWindows> makeApplicationWindows();

/// The file manager on the session bus.
std::unique_ptr<FileViewer> makeFileViewer();

/// The notification server on the session bus.
std::unique_ptr<Notifications> makeNotifications();

/// polkit's pkexec(1).
/// @param pkexec its absolute path
std::unique_ptr<AdministratorRights>
makeAdministratorRights(const QString &pkexec = QStringLiteral("/usr/bin/pkexec"));

/// Opens with xdg-open, the desktops' common door to the user's chosen programs.
std::unique_ptr<UrlOpener> makeUrlOpener();

} // namespace pulsebar
