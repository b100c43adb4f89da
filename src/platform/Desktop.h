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

/// What the program asks of the desktop beside the session bus. Each member may be null: then the
/// item does without a tray, without workspaces, or without knowing its host, no window counts as
/// covered, and the actions that
/// need windows, a file manager, an administrator or another program to open something do nothing.
struct Desktop
{
    std::unique_ptr<TrayDock> trayDock;
    std::unique_ptr<WindowHints> windowHints;
    std::unique_ptr<WindowCover> windowCover;
    std::unique_ptr<Compositing> compositing; ///< null: windows are translucent always
    std::unique_ptr<ProcessNames> processNames;
    std::unique_ptr<ApplicationWindows> applicationWindows;
    std::unique_ptr<FileViewer> fileViewer;
    std::unique_ptr<Notifications> notifications; ///< null: nothing is told beside the item
    std::unique_ptr<AdministratorRights> administratorRights;
    std::unique_ptr<UrlOpener> urlOpener;
};

/// The desktop this process shows itself on; to be asked once, by a program that has a display.
Desktop makeDesktop();

} // namespace pulsebar
