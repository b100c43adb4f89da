#include "e2e/Desktop.h"
#include "e2e/WindowManager.h"
#include "platform/linux_/LinuxProcesses.h"
#include "platform/linux_/desktop/LinuxDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace pulsebar::e2e {
namespace {

TEST(ReusedNumber, NobodyIsTakenForAnother)
{
    // Numbers of processes can be chosen in a namespace of one's own.
    QStringList arguments{QStringLiteral("--pid"), QStringLiteral("--fork"),
                          QStringLiteral("--mount-proc"), QStringLiteral(REUSED_NUMBER)};
    if (::geteuid() != 0)
        arguments =
            QStringList{QStringLiteral("--user"), QStringLiteral("--map-root-user")} + arguments;
    Process helper(QStringLiteral("unshare"), arguments, QProcessEnvironment::systemEnvironment());
    EXPECT_EQ(helper.waitForEnd(), 0) << helper.log().toStdString();
    EXPECT_EQ(helper.output().toStdString(), "");
}

/// A display with a window manager, and windows on it.
class WindowsTest : public testing::Test
{
protected:
    explicit WindowsTest(const DesktopOptions &options = {})
        : m_desktop(options)
    {
        qputenv("DISPLAY", m_desktop.environment().value(QStringLiteral("DISPLAY")).toUtf8());
        m_windows = makeApplicationWindows();
    }
    ~WindowsTest() override { qunsetenv("DISPLAY"); }

    std::unique_ptr<Process> open(const QStringList &arguments)
    {
        auto program = std::make_unique<Process>(QStringLiteral(X_WINDOWS), arguments,
                                                 m_desktop.environment());
        EXPECT_TRUE(
            waitFor([&program] { return program->output().startsWith(QStringLiteral("ready")); }));
        const bool isNoApplication = arguments.contains(QStringLiteral("dock")) ||
                                     arguments.contains(QStringLiteral("desktop"));
        EXPECT_TRUE(isNoApplication ||
                    waitFor([&] { return m_windows->owners().contains(program->pid()); }));
        return program;
    }
    /// Who has the window that the user works with.
    QString activeTitle()
    {
        Process xdotool(QStringLiteral("xdotool"),
                        {QStringLiteral("getactivewindow"), QStringLiteral("getwindowname")},
                        m_desktop.environment());
        xdotool.waitForEnd();
        return xdotool.output().trimmed();
    }

