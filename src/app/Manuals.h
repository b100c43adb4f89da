#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// Where the manual may be, the best place first: beside the program (in the installed and in the
/// build tree), in the place it was to be installed in, and instead of it the read-me.
/// @param programFolder the folder of the running program
QStringList manualPlaces(const QString &programFolder);

} // namespace pulsebar
