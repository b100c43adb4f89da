#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace pulsebar {

/// What `ps -o pid,command` tells about one process.
struct ProcessPath
{
    QString pid; ///< the number as it is printed
    /// The first word of the command line, which is the executable's path or name as the process
    /// has it; for a program inside an application bundle the bundle's path, ending in ".app".
    QString path;
};

/// Reads the first process after the header line. Words end at a blank, so a path that holds one
/// is cut there.
/// @param report what ps wrote, taken as UTF-8
/// @return absent without a process, and when there is no number or no path
std::optional<ProcessPath> parseProcessPath(const QByteArray &report);

} // namespace pulsebar
