#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// What the desktop knows about files and the installed applications.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// The icon that a file manager shows for a file: that of the application whose program it is,
    /// else one for its kind.
    /// @param path absolute path
    /// @return a themed icon's name or an absolute path of an image file; empty without such a file
    virtual QString iconForFile(const QString &path) = 0;

    /// The name by which a file manager shows a file: that of the application whose program it is,
    /// in the user's language; else the file's own.
    virtual QString displayName(const QString &path) = 0;

    /// The absolute path of the program of an application, by the name that the desktop shows for
    /// it or by its program's; compared as it stands. Empty when there is none.
    virtual QString fullPathForApplication(const QString &name) = 0;

    /// The program and the arguments that start the application which a program belongs to.
    /// Empty when it belongs to none.
    /// @param program a path or a name
    virtual QStringList commandForProgram(const QString &program) = 0;
};

} // namespace pulsebar
