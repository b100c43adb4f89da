#pragma once

#include <QString>

namespace pulsebar {

/// A foreign text as it may stand within a line of ours: control characters, line and paragraph
/// separators, unpaired surrogates and marks that turn the direction of what follows become U+FFFD.
/// A longer text is cut to `longest` UTF-16 units, its end replaced by "…"; no character is halved.
QString plainLine(const QString &text, qsizetype longest = 64);

} // namespace pulsebar
