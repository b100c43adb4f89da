#pragma once

namespace pulsebar {

/// Ends this program with the one that started it. False when that one is gone already.
bool followParent();

} // namespace pulsebar
