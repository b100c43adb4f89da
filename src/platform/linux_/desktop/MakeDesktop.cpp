#include "platform/Desktop.h"
#include "platform/linux_/desktop/LinuxDesktop.h"

namespace pulsebar {

Desktop makeDesktop()
{
    return {makeTrayDock(), makeWindowHints(), makeProcessNames()};
}

} // namespace pulsebar
