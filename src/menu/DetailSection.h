#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

namespace pulsebar {

/// The sampler's report as it came. Its row has the view "detailText" and carries the text; what
/// stands for the view opens a window with the text.
MenuItem makeDetailMenu(const QVariantMap &topDict);

} // namespace pulsebar
