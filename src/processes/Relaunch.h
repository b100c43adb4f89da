#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

class Workspace;

/// How a program is started again.
struct Relaunch
{
    QStringList command; ///< the program and its arguments; empty when there is none
    QString file;        ///< what the desktop's default program opens instead; empty for nothing
};

/// Decides that, while the program still runs: the command of its desktop entry; else the script
/// that it is, its executable, or what it was called as; else what stands at `path`.
/// @param programs as ProcessTable::programs() tells them. Empty for a process that does not run as
///        this program does: it says itself what it is, and is not started with more rights than it
///        had.
/// @param path what is shown as the process's path; it counts only when it is one of `programs` or
///        a bundle around the first of them
/// @param workspace may be null
Relaunch relaunchOf(const QStringList &programs, const QString &path, Workspace *workspace);

/// Starts a command that outlives this program, in the user's home.
/// @return whether it was started
bool startDetached(const QStringList &command);

} // namespace pulsebar
