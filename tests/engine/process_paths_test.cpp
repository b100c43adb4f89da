#include "engine/ProcessPaths.h"
#include "engine/TopMonitor.h"
#include "support/FakeSources.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/WaitFor.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace pulsebar {
namespace {

/// A ps in its place: notes its arguments and then runs some lines of shell.
class ProcessPathsTest : public ::testing::Test
{
protected:
    void installPs(const QByteArray &lines)
    {
        QFile file(path("ps"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\necho \"$@\" >>" + path("calls").toUtf8() + '\n' + lines + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_sources.icons = &m_icons;
        m_sources.workspace = &m_workspace;
        m_sources.pathQuery.program = path("ps");
    }
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QStringList calls() const
    {
        QFile file(path("calls"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    static QString pathIn(ProcessPaths &paths, const char *pid)
    {
        return paths.dataForPID(QString::fromLatin1(pid), QStringLiteral("path")).toString();
    }
    static QString iconIn(ProcessPaths &paths, const char *pid)
    {
        return paths.dataForPID(QString::fromLatin1(pid), QStringLiteral("icon")).toString();
    }

    QTemporaryDir m_folder;
    fakes::IconsAnswer m_icons;
    fakes::WorkspaceAnswer m_workspace;
    MonitorSources m_sources;
};

const QByteArray Echo = "echo '  PID COMMAND'\necho \"  $2 /usr/bin/tool-$2 -x\"";

TEST_F(ProcessPathsTest, TwoLookupsStartOneQueryAndWaitForNothing)
{
    installPs(Echo);
    ProcessPaths paths(m_sources);
    EXPECT_EQ(pathIn(paths, "412"), QString());
    EXPECT_EQ(pathIn(paths, "412"), QString());
    EXPECT_EQ(paths.processPathDict().value(QStringLiteral("412")), QVariant(QVariantMap()));
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "412").isEmpty(); }));
    EXPECT_EQ(pathIn(paths, "412"), QStringLiteral("/usr/bin/tool-412"));
    EXPECT_EQ(calls(), QStringList{QStringLiteral("-p 412 -o pid,command")});
}

TEST_F(ProcessPathsTest, ASuffixIsLeftOut)
{
    installPs(Echo);
    ProcessPaths paths(m_sources);
    EXPECT_EQ(pathIn(paths, "412-1"), QString());
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "412-2").isEmpty(); }));
    EXPECT_EQ(paths.processPathDict().keys(), QStringList{QStringLiteral("412")});
    EXPECT_EQ(pathIn(paths, ""), QString());
    EXPECT_EQ(pathIn(paths, "-1"), QString());
    EXPECT_EQ(paths.processPathDict().size(), 1);
    EXPECT_EQ(calls().size(), 1);
}

TEST_F(ProcessPathsTest, TheAnswerIsKeptUnderTheNumberThatWasPrinted)
{
    installPs("echo 'PID COMMAND'; echo '7 /bin/seven'");
    ProcessPaths paths(m_sources);
    paths.dataForPID(QStringLiteral("412"), QStringLiteral("path"));
    EXPECT_TRUE(waitFor([&] { return paths.processPathDict().contains(QStringLiteral("7")); }));
    EXPECT_EQ(pathIn(paths, "7"), QStringLiteral("/bin/seven"));
    EXPECT_EQ(pathIn(paths, "412"), QString());
    EXPECT_EQ(calls().size(), 1);
}

TEST_F(ProcessPathsTest, AProcessThatIsGoneIsNotAskedForAgain)
{
    installPs("echo 'PID COMMAND'; [ $2 = 412 ] || echo \"$2 /bin/x\"");
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    pathIn(paths, "500"); // its turn comes after the other's
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "500").isEmpty(); }));
    EXPECT_EQ(pathIn(paths, "412"), QString());
    EXPECT_EQ(calls().size(), 2);
}

TEST_F(ProcessPathsTest, OneChildAtATime)
{
    // A second one at the same time would find the folder there.
    installPs("mkdir " + path("busy").toUtf8() + " || exit 1\n" + Echo + "\nrmdir " +
              path("busy").toUtf8());
    ProcessPaths paths(m_sources);
    for (const char *pid : {"11", "12", "13", "14", "15", "16"})
        pathIn(paths, pid);
    EXPECT_TRUE(waitFor([&] { return calls().size() == 6 && !pathIn(paths, "16").isEmpty(); }));
    for (const char *pid : {"11", "12", "13", "14", "15", "16"})
        EXPECT_FALSE(pathIn(paths, pid).isEmpty()) << pid;
}

