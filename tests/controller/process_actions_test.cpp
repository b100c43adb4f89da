#include "FakeProcesses.h"
#include "controller/ProcessActions.h"
#include "engine/TopMonitor.h"
#include "processes/Applications.h"
#include "processes/ForceQuit.h"
#include "processes/Relaunch.h"
#include "support/FakeSources.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/WaitFor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace pulsebar {
namespace {

class ProcessActionsTest : public testing::Test
{
protected:
    ProcessActionsTest()
        : m_monitor(sources(), SamplerCommand{[] { return QString(); }})
    {
        script("kill", "exit 0");
        m_monitor.readProcessPath("PID COMMAND\n412 /opt/safari/safari --x");
    }

    /// A program that notes how it was called.
    QString script(const char *name, const QByteArray &line)
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no place for a script");
        file.write("#!/bin/sh\necho \"" + QByteArray(name) + " $@\" >>" + path("calls").toUtf8() +
                   '\n' + line + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path(name);
    }
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QStringList calls() const
    {
        QFile file(path("calls"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    ProcessActions &actions()
    {
        if (!m_actions) {
            ProcessActionParts parts;
            parts.services = {&m_processes, &m_table, &m_workspace, &m_windows};
            parts.fileViewer = &m_viewer;
            parts.administratorRights = &m_rights;
            parts.opener = &m_opener;
            parts.ask = [this](const Question &question, std::function<void(bool)> answer) {
                m_questions.push_back(question);
                m_answers.push_back(std::move(answer));
            };
            parts.killProgram = path("kill");
            m_actions = std::make_unique<ProcessActions>(m_monitor, parts);
        }
        return *m_actions;
    }
    static Menu submenu(const char *title, const char *firstRow = "PID: 412")
    {
        Menu menu(QString::fromUtf8(title));
        menu.addDummyItemWithTitle(QString::fromUtf8(firstRow), ItemTarget::Controller);
        return menu;
    }
    MenuItem row(const char *title = "Quit") const
    {
        MenuItem item;
        item.title = QString::fromUtf8(title);
        item.process = m_safari;
        return item;
    }
    static MenuItem rowOfNobody(const char *title)
    {
        MenuItem item;
        item.title = QString::fromUtf8(title);
        return item;
    }

    QTemporaryDir m_folder;
    std::shared_ptr<FakeHeldProcess> m_safari = std::make_shared<FakeHeldProcess>(412);
    FakeProcesses m_processes;
    FakeProcessTable m_table;
    FakeWindows m_windows;
    FakeFileViewer m_viewer;
    FakeOpener m_opener;
    FakeRights m_rights;
    fakes::WorkspaceAnswer m_workspace;
    std::vector<Question> m_questions;
    std::vector<std::function<void(bool)>> m_answers;

private:
    static MonitorSources sources()
    {
        MonitorSources sources;
        sources.pathQuery.program = QStringLiteral("/nonexistent/ps");
        return sources;
    }

protected:
    TopMonitor m_monitor;

private:
    std::unique_ptr<ProcessActions> m_actions;
};

QString numberIn(const char *firstRow)
{
    Menu menu;
    menu.addDummyItemWithTitle(QString::fromUtf8(firstRow), ItemTarget::None);
    return ProcessActions::processNumberStringForMenuItem(menu);
}

TEST(ProcessNumberString, IsWhatFollowsTheLabel)
{
    EXPECT_EQ(numberIn("PID: 412"), QStringLiteral("412"));
    EXPECT_EQ(numberIn("PID: 412-2"), QStringLiteral("412"));
    EXPECT_EQ(numberIn("PID: -412"), QString());
    EXPECT_EQ(numberIn("PID: "), QString());
    EXPECT_EQ(numberIn("PID"), QString());
    EXPECT_EQ(numberIn("User: root"), QStringLiteral("root"));
    EXPECT_EQ(ProcessActions::processNumberStringForMenuItem(Menu()), QString());
}

TEST_F(ProcessActionsTest, ThePathIsTheNumbersOrElseTheNames)
{
    m_workspace.paths[QStringLiteral("Safari")] = QStringLiteral("/opt/other/safari");
    m_workspace.paths[QStringLiteral("a//b")] = QStringLiteral("/opt/ab");
    const auto pathOf = [this](const char *title) {
        return actions().processPathStringForMenuItem(submenu(title));
    };
    EXPECT_EQ(pathOf("412//Safari"), QStringLiteral("/opt/safari/safari"));
    EXPECT_EQ(pathOf("CPUUsage__412//Safari"), QStringLiteral("/opt/safari/safari"));
    EXPECT_EQ(pathOf("CPUUsage__412//a//b : -%__\xe2\x82\xac"),
              QStringLiteral("/opt/safari/safari"));
    EXPECT_EQ(pathOf("413//Safari"), QStringLiteral("/opt/other/safari"));
    EXPECT_EQ(pathOf("413//a//b"), QStringLiteral("/opt/ab"));
    EXPECT_EQ(pathOf("414//Unknown"), QString());
    EXPECT_EQ(pathOf("Safari"), QString());
    EXPECT_EQ(pathOf("412"), QString());
    EXPECT_EQ(pathOf("//Safari"), QStringLiteral("/opt/other/safari"));
}

TEST_F(ProcessActionsTest, ChoosingRaisesTheWindowsOfTheHeldProcess)
{
    m_windows.pids = {7, 412};
    actions().chooseProcess(row("12.5% : Something else"));
    EXPECT_EQ(m_windows.raised, QVector<qint64>{412});
    actions().chooseProcess(row("12.5%: Safari"));
    actions().chooseProcess(row("Safari : "));
    EXPECT_EQ(m_windows.raised, QVector<qint64>{412});
}

TEST_F(ProcessActionsTest, AProcessWithoutWindowsRaisesTheOneItComesFrom)
{
    const auto browser = std::make_shared<FakeHeldProcess>(100);
    const auto between = std::make_shared<FakeHeldProcess>(200);
    m_table.parents = {{412, between}, {200, browser}};
    m_windows.pids = {100};
    actions().chooseProcess(row("12.5% : Web Content"));
    EXPECT_EQ(m_windows.raised, QVector<qint64>{100});
    // One that has ended has no say about whose window that is.
    m_windows.pids = {412};
    m_safari->running = false;
    actions().chooseProcess(row("12.5% : Web Content"));
    EXPECT_EQ(m_windows.raised, QVector<qint64>{100});
}

TEST_F(ProcessActionsTest, AncestorsThatGoInCirclesAreSurvived)
{
    m_table.parents = {{412, m_safari}};
    actions().chooseProcess(row("1.0% : x"));
    EXPECT_TRUE(m_windows.raised.isEmpty());
}

TEST_F(ProcessActionsTest, WithoutAHeldProcessTheNameDecides)
{
    m_processes.known[50] = std::make_shared<FakeHeldProcess>(50);
    m_processes.known[51] = std::make_shared<FakeHeldProcess>(51);
    m_table.programsOf = {{50, {QStringLiteral("/opt/finder/find-er")}},
                          {51, {QStringLiteral("/opt/other")}}};
    m_workspace.names[QStringLiteral("/opt/finder/find-er")] = QStringLiteral("Finder");
    m_windows.pids = {51, 50};
    actions().chooseProcess(rowOfNobody("12.5% : Finder"));
    actions().chooseProcess(rowOfNobody("12.5% : find-er"));
    actions().chooseProcess(rowOfNobody("12.5% : finder"));
    actions().chooseProcess(rowOfNobody("12.5% : Find"));
    EXPECT_EQ(m_windows.raised, (QVector<qint64>{50, 50}));
}

TEST_F(ProcessActionsTest, ShowsTheFileInTheFileManager)
{
    actions().showProcessInFinder(submenu("CPUUsage__412//Safari"), row());
    EXPECT_EQ(m_viewer.shown, QStringList{QStringLiteral("/opt/safari/safari")});
    EXPECT_TRUE(m_opener.opened.isEmpty());
    actions().showProcessInFinder(submenu("9//Unknown"), row());
    EXPECT_EQ(m_viewer.shown.size(), 1);
}

TEST_F(ProcessActionsTest, WithoutAFileManagerTheFolderIsOpened)
{
    m_viewer.isMissing = true;
    m_monitor.readProcessPath("PID COMMAND\n412 " + path("kill").toUtf8());
    actions().showProcessInFinder(submenu("412//x"), row());
    EXPECT_EQ(m_opener.opened, QStringList{m_folder.path()});
    // A folder that is none is not opened.
    m_monitor.readProcessPath("PID COMMAND\n412 /nonexistent/folder/file");
    actions().showProcessInFinder(submenu("412//x"), row());
    EXPECT_EQ(m_opener.opened.size(), 1);
}

TEST_F(ProcessActionsTest, ABareNameMeansTheFileThatTheSystemKnows)
{
    m_monitor.readProcessPath("PID COMMAND\n412 firefox");
    m_table.programsOf[412] = {QStringLiteral("/usr/lib/firefox/firefox")};
    m_workspace.paths[QStringLiteral("firefox")] = QStringLiteral("/usr/bin/firefox");
    actions().showProcessInFinder(submenu("412//x"), row());
    m_table.programsOf.clear();
    actions().showProcessInFinder(submenu("412//x"), row());
    EXPECT_EQ(m_viewer.shown, (QStringList{QStringLiteral("/usr/lib/firefox/firefox"),
                                           QStringLiteral("/usr/bin/firefox")}));
}

TEST_F(ProcessActionsTest, QuittingClosesWindowsOrElseAsksTheProcessToEnd)
{
    m_windows.pids = {412};
    actions().quitProcess(submenu("412//Safari"), row(), {});
    EXPECT_EQ(m_windows.closed, QVector<qint64>{412});
    EXPECT_EQ(m_safari->askedToEnd, 0);
    m_windows.pids = {7};
    actions().quitProcess(submenu("412//Safari"), row(), {});
    EXPECT_EQ(m_safari->askedToEnd, 1);
    EXPECT_EQ(m_windows.closed.size(), 1);
}

TEST_F(ProcessActionsTest, AHeldProcessIsQuitWithoutItsRow)
{
    actions().quitProcess(m_safari);
    EXPECT_EQ(m_safari->askedToEnd, 1);
    m_windows.pids = {412};
    actions().quitProcess(m_safari);
    EXPECT_EQ(m_windows.closed, QVector<qint64>{412});
    EXPECT_EQ(m_safari->askedToEnd, 1);
    m_safari->running = false;
    actions().quitProcess(m_safari);
    actions().quitProcess(nullptr);
    EXPECT_EQ(m_windows.closed.size(), 1);
    EXPECT_EQ(m_safari->askedToEnd, 1);
}

TEST_F(ProcessActionsTest, QuittingThisProgramAsksItToEndAndClosesNoneOfItsWindows)
{
    const QByteArray number = QByteArray::number(QCoreApplication::applicationPid());
    const auto ourselves = std::make_shared<FakeHeldProcess>(QCoreApplication::applicationPid());
    m_monitor.readProcessPath("PID COMMAND\n" + number + " /usr/bin/pulsebar");
    m_windows.pids = {ourselves->pid()};
    MenuItem item = row();
    item.process = ourselves;
    actions().quitProcess(submenu(number + "//pulsebar", "PID: " + number), item, {});
    EXPECT_EQ(ourselves->askedToEnd, 1);
    EXPECT_TRUE(m_windows.closed.isEmpty());
}

TEST_F(ProcessActionsTest, NothingIsAskedOfAProcessThatHasEndedOrHasNoPath)
{
    const LogCapture log;
    actions().quitProcess(submenu("9//Unknown", "PID: 9"), row(), {});
    EXPECT_EQ(m_safari->askedToEnd, 0);
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("path of process 9 is not known")).size(),
              1);
    m_safari->running = false;
    m_windows.pids = {412};
    actions().quitProcess(submenu("412//Safari"), row(), Qt::AltModifier);
    EXPECT_EQ(m_safari->askedToEnd, 0);
    EXPECT_TRUE(m_windows.closed.isEmpty());
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("412 has ended")).size(), 1);
}

