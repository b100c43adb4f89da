#pragma once

#include "menu/Menu.h"
#include "menu/Question.h"
#include "processes/Applications.h"
#include "processes/ForceQuit.h"

#include <QObject>

#include <functional>

namespace pulsebar {

class AdministratorRights;
class FileViewer;
class TopMonitor;
class UrlOpener;

/// What the actions on processes are made of; what is null or empty is not there.
struct ProcessActionParts
{
    ProcessServices services = {};
    FileViewer *fileViewer = nullptr;
    AdministratorRights *administratorRights = nullptr;
    UrlOpener *opener = nullptr;
    Ask ask = {};
    QString killProgram = QStringLiteral("/bin/kill");
};

/// Carries out what the user chose in a process's row or its submenu. The texts of the menu say
/// which file is meant; which process is acted on is decided by the row's held process alone, since
/// a process chooses its name, its arguments and so its path itself.
///
/// The submenu is titled with the process number, "//" and the name ("412//Safari"), perhaps behind
/// a graph's prefix ("CPUUsage__412//Safari"); its first row ends in ": " and the number.
class ProcessActions : public QObject
{
public:
    /// The monitor and the parts must live longer.
    ProcessActions(TopMonitor &monitor, const ProcessActionParts &parts);

    /// Brings the application to the front whose name follows " : " in the row's title.
    void chooseProcess(const MenuItem &item);
    /// Shows the process's file in the file manager.
    void showProcessInFinder(const Menu &menu, const MenuItem &item);
    /// Asks the application to close its windows, or a program without windows to end; with the Alt
    /// key it is started again after 1.5 seconds.
    void quitProcess(const Menu &menu, const MenuItem &item, Qt::KeyboardModifiers modifiers);
    /// The same for a process that was chosen elsewhere than in its row.
    void quitProcess(const std::shared_ptr<HeldProcess> &process);
    /// Asks first, and then ends the process for good.
    void killProcess(const Menu &menu, const MenuItem &item);
    void killProcessAsRoot(const Menu &menu, const MenuItem &item);

    /// The path that is known for the process whose submenu it is, else that of the application of
    /// its name; empty without one.
    QString processPathStringForMenuItem(const Menu &submenu) const;
    /// The process number in the submenu's first row, without what follows a "-"; empty without
    /// one.
    static QString processNumberStringForMenuItem(const Menu &submenu);

private:
    void askToQuit(HeldProcess &process) const;
    void openFile(const QString &path) const;
    QString fileOf(const QString &path, const MenuItem &item) const;
    void relaunchLater(const QStringList &programs, const QString &path);
    void askToForceQuit(const Menu &menu, const MenuItem &item, const char *informativeText,
                        const std::function<void(const std::shared_ptr<HeldProcess> &)> &end);

    TopMonitor &m_monitor;
    ProcessActionParts m_parts;
    Applications m_applications;
    ForceQuit m_forceQuit;
};

} // namespace pulsebar
