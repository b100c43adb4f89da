#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar::cli {

/// Keys of graphs for a terminal, one a line, each line with its end. Processes choose their names:
/// a character in them that would break a line, or that steers the terminal, becomes U+FFFD.
QString linesOfKeys(const QStringList &keys);

} // namespace pulsebar::cli