TEST_F(ProcessActionsTest, QuittingAProcessThatIsGoneQuitsNobodyOfItsName)
{
    const LogCapture log;
    m_processes.known[50] = std::make_shared<FakeHeldProcess>(50);
    m_table.programsOf[50] = {QStringLiteral("/opt/safari/safari")};
    m_workspace.names[QStringLiteral("/opt/safari/safari")] = QStringLiteral("Safari");
    m_windows.pids = {50, 412};
    actions().quitProcess(submenu("412//Safari"), rowOfNobody("Quit"), Qt::AltModifier);
    EXPECT_TRUE(m_windows.closed.isEmpty());
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("nothing is sent")).size(), 1);
}

TEST_F(ProcessActionsTest, ApplicationsAreAskedToQuitByName)
{
    for (const qint64 pid : {50, 51, 52})
        m_processes.known[pid] = std::make_shared<FakeHeldProcess>(pid);
    m_table.programsOf = {{50, {QStringLiteral("/opt/safari/safari")}},
                          {51, {QStringLiteral("/opt/other/other.bin")}},
                          {52, {QStringLiteral("/opt/third")}}};
    m_workspace.names[QStringLiteral("/opt/safari/safari")] = QStringLiteral("Safari");
    m_windows.pids = {50, 51, 52, 53};
    const Applications applications({&m_processes, &m_table, &m_workspace, &m_windows});
    applications.quitApplicationWithName(
        {QStringLiteral("Safari"), QStringLiteral("/opt/other/other")});
    EXPECT_EQ(m_windows.closed, (QVector<qint64>{50, 51}));
}

