#pragma once

#include "platform/ProcessNames.h"
#include "platform/TrayDock.h"
#include "platform/WindowHints.h"

#include <memory>

namespace pulsebar {

/// What the panel's item asks of the desktop beside the session bus. Each member may be null: then
/// the item does without a tray, without workspaces, or without knowing its host.
struct Desktop
{
    std::unique_ptr<TrayDock> trayDock;
    std::unique_ptr<WindowHints> windowHints;
    std::unique_ptr<ProcessNames> processNames;
};

/// The desktop this process shows itself on; to be asked once, by a program that has a display.
Desktop makeDesktop();

} // namespace pulsebar
