#include "util/ReadableText.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ReadableText, LeavesAnOrdinaryReportAsItIs)
{
    const QString report = QStringLiteral("Processes: 3 total\n\nPID\tCOMMAND\n12  öäü_&<b>\n");
    EXPECT_EQ(readableText(report), report);
    EXPECT_EQ(readableText(QString()), QString());
    EXPECT_EQ(readableText(QStringLiteral("\n")), QStringLiteral("\n"));
}

TEST(ReadableText, TakesTheLineEndsOfOthers)
{
    EXPECT_EQ(readableText(QStringLiteral("a\r\nb\r\n")), QStringLiteral("a\nb\n"));
}

TEST(ReadableText, ShowsControlsAsWhatTheyAreNot)
{
    EXPECT_EQ(readableText(QString(QChar(u'\0')) + QStringLiteral("a\x1b[31m\rb\x7f")),
              QStringLiteral("\uFFFDa\uFFFD[31m\uFFFDb\uFFFD"));
}

TEST(ReadableText, NeverTurnsTheReadingDirection)
{
    EXPECT_EQ(readableText(QStringLiteral("12 \u202efdp.exe\u202c \u2067x\u2069")),
              QStringLiteral("12 \uFFFDfdp.exe\uFFFD \uFFFDx\uFFFD"));
    EXPECT_EQ(readableText(QStringLiteral("مرحبا")), QStringLiteral("مرحبا"));
}

TEST(ReadableText, CutsEndlessLinesAndTexts)
{
    const QString line = readableText(QString(100000, u'x') + QStringLiteral("\nnext"));
    EXPECT_LT(line.size(), 5000);
    EXPECT_TRUE(line.endsWith(QStringLiteral("x…\nnext"))) << "the line after it is there";
    const QString text = readableText(QStringLiteral("x\n").repeated(1 << 20));
    EXPECT_LE(text.size(), (1 << 20) + 1);
    EXPECT_TRUE(text.endsWith(u'…'));
}

} // namespace
} // namespace pulsebar