TEST_F(ProcessActionsTest, WithAltItIsStartedAgainAfterAWhile)
{
    const QString program = script("safari", "");
    m_table.programsOf[412] = {program};
    QElapsedTimer passed;
    passed.start();
    actions().quitProcess(submenu("412//Safari"), row(), Qt::AltModifier);
    EXPECT_TRUE(waitFor([this] { return !calls().isEmpty(); }));
    EXPECT_GE(passed.elapsed(), 1400);
    EXPECT_EQ(calls(), QStringList{QStringLiteral("safari ")});
    EXPECT_EQ(m_safari->askedToEnd, 1);
}

TEST_F(ProcessActionsTest, WhatIsInstalledIsStartedAsInstalled)
{
    const QString launcher = script("launcher", "");
    m_table.programsOf[412] = {script("safari", "")};
    m_workspace.commands[path("safari")] = QStringList{launcher, QStringLiteral("--new $(x) ;")};
    actions().quitProcess(submenu("412//Safari"), row(), Qt::AltModifier);
    EXPECT_TRUE(waitFor([this] { return !calls().isEmpty(); }));
    EXPECT_EQ(calls(), QStringList{QStringLiteral("launcher --new $(x) ;")});
}

TEST_F(ProcessActionsTest, ABundleIsOpenedByTheDesktop)
{
    m_table.programsOf[412] = {path("Contents/MacOS/Safari")};
    m_monitor.readProcessPath("PID COMMAND\n412 " + m_folder.path().toUtf8());
    actions().quitProcess(submenu("412//Safari"), row(), Qt::AltModifier);
    EXPECT_TRUE(waitFor([this] { return !m_opener.opened.isEmpty(); }));
    EXPECT_EQ(m_opener.opened, QStringList{m_folder.path()});
}

