#include "engine/ProcessPathReport.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// The path that a command line of ps leads to; "(nothing)" when none is found.
QString pathOf(const QByteArray &command)
{
    const auto found = parseProcessPath("  PID COMMAND\n  412 " + command + "\n");
    return found ? found->path : QStringLiteral("(nothing)");
}

TEST(ProcessPathReport, IsTheFirstWordOfTheCommand)
{
    const auto found = parseProcessPath("  PID COMMAND\n  412 /usr/sbin/cfprefsd agent\n");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->pid, QStringLiteral("412"));
    EXPECT_EQ(found->path, QStringLiteral("/usr/sbin/cfprefsd"));
    EXPECT_EQ(pathOf("/bin/cat"), QStringLiteral("/bin/cat"));
    EXPECT_EQ(pathOf("[kworker/0:1]"), QStringLiteral("[kworker/0:1]"));
    EXPECT_EQ(pathOf("-bash"), QStringLiteral("-bash"));
    EXPECT_EQ(pathOf("/opt/h\xc3\xa9//x%s--y : z"), QString::fromUtf8("/opt/h\xc3\xa9//x%s--y"));
}

TEST(ProcessPathReport, IsABundleInsideABundle)
{
    EXPECT_EQ(pathOf("/Applications/Mail.app/Contents/MacOS/Mail -x"),
              QStringLiteral("/Applications/Mail.app"));
    EXPECT_EQ(pathOf("/a/Outer.app/In/Inner.app/x"), QStringLiteral("/a/Outer.app"));
    // Whether there is a bundle is asked exactly, where it ends is not.
    EXPECT_EQ(pathOf("/a/One.APP/Two.app/x"), QStringLiteral("/a/One.app"));
    EXPECT_EQ(pathOf("/a/One.APP/x"), QStringLiteral("/a/One.APP/x"));
    EXPECT_EQ(pathOf(".app/x"), QStringLiteral("(nothing)"));
}

TEST(ProcessPathReport, IsCutAtABlank)
{
    EXPECT_EQ(pathOf("/Applications/Text Edit.app/Contents/MacOS/Text"),
              QStringLiteral("/Applications/Text"));
}

TEST(ProcessPathReport, IsAbsentWithoutAProcess)
{
    for (const char *report : {"", "  PID COMMAND", "  PID COMMAND\n", "  PID COMMAND\n\n",
                               "PID COMMAND\n412", "PID COMMAND\n412\n", "PID COMMAND\n412 \n"})
        EXPECT_FALSE(parseProcessPath(report)) << report;
}

TEST(ProcessPathReport, LineEndsMayBeOfAnyKind)
{
    const auto found = parseProcessPath("PID COMMAND\r\n 7 /bin/x\r\n");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, QStringLiteral("/bin/x"));
    const auto old = parseProcessPath("PID COMMAND\r 7 /bin/x\r");
    ASSERT_TRUE(old);
    EXPECT_EQ(old->path, QStringLiteral("/bin/x"));
}

} // namespace
} // namespace pulsebar
