#pragma once

#include <QRect>

#include <span>

namespace pulsebar {

/// Whether rectangles, taken together, leave nothing of one to be seen. Nothing is not hidden, nor
/// is what they cut into very many pieces on the way: other programs choose them, and finding that
/// out must not become work.
bool isHiddenBy(const QRect &rect, std::span<const QRect> above);

} // namespace pulsebar