    Desktop m_desktop;
    WindowManager m_manager{m_desktop};
    std::unique_ptr<ApplicationWindows> m_windows;
};

TEST_F(WindowsTest, AreRaisedByTheProcessThatOwnsThem)
{
    const auto first = open({QStringLiteral("first"), QStringLiteral("2")});
    const auto second = open({QStringLiteral("second"), QStringLiteral("1")});
    EXPECT_TRUE(m_windows->raise(second->pid()));
    EXPECT_TRUE(waitFor([this] { return activeTitle() == QLatin1String("second"); }));
    EXPECT_TRUE(m_windows->raise(first->pid()));
    EXPECT_TRUE(waitFor([this] { return activeTitle() == QLatin1String("first"); }));
    // Both windows have come to the top: from the bottom on, the other's is the first now.
    const QVector<qint64> order{second->pid(), first->pid()};
    EXPECT_TRUE(waitFor([&] { return m_windows->owners() == order; }));
    EXPECT_FALSE(m_windows->raise(::getpid()));
}

TEST_F(WindowsTest, NoWindowCanSayThatItIsAnothers)
{
    const auto honest = open({QStringLiteral("honest"), QStringLiteral("1")});
    const auto liar = open(
        {QStringLiteral("liar"), QStringLiteral("1"), QStringLiteral("claim=%1").arg(::getpid())});
    EXPECT_FALSE(m_windows->owners().contains(::getpid()));
    EXPECT_FALSE(m_windows->askToClose(::getpid()));
    EXPECT_TRUE(m_windows->askToClose(liar->pid()));
    EXPECT_EQ(liar->waitForEnd(), 0);
    EXPECT_TRUE(honest->isRunning());
}

TEST_F(WindowsTest, AreAskedToCloseOneByOne)
{
    const auto program = open({QStringLiteral("three"), QStringLiteral("3")});
    const auto other = open({QStringLiteral("other"), QStringLiteral("1")});
    EXPECT_TRUE(m_windows->askToClose(program->pid()));
    EXPECT_EQ(program->waitForEnd(), 0);
    EXPECT_EQ(program->output().count(QStringLiteral("delete")), 3);
    EXPECT_TRUE(other->isRunning());
    EXPECT_FALSE(other->output().contains(QStringLiteral("delete")));
}

TEST_F(WindowsTest, ThoseThatCannotBeAskedAreLeftAlone)
{
    const auto stubborn =
        open({QStringLiteral("stubborn"), QStringLiteral("1"), QStringLiteral("stubborn")});
    EXPECT_FALSE(m_windows->askToClose(stubborn->pid()));
    EXPECT_TRUE(stubborn->isRunning());
}

TEST_F(WindowsTest, NeitherAPanelNorTheDesktopIsAnApplication)
{
    const auto panel = open({QStringLiteral("panel"), QStringLiteral("1"), QStringLiteral("dock")});
    const auto desktop =
        open({QStringLiteral("desktop"), QStringLiteral("1"), QStringLiteral("desktop")});
    const auto program = open({QStringLiteral("program"), QStringLiteral("1")});
    EXPECT_EQ(m_windows->owners(), QVector<qint64>{program->pid()});
    EXPECT_FALSE(m_windows->raise(panel->pid()));
    EXPECT_FALSE(m_windows->raise(desktop->pid()));
}

/// A display whose server does not tell whose connection a window came over.
class WindowsWithoutOwnersTest : public WindowsTest
{
protected:
    WindowsWithoutOwnersTest()
        : WindowsTest(DesktopOptions{.withoutExtensions = {QStringLiteral("X-Resource")}})
    {
    }
};

TEST_F(WindowsWithoutOwnersTest, BelongToWhomTheyName)
{
    Process program(
        QStringLiteral(X_WINDOWS),
        {QStringLiteral("said"), QStringLiteral("1"), QStringLiteral("claim=%1").arg(::getpid())},
        m_desktop.environment());
    ASSERT_TRUE(waitFor([this] { return m_windows->owners().contains(::getpid()); }));
    Process silent(QStringLiteral(X_WINDOWS), {QStringLiteral("silent"), QStringLiteral("1")},
                   m_desktop.environment());
    ASSERT_TRUE(waitFor([this] { return activeTitle() == QLatin1String("silent"); }));
    EXPECT_EQ(m_windows->owners(), QVector<qint64>{::getpid()});
    EXPECT_FALSE(m_windows->raise(silent.pid()));
    EXPECT_FALSE(m_windows->askToClose(silent.pid()));
    EXPECT_TRUE(m_windows->raise(::getpid()));
    EXPECT_TRUE(waitFor([this] { return activeTitle() == QLatin1String("said"); }));
    EXPECT_TRUE(m_windows->askToClose(::getpid()));
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(WindowsTest, WithoutADisplayNobodyHasSome)
{
    qunsetenv("DISPLAY");
    EXPECT_TRUE(m_windows->owners().isEmpty());
    EXPECT_FALSE(m_windows->raise(2));
    EXPECT_FALSE(m_windows->askToClose(2));
}

/// A file manager on the test's bus.
class FakeFileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &addresses, const QString & /*startupId*/)
    {
        shown += addresses;
    }
};

