#pragma once

#include <QByteArray>
#include <QString>

namespace pulsebar {

/// The path by which this program is to be started at the next login: one that holds after an
/// upgrade. A name that the search path leads to is kept by packages and by links to folders with a
/// version in their names, while the file behind it may go; and a program that runs from its build
/// tree is there for a developer's afternoon, so that an installed one is preferred.
/// @param running    the running program's file, all links resolved
/// @param startedAs  the first word of its command line
/// @param searchPath folders with colons between, as in $PATH; only absolute ones count
/// @return an absolute path
QString lastingProgramPath(const QString &running, const QString &startedAs,
                           const QByteArray &searchPath);

} // namespace pulsebar
