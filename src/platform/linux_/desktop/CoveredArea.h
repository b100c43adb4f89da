#pragma once

#include <QRect>

#include <span>

namespace pulsebar {

/// Whether rectangles, taken together, leave nothing of one to be seen. Nothing is not hidden.
bool isHiddenBy(const QRect &rect, std::span<const QRect> above);

} // namespace pulsebar
