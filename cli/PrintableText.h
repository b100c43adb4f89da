#pragma once

#include <QString>

namespace pulsebar::cli {

/// A foreign text as it may stand on a line: control characters and line breaks of any kind become
/// U+FFFD.
QString printableText(QString text);

} // namespace pulsebar::cli
