#include "processes/Applications.h"

#include "platform/ApplicationWindows.h"
#include "platform/ProcessTable.h"
#include "platform/Processes.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <limits>

namespace pulsebar {

namespace {

// Deeper than any chain of launchers; what was taken over in between may not make a circle of it.
constexpr int mostAncestors = 32;

QString lastComponent(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString withoutExtension(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > path.lastIndexOf(u'/') + 1 ? path.first(dot) : path;
}

} // namespace

Applications::Applications(const ProcessServices &services)
    : m_services(services)
{
}

/// Visits the applications of this user until one is accepted.
void Applications::eachApplication(const std::function<bool(const Application &)> &visit) const
{
    if (!m_services.windows || !m_services.processes || !m_services.table)
        return;
    const auto pids = m_services.windows->owners();
    for (const qint64 pid : pids) {
        const auto held =
            m_services.processes->hold(QString::number(pid), m_services.processes->now());
        Application application;
        application.pid = pid;
        application.executable = held ? m_services.table->programs(*held).value(0) : QString();
        if (application.executable.isEmpty())
            continue;
        if (m_services.workspace)
            application.localizedName = m_services.workspace->displayName(application.executable);
        if (visit(application))
            return;
    }
}

bool Applications::isApplicationRunning(const QString &name) const
{
    bool runs = false;
    eachApplication([&](const Application &application) {
        runs = application.localizedName == name || lastComponent(application.executable) == name;
        return runs;
    });
    return runs;
}

void Applications::activateApplicationWithName(const QString &name) const
{
    eachApplication([&](const Application &application) {
        const bool found =
            application.localizedName == name || lastComponent(application.executable) == name;
        return found && m_services.windows->raise(application.pid);
    });
}

void Applications::quitApplicationWithName(const QStringList &names) const
{
    eachApplication([&](const Application &application) {
        if (names.contains(application.localizedName) ||
            names.contains(withoutExtension(application.executable)))
            m_services.windows->askToClose(application.pid);
        return false;
    });
}

bool Applications::activate(const std::shared_ptr<HeldProcess> &process) const
{
    if (!m_services.windows)
        return false;
    auto candidate = process;
    for (int step = 0; candidate && step <= mostAncestors; ++step) {
        if (candidate->isRunning() && m_services.windows->raise(candidate->pid()))
            return true;
        candidate = m_services.table ? m_services.table->parent(*candidate) : nullptr;
    }
    return false;
}

quint32 isProcessRunning(const QString &name, const ProcessTable *table)
{
    if (name.isNull())
        return 0;
    const auto names = table ? table->shortNames() : std::nullopt;
    if (!names)
        return std::numeric_limits<quint32>::max();
    return static_cast<quint32>(
        std::count_if(names->begin(), names->end(), [&name](const QString &candidate) {
            return candidate.compare(name, Qt::CaseInsensitive) == 0;
        }));
}

} // namespace pulsebar
