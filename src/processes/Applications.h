#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace pulsebar {

class ApplicationWindows;
class HeldProcess;
class Processes;
class ProcessTable;
class Workspace;

/// What is asked of the system about running programs. What is null is not there: then nothing is
/// known, and nothing happens.
struct ProcessServices
{
    Processes *processes = nullptr;
    ProcessTable *table = nullptr;
    Workspace *workspace = nullptr;
    ApplicationWindows *windows = nullptr;
};

/// The running applications: programs that have windows.
class Applications
{
public:
    explicit Applications(const ProcessServices &services);

    /// Whether an application runs whose name, as the desktop shows it, or whose executable's file
    /// name is exactly `name`.
    bool isApplicationRunning(const QString &name) const;
    /// Brings the first application of that name to the front.
    void activateApplicationWithName(const QString &name) const;
    /// Asks every application to close its windows whose name, as the desktop shows it, or whose
    /// executable's path without its extension is in the list.
    void quitApplicationWithName(const QStringList &names) const;

    /// Brings the windows of a process to the front; without windows, those of the nearest process
    /// that it comes from and that has some: a browser's tab is a process of its own.
    /// @return whether there were any
    bool activate(const std::shared_ptr<HeldProcess> &process) const;

private:
    struct Application
    {
        qint64 pid = 0;
        QString localizedName;
        QString executable;
    };

    void eachApplication(const std::function<bool(const Application &)> &visit) const;

    ProcessServices m_services;
};

/// How many processes have that short command name, ignoring case. An absent name (a null QString)
/// is 0; 4294967295 when the table of processes cannot be read.
quint32 isProcessRunning(const QString &name, const ProcessTable *table);

} // namespace pulsebar
