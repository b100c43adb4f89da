#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// Where the program's data may be, the best place first: the user's own ($XDG_DATA_HOME/pulsebar),
/// beside the program (in the installed and in the build tree), and where it was to be installed.
/// @param programFolder the folder of the running program
QStringList dataFolders(const QString &programFolder);

} // namespace pulsebar