TEST_F(ProcessPathsTest, AQueryThatHangsIsEndedAndTheNextOneRuns)
{
    installPs("[ $2 = 412 ] && echo $$ >" + path("child").toUtf8() + " && exec sleep 1000\n" +
              Echo);
    m_sources.pathQuery.patience = std::chrono::milliseconds(300);
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    pathIn(paths, "500");
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "500").isEmpty(); }));
    EXPECT_EQ(pathIn(paths, "412"), QString());
    QFile child(path("child"));
    ASSERT_TRUE(child.open(QIODevice::ReadOnly));
    const int pid = child.readAll().trimmed().toInt();
    ASSERT_GT(pid, 1);
    EXPECT_TRUE(waitFor([&] { return ::kill(pid, 0) != 0; }));
}

TEST_F(ProcessPathsTest, NoChildIsLeftAtTheEnd)
{
    installPs("echo $$ >" + path("child").toUtf8() + "\nexec sleep 1000");
    QFile child(path("child"));
    {
        ProcessPaths paths(m_sources);
        pathIn(paths, "412");
        EXPECT_TRUE(waitFor([&] { return child.exists() && child.size() > 0; }));
    }
    ASSERT_TRUE(child.open(QIODevice::ReadOnly));
    EXPECT_NE(::kill(child.readAll().trimmed().toInt(), 0), 0);
}

TEST_F(ProcessPathsTest, AMissingPsIsSaidOnce)
{
    const LogCapture log;
    m_sources.pathQuery.program = path("nothing");
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    pathIn(paths, "413");
    EXPECT_TRUE(waitFor([] { return !LogCapture::lines().isEmpty(); }));
    EXPECT_FALSE(waitFor([] { return LogCapture::lines().size() > 1; }, 100));
    EXPECT_TRUE(LogCapture::lines().value(0).startsWith(QStringLiteral("pulsebar.paths: ")));
    EXPECT_EQ(pathIn(paths, "412"), QString());
    EXPECT_EQ(paths.processPathDict().size(), 2);
}

TEST_F(ProcessPathsTest, AnAnswerWithoutEndIsCut)
{
    installPs("echo 'PID COMMAND'\nprintf '%s /bin/x ' $2\nexec yes");
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "412").isEmpty(); }));
    EXPECT_EQ(pathIn(paths, "412"), QStringLiteral("/bin/x"));
}

TEST_F(ProcessPathsTest, NoMoreIsKeptThanAPathCanBe)
{
    installPs("echo 'PID COMMAND'\nprintf '%s /' $2\nhead -c 60000 /dev/zero | tr '\\0' x");
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "412").isEmpty(); }));
    EXPECT_LT(pathIn(paths, "412").size(), 6000);
}

TEST_F(ProcessPathsTest, TheEnvironmentHasNoSay)
{
    installPs(
        "echo 'PID COMMAND'; echo \"$2 $(env | grep -v '^PWD=\\|^_=\\|^SHLVL=\\|^OLDPWD=')\"");
    ::setenv("PS_FORMAT", "user", 1);
    ProcessPaths paths(m_sources);
    pathIn(paths, "412");
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, "412").isEmpty(); }));
    EXPECT_EQ(pathIn(paths, "412"), QStringLiteral("LC_ALL=C.UTF-8"));
    ::unsetenv("PS_FORMAT");
}

TEST_F(ProcessPathsTest, TheIconIsTheProcessesOwnOrElseItsFiles)
{
    m_icons.answers[QStringLiteral("2")] = QStringLiteral("web-browser");
    m_workspace.icons[m_folder.path()] = QStringLiteral("folder");
    m_workspace.icons[QStringLiteral("/nonexistent/file")] = QStringLiteral("never");
    m_sources.icons = &m_icons;
    m_sources.workspace = &m_workspace;
    ProcessPaths paths(m_sources);
    const QByteArray here = m_folder.path().toUtf8();
    paths.readProcessPath("PID COMMAND\n2 " + here);
    paths.readProcessPath("PID COMMAND\n3 " + here);
    paths.readProcessPath("PID COMMAND\n4 /nonexistent/file");
    paths.readProcessPath("PID COMMAND\n5 ./firefox");
    EXPECT_EQ(iconIn(paths, "2"), QStringLiteral("web-browser"));
    EXPECT_EQ(iconIn(paths, "3"), QStringLiteral("folder"));
    EXPECT_FALSE(paths.processPathDict()
                     .value(QStringLiteral("4"))
                     .toMap()
                     .contains(QStringLiteral("icon")));
    EXPECT_EQ(iconIn(paths, "5"), QString());
}

TEST_F(ProcessPathsTest, TheRealPsKnowsThisProcess)
{
    ProcessPaths paths(m_sources);
    const QByteArray self = QByteArray::number(QCoreApplication::applicationPid());
    pathIn(paths, self);
    EXPECT_TRUE(waitFor([&] { return !pathIn(paths, self).isEmpty(); }));
    EXPECT_EQ(pathIn(paths, self), QCoreApplication::arguments().value(0).section(u' ', 0, 0));
}

} // namespace
} // namespace pulsebar
