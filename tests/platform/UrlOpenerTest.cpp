#include "platform/linux_/desktop/LinuxDesktop.h"
#include "support/WaitFor.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// A folder that is all there is to find programs in.
class UrlOpenerTest : public testing::Test
{
protected:
    UrlOpenerTest()
        : m_path(qgetenv("PATH"))
    {
        qputenv("PATH", QFile::encodeName(folder.path()));
    }
    ~UrlOpenerTest() override { qputenv("PATH", m_path); }

    void installOpener(const QByteArray &script)
    {
        QFile file(folder.filePath(QStringLiteral("xdg-open")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QByteArray notes() const
    {
        QFile file(folder.filePath(QStringLiteral("notes")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;

private:
    QByteArray m_path;
};

TEST_F(UrlOpenerTest, HandsTheUrlOverAsOneWordThroughNoShell)
{
    installOpener("printf '%s|' \"$#\" \"$1\" >'" + folder.path().toUtf8() + "/notes'\n");
    const auto opener = makeUrlOpener();
    EXPECT_TRUE(opener->open(QUrl(QStringLiteral("file:///a b/$(touch x);'é'"))));
    EXPECT_TRUE(waitFor([this] { return notes().count('|') == 2; }));
    EXPECT_EQ(notes(), QByteArray("1|file:///a%20b/$(touch%20x);'%C3%A9'|"));
}

TEST_F(UrlOpenerTest, DoesNotWaitForWhatIsOpened)
{
    installOpener("echo $$ >'" + folder.path().toUtf8() + "/notes'\nexec /bin/sleep 60\n");
    EXPECT_TRUE(makeUrlOpener()->open(QUrl(QStringLiteral("file:///x"))));
    // It lives on after the one that opened it, too.
    ASSERT_TRUE(waitFor([this] { return notes().endsWith('\n'); }));
    const pid_t pid = notes().trimmed().toInt();
    EXPECT_EQ(::kill(pid, SIGTERM), 0);
}

TEST_F(UrlOpenerTest, SaysOnceThatNothingCanBeOpened)
{
    const auto opener = makeUrlOpener();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(opener->open(QUrl(QStringLiteral("file:///x"))));
    EXPECT_FALSE(opener->open(QUrl(QStringLiteral("file:///y"))));
    const std::string log = testing::internal::GetCapturedStderr();
    const auto said = log.find("xdg-open");
    ASSERT_NE(said, std::string::npos);
    EXPECT_EQ(log.find("xdg-open", said + 1), std::string::npos);
}

} // namespace
} // namespace pulsebar