TEST_F(ProcessActionsTest, WhatIsRememberedOfAnEarlierProcessIsNotStarted)
{
    // Both had the number, but only the earlier one called itself so.
    const QString evil = script("evil", "");
    const QStringList programs{QStringLiteral("/usr/bin/tool (deleted)"), QStringLiteral("tool")};
    const auto isNothing = [](const Relaunch &relaunch) {
        return relaunch.command.isEmpty() && relaunch.file.isEmpty();
    };
    EXPECT_TRUE(isNothing(relaunchOf(programs, evil, &m_workspace)));
    EXPECT_TRUE(isNothing(relaunchOf(programs, m_folder.path(), &m_workspace)));
    EXPECT_EQ(relaunchOf({programs[0], evil}, evil, &m_workspace).command, QStringList{evil});
}

TEST_F(ProcessActionsTest, WhatRunsOtherwiseThanWeDoIsNotStartedByUs)
{
    const LogCapture log;
    // It says that it is this program, but the system does not.
    m_monitor.readProcessPath("PID COMMAND\n412 " + script("evil", "").toUtf8());
    actions().quitProcess(submenu("412//Safari"), row(), Qt::AltModifier);
    EXPECT_EQ(m_safari->askedToEnd, 1);
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("cannot be started again")).size(), 1);
    EXPECT_FALSE(waitFor([this] { return !calls().isEmpty(); }, 1700));
    EXPECT_TRUE(m_opener.opened.isEmpty());
}

