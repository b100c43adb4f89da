#include "platform/Desktop.h"
#include "platform/linux_/desktop/LinuxDesktop.h"

namespace pulsebar {

Desktop makeDesktop()
{
    Desktop desktop;
    desktop.trayDock = makeTrayDock();
    desktop.windowHints = makeWindowHints();
    desktop.windowCover = makeWindowCover();
    desktop.compositing = makeCompositing();
    desktop.processNames = makeProcessNames();
    desktop.applicationWindows = makeApplicationWindows();
    desktop.fileViewer = makeFileViewer();
    desktop.notifications = makeNotifications();
    desktop.administratorRights = makeAdministratorRights();
    desktop.urlOpener = makeUrlOpener();
    return desktop;
}

} // namespace pulsebar
