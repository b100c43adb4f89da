#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// The folders in which the helper programs are looked up, in order: the one named by
/// $PULSEBAR_LIBEXEC_DIR and no other when that is set; else those of an installation, wherever it
/// was moved to, and of a build tree.
/// @param programFolder the folder of the running program
QStringList helperFolders(const QString &programFolder);

/// @return the absolute path of a helper; empty when it is in none of the folders
QString helperPath(const QString &name, const QStringList &folders);

} // namespace pulsebar