TEST_F(ProcessActionsTest, ForceQuitAsksFirst)
{
    actions().killProcess(submenu("CPUUsage__412//Safari"), row());
    ASSERT_EQ(m_questions.size(), 1U);
    const Question &question = m_questions.front();
    EXPECT_EQ(question.message, QStringLiteral("The editting data of this process may be lost"));
    EXPECT_EQ(question.informativeText,
              QStringLiteral("First of all, please try quit the app normally."));
    EXPECT_EQ(question.cancel, QStringLiteral("Cancel"));
    EXPECT_EQ(question.proceed, QStringLiteral("Force Quit"));
    EXPECT_EQ(question.title, QStringLiteral("Safari (412)"));
    EXPECT_TRUE(calls().isEmpty());
    const LogCapture log;
    m_answers.front()(true);
    EXPECT_EQ(LogCapture::lines().join(u'\n'), QString());
    // It has been waited for.
    EXPECT_EQ(calls(), QStringList{QStringLiteral("kill -9 412")});
    EXPECT_TRUE(m_rights.commands.isEmpty());
}

TEST_F(ProcessActionsTest, CancelRunsNothing)
{
    actions().killProcess(submenu("412//Safari"), row());
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    ASSERT_EQ(m_answers.size(), 2U);
    for (const auto &answer : m_answers)
        answer(false);
    EXPECT_TRUE(calls().isEmpty());
    EXPECT_TRUE(m_rights.commands.isEmpty());
}

TEST_F(ProcessActionsTest, WhatIsNoNumberOfTheHeldProcessIsNeverAskedAbout)
{
    for (const char *first :
         {"PID: 0", "PID: 1", "PID: -1", "PID: -412", "PID: +412", "PID:  412", "PID: 413",
          "PID: 4294967708", "PID: 0412", "PID: 412 ", "User: 4120", "PID: ", "PID"}) {
        const LogCapture log;
        actions().killProcess(submenu("412//Safari", first), row());
        actions().killProcessAsRoot(submenu("412//Safari", first), row());
        EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("nothing is sent")).size(), 2) << first;
    }
    actions().killProcess(submenu("412//Safari"), rowOfNobody("Force Quit"));
    actions().killProcess(Menu(QStringLiteral("412//Safari")), row());
    EXPECT_TRUE(m_questions.empty());
    actions().killProcess(submenu("412//Safari", "PID: 412-2"), row());
    EXPECT_EQ(m_questions.size(), 1U);
}

TEST_F(ProcessActionsTest, NothingIsSentToWhoHasEndedWhileTheQuestionStood)
{
    const LogCapture log;
    actions().killProcess(submenu("412//Safari"), row());
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    m_safari->running = false;
    for (const auto &answer : m_answers)
        answer(true);
    EXPECT_TRUE(calls().isEmpty());
    EXPECT_TRUE(m_rights.commands.isEmpty());
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("412 has ended")).size(), 2);
}

TEST_F(ProcessActionsTest, AsRootTheRightsAreAskedForAndNothingWaits)
{
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    ASSERT_EQ(m_questions.size(), 1U);
    EXPECT_EQ(m_questions.front().informativeText,
              QStringLiteral("First of all, please try quit the app with normal procedure."));
    m_answers.front()(true);
    EXPECT_EQ(m_rights.commands, QStringList{path("kill") + QStringLiteral(" -9 412")});
    EXPECT_EQ(m_rights.waiting, 1);
    // Once is enough while the password is asked for.
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    m_answers.back()(true);
    EXPECT_EQ(m_rights.commands.size(), 1);
    m_rights.ended.front()();
    EXPECT_EQ(m_rights.waiting, 0);
    EXPECT_TRUE(calls().isEmpty());
}