TEST(FileViewer, ShowsAFileOrSaysThatItCannot)
{
    Desktop desktop;
    qputenv("DBUS_SESSION_BUS_ADDRESS",
            desktop.environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")).toUtf8());
    const auto viewer = makeFileViewer();
    int otherwise = 0;
    viewer->showFile(QStringLiteral("/tmp/a"), [&otherwise] { ++otherwise; });
    EXPECT_EQ(otherwise, 0);
    EXPECT_TRUE(waitFor([&otherwise] { return otherwise == 1; }));

    FakeFileManager manager;
    ASSERT_TRUE(desktop.bus().registerObject(QStringLiteral("/org/freedesktop/FileManager1"),
                                             &manager, QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(desktop.bus().registerService(QStringLiteral("org.freedesktop.FileManager1")));
    viewer->showFile(QString::fromUtf8("/tmp/a b%20#?/\xe2\x82\xac&_"),
                     [&otherwise] { ++otherwise; });
    EXPECT_TRUE(waitFor([&manager] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown.value(0).toStdString(), "file:///tmp/a%20b%2520%23%3F/%E2%82%AC&_");
    EXPECT_EQ(otherwise, 1);
}

/// pkexec in its place, and processes it is to end.
class RightsTest : public testing::Test
{
protected:
    QString script(const QByteArray &lines)
    {
        QString name = m_folder.filePath(QStringLiteral("pkexec"));
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no place for a script");
        file.write("#!/bin/sh\n" + lines + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return name;
    }
    QByteArray written(const char *name) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray place(const char *name) const
    {
        return m_folder.filePath(QString::fromLatin1(name)).toUtf8();
    }

    QTemporaryDir m_folder;
    int m_ended = 0;
};

TEST_F(RightsTest, RunTheProgramAndTellItsEnd)
{
    qputenv("EVIL", "1");
    const auto rights = makeAdministratorRights(
        script("echo \"$@\" >" + place("arguments") + "; env >" + place("environment")));
    const auto run =
        rights->run(QStringLiteral("/bin/kill"), {QStringLiteral("-9"), QStringLiteral("412")},
                    [this] { ++m_ended; });
    EXPECT_EQ(m_ended, 0);
    EXPECT_TRUE(waitFor([this] { return m_ended == 1; }));
    EXPECT_EQ(written("arguments"), "/bin/kill -9 412\n");
    EXPECT_FALSE(written("environment").contains("EVIL"));
    qunsetenv("EVIL");
}

TEST_F(RightsTest, ARequestThatIsTakenBackEndsTheQuestion)
{
    const auto rights =
        makeAdministratorRights(script("echo $$ >" + place("pid") + "; exec sleep 1000"));
    auto run = rights->run(QStringLiteral("/bin/kill"), {}, [this] { ++m_ended; });
    EXPECT_TRUE(waitFor([this] { return written("pid").endsWith('\n'); }));
    const int pid = written("pid").trimmed().toInt();
    EXPECT_EQ(::kill(pid, 0), 0);
    run.reset();
    EXPECT_TRUE(waitFor([pid] { return ::kill(pid, 0) != 0; }));
    EXPECT_EQ(m_ended, 0);
}

TEST_F(RightsTest, ARefusalOrAMissingProgramIsAnEndToo)
{
    const auto refusing = makeAdministratorRights(script("exit 126"));
    const auto one = refusing->run(QStringLiteral("/bin/kill"), {}, [this] { ++m_ended; });
    EXPECT_TRUE(waitFor([this] { return m_ended == 1; }));
    const auto missing = makeAdministratorRights(QStringLiteral("/nonexistent/pkexec"));
    const auto two = missing->run(QStringLiteral("/bin/kill"), {}, [this] { ++m_ended; });
    EXPECT_TRUE(waitFor([this] { return m_ended == 2; }));
}

TEST_F(RightsTest, ItHasNoTerminalToAskAt)
{
    const auto rights =
        makeAdministratorRights(script("ps -o sid=,pid= -p $$ >" + place("session") +
                                       "; sh -c ': </dev/tty' 2>/dev/null "
                                       "&& echo terminal >>" +
                                       place("session")));
    const auto run = rights->run(QStringLiteral("/bin/kill"), {}, [this] { ++m_ended; });
    EXPECT_TRUE(waitFor([this] { return m_ended == 1; }));
    const QList<QByteArray> numbers = written("session").simplified().split(' ');
    ASSERT_EQ(numbers.size(), 2);
    EXPECT_EQ(numbers.value(0), numbers.value(1));
}

} // namespace
} // namespace pulsebar::e2e

#include "acting_test.moc"
