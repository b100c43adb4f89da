#include "e2e/Desktop.h"
#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "e2e/WindowManager.h"
#include "support/Text.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace pulsebar::e2e {
namespace {

/// The program in a panel, and a process list that the test writes.
class ActingProgramTest : public testing::Test
{
protected:
    ActingProgramTest()
    {
        const QString folder = m_desktop.folder() + s("/libexec");
        QDir().mkpath(folder);
        write(folder + s("/pulsebar-top"),
              "#!/bin/sh\nwhile cat " + list().toUtf8() + "; do sleep 1; done\n");
        m_desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), folder);
    }

    QString list() const { return m_desktop.folder() + s("/list"); }
    static void write(const QString &name, const QByteArray &text)
    {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("a file of the test cannot be written");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    /// Starts the program, with one process in its list.
    void run(qint64 pid, const char *name, const char *user = "ada")
    {
        write(list(), "CPU usage: 10.00% user, 2.34% sys, 87.66% idle\n\n"
                      "PID COMMAND %CPU TIME #TH USER #MSENT #MRECV SYSBSD SYSMACH POWER\n" +
                          QByteArray::number(pid) + ' ' + name + " 35.0 00:01.00 3 " + user +
                          " N/A N/A N/A N/A 35.0\n");
        m_program.emplace(m_desktop);
        m_menu.emplace(m_desktop, m_program->process().pid());
        m_row = s("35.0% : ") + s(name);
        ASSERT_TRUE(waitFor([this] { return m_menu->look({m_row}).id != 0; }))
            << m_menu->root().labels().join(u'|').toStdString();
    }
    bool choose(const char *title) { return m_menu->choose({m_row, s(title)}); }
    std::unique_ptr<Process> start(const char *program, const QStringList &arguments)
    {
        return std::make_unique<Process>(s(program), arguments, m_desktop.environment());
    }
    QString xdotool(const QStringList &arguments)
    {
        Process process(s("xdotool"), arguments, m_desktop.environment());
        process.waitForEnd();
        return process.output().trimmed();
    }
    bool alertIsActive(const QString &title)
    {
        return waitFor([&] {
            return xdotool({s("getactivewindow"), s("getwindowname")}) == title;
        });
    }
    void press(const char *key) { xdotool({s("key"), s(key)}); }

    Desktop m_desktop;
    WindowManager m_manager{m_desktop};
    Panel m_panel{m_desktop};
    std::optional<RunningProgram> m_program;
    std::optional<MenuClient> m_menu;
    QString m_row;
};

TEST_F(ActingProgramTest, ForceQuitAsksAndEndsTheProcess)
{
    const auto victim = start("/bin/sleep", {s("1000")});
    run(victim->pid(), "a//b : c-d__e");
    ASSERT_TRUE(choose("Force Quit"));
    const QString title = s("a//b : c-d__e (%1)").arg(victim->pid());
    ASSERT_TRUE(alertIsActive(title)) << m_program->process().log().toStdString();
    EXPECT_TRUE(m_program->waitForSamples());
    press("Return");
    EXPECT_TRUE(waitFor([&] { return xdotool({s("search"), s("--name"), s("a//b")}).isEmpty(); }));
    EXPECT_TRUE(victim->isRunning());
    ASSERT_TRUE(choose("Force Quit"));
    ASSERT_TRUE(alertIsActive(title));
    press("Tab");
    press("space");
    EXPECT_TRUE(waitFor([&victim] { return !victim->isRunning(); }));
    EXPECT_TRUE(m_program->process().isRunning());
}

TEST_F(ActingProgramTest, QuitAsksAProcessWithoutWindowsToEnd)
{
    const auto victim = start("/bin/sleep", {s("1000")});
    run(victim->pid(), "sleep");
    ASSERT_TRUE(waitFor([this] { return m_menu->look({m_row, s("Show in Finder")}).id != 0; }));
    ASSERT_TRUE(choose("Quit"));
    EXPECT_TRUE(waitFor([&victim] { return !victim->isRunning(); }));
}

TEST_F(ActingProgramTest, ChoosingRaisesAndQuitClosesWindows)
{
    const auto victim = start(X_WINDOWS, {s("mine"), s("1")});
    ASSERT_TRUE(waitFor([&] { return victim->output().contains(s("ready")); }));
    const auto other = start(X_WINDOWS, {s("other"), s("1")});
    ASSERT_TRUE(waitFor([this] {
        return xdotool({s("getactivewindow"), s("getwindowname")}) == s("other");
    }));
    run(victim->pid(), "x_windows");
    ASSERT_TRUE(m_menu->choose({m_row}));
    EXPECT_TRUE(waitFor([this] {
        return xdotool({s("getactivewindow"), s("getwindowname")}) == s("mine");
    }));
    ASSERT_TRUE(waitFor([this] { return m_menu->look({m_row, s("Show in Finder")}).id != 0; }));
    ASSERT_TRUE(choose("Quit"));
    EXPECT_EQ(victim->waitForEnd(), 0);
    EXPECT_TRUE(victim->output().contains(s("delete 0")));
    EXPECT_TRUE(other->isRunning());
}

TEST_F(ActingProgramTest, AProcessThatHasEndedIsNotActedOn)
{
    auto victim = start("/bin/sleep", {s("1000")});
    run(victim->pid(), "sleep");
    const MenuRow row = m_menu->look({m_row, s("Force Quit")});
    victim->signal(SIGKILL);
    ASSERT_EQ(victim->waitForEnd(), -1);
    m_menu->click(row.id);
    EXPECT_TRUE(
        waitFor([this] { return m_program->process().log().contains(s("nothing is sent")); }));
}

} // namespace
} // namespace pulsebar::e2e
