#pragma once

#include "platform/AdministratorRights.h"
#include "platform/ApplicationWindows.h"
#include "platform/FileViewer.h"
#include "platform/ProcessTable.h"
#include "platform/Processes.h"
#include "platform/UrlOpener.h"

#include <QMap>

#include <vector>

/// Processes and a desktop whose answers a test sets by hand, and which note what they were asked.
namespace pulsebar {

struct FakeHeldProcess : HeldProcess
{
    explicit FakeHeldProcess(qint64 itsNumber)
        : number(itsNumber)
    {
    }
    qint64 pid() const override { return number; }
    quint64 startTime() const override { return start; }
    bool isRunning() const override { return running; }
    bool askToEnd() override
    {
        ++askedToEnd;
        return running;
    }
    int endDescriptor() const override { return descriptor; }

    qint64 number;
    quint64 start = 100;
    bool running = true;
    int askedToEnd = 0;
    int descriptor = -1;
};

struct FakeProcesses : Processes
{
    quint64 now() const override { return 1000; }
    std::shared_ptr<HeldProcess> hold(const QString &pid, quint64) override
    {
        return known.value(pid.toLongLong());
    }
    QMap<qint64, std::shared_ptr<FakeHeldProcess>> known;
};

struct FakeProcessTable : ProcessTable
{
    std::optional<QStringList> shortNames() const override { return names; }
    std::shared_ptr<HeldProcess> parent(const HeldProcess &process) override
    {
        return parents.value(process.pid());
    }
    QStringList programs(const HeldProcess &process) const override
    {
        return programsOf.value(process.pid());
    }
    std::optional<QStringList> names;
    QMap<qint64, std::shared_ptr<FakeHeldProcess>> parents;
    QMap<qint64, QStringList> programsOf;
};

struct FakeWindows : ApplicationWindows
{
    QVector<qint64> owners() const override { return pids; }
    bool raise(qint64 pid) override
    {
        if (pids.contains(pid))
            raised.append(pid);
        return pids.contains(pid);
    }
    bool askToClose(qint64 pid) override
    {
        if (pids.contains(pid))
            closed.append(pid);
        return pids.contains(pid);
    }
    QVector<qint64> pids;
    QVector<qint64> raised;
    QVector<qint64> closed;
};

struct FakeFileViewer : FileViewer
{
    void showFile(const QString &path, std::function<void()> otherwise) override
    {
        shown.append(path);
        if (isMissing)
            otherwise();
    }
    bool isMissing = false;
    QStringList shown;
};

struct FakeOpener : UrlOpener
{
    bool open(const QUrl &url) override
    {
        opened.append(url.toLocalFile());
        return true;
    }
    QStringList opened;
};

struct FakeRights : AdministratorRights
{
    struct Run : PrivilegedRun
    {
        explicit Run(int &runs)
            : alive(runs)
        {
            ++alive;
        }
        ~Run() override { --alive; }
        Run(const Run &) = delete;
        Run &operator=(const Run &) = delete;
        int &alive;
    };
    std::unique_ptr<PrivilegedRun> run(const QString &program, const QStringList &arguments,
                                       std::function<void()> whenEnded) override
    {
        commands.append(program + u' ' + arguments.join(u' '));
        ended.push_back(std::move(whenEnded));
        return std::make_unique<Run>(waiting);
    }
    QStringList commands;
    std::vector<std::function<void()>> ended;
    int waiting = 0;
};

} // namespace pulsebar
