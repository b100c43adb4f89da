#include "e2e/Desktop.h"
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
        const QString name = m_folder.filePath(QStringLiteral("pkexec"));
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