TEST_F(ProcessActionsTest, ARequestIsTakenBackWhenTheProcessEnds)
{
    const LogCapture log;
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    m_answers.front()(true);
    EXPECT_EQ(m_rights.waiting, 1);
    m_safari->running = false;
    EXPECT_TRUE(waitFor([this] { return m_rights.waiting == 0; }));
    EXPECT_TRUE(waitFor([] { return !LogCapture::lines().isEmpty(); }));
    // It may well have been sent, and that be the reason.
    EXPECT_TRUE(LogCapture::lines().filter(QStringLiteral("nothing is sent")).isEmpty());
}

TEST_F(ProcessActionsTest, TheNextProcessOfANumberIsAskedAboutAnew)
{
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    m_answers.back()(true);
    const auto next = std::make_shared<FakeHeldProcess>(412);
    next->start = 200;
    m_safari = next;
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    ASSERT_EQ(m_questions.size(), 2U);
    EXPECT_NE(m_questions[0].key, m_questions[1].key);
    m_answers.back()(true);
    EXPECT_EQ(m_rights.commands.size(), 2);
    EXPECT_EQ(m_rights.waiting, 1);
}

TEST_F(ProcessActionsTest, ItsEndIsHeardOfWhereTheSystemTellsIt)
{
    std::array<int, 2> end{};
    ASSERT_EQ(::pipe2(end.data(), O_CLOEXEC), 0);
    m_safari->descriptor = end[0];
    actions().killProcessAsRoot(submenu("412//Safari"), row());
    m_answers.front()(true);
    EXPECT_EQ(m_rights.waiting, 1);
    // The fake says still that it runs: the descriptor alone is listened to.
    EXPECT_EQ(::close(end[1]), 0);
    EXPECT_TRUE(waitFor([this] { return m_rights.waiting == 0; }));
    EXPECT_EQ(::close(end[0]), 0);
}

TEST_F(ProcessActionsTest, TheEndOfTheProgramTakesRequestsBack)
{
    {
        ForceQuit forceQuit(&m_rights, path("kill"));
        forceQuit.killAsRoot(m_safari);
        EXPECT_EQ(m_rights.waiting, 1);
    }
    EXPECT_EQ(m_rights.waiting, 0);
}

TEST_F(ProcessActionsTest, ForceQuitItselfLooksWhetherTheProcessRuns)
{
    const LogCapture log;
    ForceQuit forceQuit(&m_rights, path("kill"));
    const auto gone = std::make_shared<FakeHeldProcess>(412);
    gone->running = false;
    forceQuit.kill(*gone);
    forceQuit.killAsRoot(gone);
    EXPECT_TRUE(calls().isEmpty());
    EXPECT_TRUE(m_rights.commands.isEmpty());
    EXPECT_EQ(LogCapture::lines().filter(QStringLiteral("nothing is sent")).size(), 2);
}

TEST_F(ProcessActionsTest, ProcessesAreCountedByTheirShortNames)
{
    m_table.names =
        QStringList{QStringLiteral("Finder"), QStringLiteral("finder"), QStringLiteral("find")};
    EXPECT_EQ(isProcessRunning(QStringLiteral("FINDER"), &m_table), 2U);
    EXPECT_EQ(isProcessRunning(QStringLiteral("safari"), &m_table), 0U);
    EXPECT_EQ(isProcessRunning(QString(), &m_table), 0U);
    m_table.names.reset();
    EXPECT_EQ(isProcessRunning(QStringLiteral("finder"), &m_table), 4294967295U);
    EXPECT_EQ(isProcessRunning(QString(), nullptr), 0U);
    EXPECT_EQ(isProcessRunning(QStringLiteral("finder"), nullptr), 4294967295U);
}

TEST_F(ProcessActionsTest, WithoutADesktopNothingHappens)
{
    ProcessActions bare(m_monitor, {});
    const LogCapture log;
    const Menu menu = submenu("412//Safari");
    bare.chooseProcess(row("1.0% : Safari"));
    bare.chooseProcess(rowOfNobody("1.0% : Safari"));
    bare.showProcessInFinder(menu, row());
    bare.killProcess(menu, row());
    bare.killProcessAsRoot(menu, row());
    bare.quitProcess(menu, rowOfNobody("Quit"), Qt::AltModifier);
    bare.quitProcess(menu, row(), {});
    EXPECT_EQ(m_safari->askedToEnd, 1);
}

} // namespace
} // namespace pulsebar
