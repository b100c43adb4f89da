#pragma once

#include "platform/Platform.h"

namespace pulsebar {

/// A system that offers nothing: every contract is there and every answer is "absent". It is the
/// starting point of a port, and shows that the rest of the program lives without any source.
std::unique_ptr<Platform> makeNonePlatform();

} // namespace pulsebar
