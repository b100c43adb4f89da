#include "processes/Relaunch.h"

#include "platform/Workspace.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace pulsebar {

namespace {

bool isProgram(const QString &path)
{
    const QFileInfo file(path);
    return file.isAbsolute() && file.isFile() && file.isExecutable();
}

QStringList installedCommand(const QStringList &programs, Workspace *workspace)
{
    if (!workspace)
        return {};
    for (const QString &program : programs) {
        QStringList command = workspace->commandForProgram(program);
        if (!command.isEmpty())
            return command;
    }
    return {};
}

/// Whether what is shown as the process's path is what the process runs, or the bundle around it.
/// A path is kept by the process number alone, so that it may be that of an earlier process, which
/// chose it.
bool isOfPrograms(const QString &path, const QStringList &programs)
{
    return programs.contains(path) || programs.constFirst().startsWith(path + u'/');
}

} // namespace

Relaunch relaunchOf(const QStringList &programs, const QString &path, Workspace *workspace)
{
    if (programs.isEmpty())
        return {};
    const QStringList command = installedCommand(programs, workspace);
    if (!command.isEmpty())
        return {command, {}};
    // An interpreter's script is the third of them.
    for (const QString &program : {programs.value(2), programs.value(0), programs.value(1)}) {
        if (isProgram(program))
            return {{program}, {}};
    }
    const QFileInfo file(path);
    const bool canBeOpened = file.isAbsolute() && isOfPrograms(path, programs) && file.exists();
    return {{}, canBeOpened ? path : QString()};
}

bool startDetached(const QStringList &command)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // What is meant for this program only.
    for (const QString &name : environment.keys()) {
        if (name.startsWith(QStringLiteral("PULSEBAR_")))
            environment.remove(name);
    }
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(QDir::homePath());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setProgram(command.value(0));
    process.setArguments(command.mid(1));
    return process.startDetached();
}

} // namespace pulsebar
