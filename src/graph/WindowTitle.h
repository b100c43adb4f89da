#pragma once

#include <QString>

namespace pulsebar {

/// A text as the title of a window: the toolkit takes a placeholder of its own ("[*]") out of
/// titles, be it part of a name or not.
QString literalWindowTitle(QString text);

} // namespace pulsebar
