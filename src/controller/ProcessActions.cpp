#include "controller/ProcessActions.h"

#include "engine/TopMonitor.h"
#include "platform/ApplicationWindows.h"
#include "platform/FileViewer.h"
#include "platform/ProcessTable.h"
#include "platform/Processes.h"
#include "platform/UrlOpener.h"
#include "platform/Workspace.h"
#include "processes/Relaunch.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/ProcessNumber.h"
#include "util/Text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <chrono>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logActions, "pulsebar.actions")

using namespace std::chrono_literals;

constexpr auto timeBeforeRelaunch = 1500ms;

const QString behindNumber = QStringLiteral("//");

/// A process's submenu is also the key of its graph.
QString processKey(const QString &title)
{
    const QString prefix = graphkeys::process(QString());
    return title.startsWith(prefix) ? title.mid(prefix.size()) : title;
}

/// Why the row's process must not be signalled; empty when it may be.
QString objection(const QString &number, const HeldProcess *process)
{
    const auto shown = processNumber(number);
    if (!shown)
        return QStringLiteral("\"%1\" is no number of a process").arg(number);
    if (process == nullptr)
        return QStringLiteral("process %1 is not the one that was listed").arg(number);
    if (process->pid() != *shown)
        return QStringLiteral("process %1 stands in the row of another").arg(number);
    if (!process->isRunning())
        return QStringLiteral("process %1 has ended").arg(number);
    return {};
}

bool mayBeSignalled(const QString &number, const HeldProcess *process)
{
    const QString why = objection(number, process);
    if (!why.isEmpty())
        qCWarning(logActions).noquote() << why + QStringLiteral("; nothing is sent");
    return why.isEmpty();
}

Question forceQuitQuestion(const HeldProcess &process, const QString &title,
                           const char *informativeText)
{
    Question question;
    question.key = QStringLiteral("%1 %2").arg(process.pid()).arg(process.startTime());
    question.title = title;
    question.message =
        localizedString(QStringLiteral("The editting data of this process may be lost"));
    question.informativeText = localizedString(QString::fromLatin1(informativeText));
    question.cancel = localizedString(QStringLiteral("Cancel"));
    question.proceed = localizedString(QStringLiteral("Force Quit"));
    return question;
}

} // namespace

ProcessActions::ProcessActions(TopMonitor &monitor, const ProcessActionParts &parts)
    : m_monitor(monitor)
    , m_parts(parts)
    , m_applications(parts.services)
    , m_forceQuit(parts.administratorRights, parts.killProgram)
{
}

QString ProcessActions::processPathStringForMenuItem(const Menu &submenu) const
{
    const QString key = processKey(submenu.title());
    const Text pid = substringTo(key, behindNumber);
    QString path = pid ? m_monitor.pathForPID(*pid) : QString();
    if (!path.isEmpty())
        return path;
    const Text name = substringFrom(key, behindNumber);
    return name && m_parts.services.workspace
               ? m_parts.services.workspace->fullPathForApplication(*name)
               : QString();
}

QString ProcessActions::processNumberStringForMenuItem(const Menu &submenu)
{
    if (submenu.isEmpty())
        return {};
    const QString dash = QStringLiteral("-");
    const Text number = substringFrom(submenu.items().front().title, QStringLiteral(": "));
    return (number && number->contains(dash) ? substringTo(number, dash) : number)
        .value_or(QString());
}

void ProcessActions::chooseProcess(const MenuItem &item)
{
    const Text name = substringFrom(item.title, QStringLiteral(" : "));
    if (!name)
        return;
    if (item.process)
        m_applications.activate(item.process);
    else if (m_applications.isApplicationRunning(*name))
        m_applications.activateApplicationWithName(*name);
}

/// The file that a path means. A process may have been started by a bare name or from within
/// another folder; then the system knows better.
QString ProcessActions::fileOf(const QString &path, const MenuItem &item) const
{
    if (path.startsWith(u'/'))
        return path;
    const ProcessServices &services = m_parts.services;
    QString program = item.process && services.table
                          ? services.table->programs(*item.process).value(0)
                          : QString();
    if (!program.isEmpty() || !services.workspace)
        return program;
    return services.workspace->fullPathForApplication(path);
}

void ProcessActions::openFile(const QString &path) const
{
    if (m_parts.opener != nullptr)
        m_parts.opener->open(QUrl::fromLocalFile(path));
}

