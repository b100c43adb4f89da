#include "support/QtPrinting.h"
#include "support/Text.h"
#include "util/PlainLine.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(PlainLine, LeavesAnUsualTextAlone)
{
    EXPECT_EQ(plainLine(s("Web Content 50% <b>&"), 100), s("Web Content 50% <b>&"));
    EXPECT_EQ(plainLine(QString(), 1), QString());
}

TEST(PlainLine, KeepsLineBreaksAndControlsOut)
{
    EXPECT_EQ(plainLine(s("a\nb\x1b[31m\u2028c\u0085"), 100), s("a\uFFFDb\uFFFD[31m\uFFFDc\uFFFD"));
}

TEST(PlainLine, LetsNoNameTurnTheLine)
{
    EXPECT_EQ(plainLine(s("a\u202E") + s("b\u2066"), 100), s("a\uFFFD") + s("b\uFFFD"));
}

TEST(PlainLine, ReplacesNulAndHalvesOfPairs)
{
    EXPECT_EQ(plainLine(QString(QChar(u'\0')), 10), s("\uFFFD"));
    EXPECT_EQ(plainLine(QString(QChar(0xD83D)), 10), s("\uFFFD"));
    EXPECT_EQ(plainLine(QString(QChar(0xDE00)) + s("x"), 10), s("\uFFFDx"));
    EXPECT_EQ(plainLine(s("\U0001F600"), 10), s("\U0001F600"));
}

TEST(PlainLine, EndsALongTextWithAnEllipsis)
{
    EXPECT_EQ(plainLine(s("abcdef"), 4), s("abc\u2026"));
    EXPECT_EQ(plainLine(s("abcd"), 4), s("abcd"));
    EXPECT_EQ(plainLine(s("abcd"), 1), s("\u2026"));
}

TEST(PlainLine, CutsNoPairInTwo)
{
    EXPECT_EQ(plainLine(s("ab\U0001F600") + s("cd"), 4), s("ab\u2026"));
    EXPECT_EQ(plainLine(s("abc\U0001F600"), 4), s("abc\u2026"));
}

TEST(PlainLine, IsShortWhereNothingElseIsSaid)
{
    EXPECT_EQ(plainLine(QString(65, u'x')), QString(63, u'x') + s("\u2026"));
}

} // namespace
} // namespace pulsebar
