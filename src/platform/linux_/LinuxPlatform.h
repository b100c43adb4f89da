#pragma once

#include "platform/Platform.h"
#include "platform/linux_/low/Sysroot.h"

namespace pulsebar {

/// Linux behind the contracts.
/// @param root the machine whose /proc and /sys are read. Netlink always asks the running kernel.
std::unique_ptr<Platform> makeLinuxPlatform(const Sysroot &root);

} // namespace pulsebar