void ProcessActions::showProcessInFinder(const Menu &menu, const MenuItem &item)
{
    const QString path = processPathStringForMenuItem(menu);
    const QString file = path.isEmpty() ? QString() : fileOf(path, item);
    if (file.isEmpty())
        return;
    const auto openFolder = [this, folder = QFileInfo(file).absolutePath()] {
        if (QFileInfo(folder).isDir())
            openFile(folder);
    };
    if (m_parts.fileViewer)
        m_parts.fileViewer->showFile(file, openFolder);
    else
        openFolder();
}

void ProcessActions::quitProcess(const Menu &menu, const MenuItem &item,
                                 Qt::KeyboardModifiers modifiers)
{
    const ProcessServices &services = m_parts.services;
    const QString path = processPathStringForMenuItem(menu);
    const QString number = processNumberStringForMenuItem(menu);
    if (path.isEmpty()) {
        qCWarning(logActions).noquote()
            << QStringLiteral("the path of process %1 is not known; nothing is sent").arg(number);
        return;
    }
    // Others may go by the same name, and a process may go by the name of others: without the
    // process that the user saw there is nobody to ask.
    if (!mayBeSignalled(number, item.process.get()))
        return;
    HeldProcess &process = *item.process;
    const bool again = modifiers.testFlag(Qt::AltModifier);
    const QStringList programs =
        again && services.table ? services.table->programs(process) : QStringList();
    askToQuit(process);
    if (again)
        relaunchLater(programs, path);
}

void ProcessActions::quitProcess(const std::shared_ptr<HeldProcess> &process)
{
    if (process && mayBeSignalled(QString::number(process->pid()), process.get()))
        askToQuit(*process);
}

void ProcessActions::askToQuit(HeldProcess &process) const
{
    const ProcessServices &services = m_parts.services;
    // None of this program's own windows ends it when it is closed.
    const bool hasWindows = services.windows && process.pid() != QCoreApplication::applicationPid();
    const bool asked = hasWindows && services.windows->askToClose(process.pid());
    if (!asked && !process.askToEnd())
        qCWarning(logActions) << "process" << process.pid() << "cannot be asked to end";
}

void ProcessActions::relaunchLater(const QStringList &programs, const QString &path)
{
    const Relaunch relaunch = relaunchOf(programs, path, m_parts.services.workspace);
    if (relaunch.command.isEmpty() && relaunch.file.isEmpty()) {
        qCWarning(logActions).noquote() << path << "cannot be started again";
        return;
    }
    QTimer::singleShot(timeBeforeRelaunch, this, [this, relaunch] {
        if (relaunch.command.isEmpty())
            openFile(relaunch.file);
        else if (!startDetached(relaunch.command))
            qCWarning(logActions).noquote() << relaunch.command.front() << "does not start";
    });
}

void ProcessActions::killProcess(const Menu &menu, const MenuItem &item)
{
    askToForceQuit(
        menu, item, "First of all, please try quit the app normally.",
        [this](const std::shared_ptr<HeldProcess> &process) { m_forceQuit.kill(*process); });
}

void ProcessActions::killProcessAsRoot(const Menu &menu, const MenuItem &item)
{
    askToForceQuit(
        menu, item, "First of all, please try quit the app with normal procedure.",
        [this](const std::shared_ptr<HeldProcess> &process) { m_forceQuit.killAsRoot(process); });
}

/// What cannot be done is not asked about; what is true at the question need not be at the answer,
/// so that whoever ends the process looks again.
void ProcessActions::askToForceQuit(
    const Menu &menu, const MenuItem &item, const char *informativeText,
    const std::function<void(const std::shared_ptr<HeldProcess> &)> &end)
{
    const QString number = processNumberStringForMenuItem(menu);
    if (!mayBeSignalled(number, item.process.get()) || !m_parts.ask)
        return;
    const Text name = substringFrom(processKey(menu.title()), behindNumber);
    const QString title = name ? QStringLiteral("%1 (%2)").arg(*name, number) : number;
    const QPointer<ProcessActions> self = this;
    m_parts.ask(forceQuitQuestion(*item.process, title, informativeText),
                [self, process = item.process, end](bool proceed) {
                    if (proceed && self)
                        end(process);
                });
}

} // namespace pulsebar
