#include "platform/linux_/LinuxPlatform.h"

namespace pulsebar {

std::unique_ptr<Platform> makePlatform()
{
    return makeLinuxPlatform(Sysroot::fromEnvironment());
}

} // namespace pulsebar
