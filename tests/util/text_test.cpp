#include "support/QtPrinting.h"
#include "util/Text.h"

namespace pulsebar {
namespace {

const Text Absent;

TEST(SubstringTo, EndsBeforeTheFirstSeparatorIgnoringCase)
{
    EXPECT_EQ(substringTo(QStringLiteral("abc"), QStringLiteral("c")), QStringLiteral("ab"));
    EXPECT_EQ(substringTo(QStringLiteral("abc"), QStringLiteral("B")), QStringLiteral("a"));
    EXPECT_EQ(substringTo(QStringLiteral("x=1=2"), QStringLiteral("=")), QStringLiteral("x"));
    EXPECT_EQ(substringTo(QStringLiteral("straÄe"), QStringLiteral("ä")), QStringLiteral("stra"));
}

TEST(SubstringTo, AnEmptyPrefixIsAbsent)
{
    EXPECT_EQ(substringTo(QStringLiteral("abc"), QStringLiteral("a")), Absent);
    EXPECT_EQ(substringTo(QStringLiteral("abc"), QStringLiteral("x")), Absent);
    EXPECT_EQ(substringTo(QStringLiteral("abc"), QString()), Absent);
    EXPECT_EQ(substringTo(QString(), QStringLiteral("a")), Absent);
}

TEST(SubstringFrom, BeginsAfterTheFirstSeparatorIgnoringCase)
{
    const QString line = QStringLiteral("key: value: more");
    EXPECT_EQ(substringFrom(QStringLiteral("key: value"), QStringLiteral(": ")),
              QStringLiteral("value"));
    EXPECT_EQ(substringFrom(line, QStringLiteral(": ")), QStringLiteral("value: more"));
    EXPECT_EQ(substringFrom(line, QStringLiteral("KEY: V")), QStringLiteral("alue: more"));
}

TEST(SubstringFrom, AnEmptySuffixIsAbsent)
{
    EXPECT_EQ(substringFrom(QStringLiteral("key: "), QStringLiteral(": ")), Absent);
    EXPECT_EQ(substringFrom(QStringLiteral("abc"), QStringLiteral("x")), Absent);
    EXPECT_EQ(substringFrom(QStringLiteral("abc"), QString()), Absent);
}

TEST(SubstringFromTo, StandsStrictlyBetweenTheMarkers)
{
    const QString open = QStringLiteral("(");
    const QString close = QStringLiteral(")");
    EXPECT_EQ(substringFromTo(QStringLiteral("(x)"), open, close), QStringLiteral("x"));
    EXPECT_EQ(substringFromTo(QStringLiteral("()"), open, close), Absent);
    EXPECT_EQ(substringFromTo(QStringLiteral("(x"), open, close), Absent);
    EXPECT_EQ(substringFromTo(QStringLiteral("x)"), open, close), Absent);
    EXPECT_EQ(substringFromTo(QStringLiteral("x("), open, close), Absent);
    EXPECT_EQ(substringFromTo(QStringLiteral("(x)"), Absent, close), Absent);
    EXPECT_EQ(substringFromTo(QStringLiteral("(x)"), open, Absent), Absent);
}

TEST(SubstringFromTo, LooksForTheEndOnlyAfterTheStart)
{
    EXPECT_EQ(substringFromTo(QStringLiteral("b a1b2"), QStringLiteral("A"), QStringLiteral("B")),
              QStringLiteral("1"));
}

TEST(Cuts, OfAnAbsentTextAreAbsent)
{
    const QString piece = QStringLiteral("a");
    EXPECT_EQ(substringTo(Absent, piece), Absent);
    EXPECT_EQ(substringFrom(Absent, piece), Absent);
    EXPECT_EQ(substringFromTo(Absent, piece, piece), Absent);
    EXPECT_EQ(removeString(Absent, piece), Absent);
    EXPECT_EQ(replaceStringFromTo(Absent, piece, piece), Absent);
    EXPECT_EQ(replaceReturnCode(Absent), Absent);
    EXPECT_EQ(substringTo(substringFrom(QStringLiteral("abc"), QStringLiteral("x")), piece),
              Absent);
}

TEST(RemoveString, IsExactAndLeavesOthersAlone)
{
    EXPECT_EQ(removeString(QStringLiteral("a,b,,c"), QStringLiteral(",")), QStringLiteral("abc"));
    EXPECT_EQ(removeString(QStringLiteral("axb"), QStringLiteral("X")), QStringLiteral("axb"));
    EXPECT_EQ(removeString(QStringLiteral("aaa"), QStringLiteral("aa")), QStringLiteral("a"));
    EXPECT_EQ(removeString(QStringLiteral(",,"), QStringLiteral(",")), QString());
}

TEST(ReplaceString, IsExactAndDoesNotOverlap)
{
    EXPECT_EQ(
        replaceStringFromTo(QStringLiteral("aaaa"), QStringLiteral("aa"), QStringLiteral("b")),
        QStringLiteral("bb"));
    EXPECT_EQ(replaceStringFromTo(QStringLiteral("aA"), QStringLiteral("a"), QStringLiteral("")),
              QStringLiteral("A"));
}

TEST(ReplaceString, WithoutAnOldPieceChangesNothing)
{
    const QString text = QStringLiteral("abc");
    EXPECT_EQ(replaceStringFromTo(text, QString(), QStringLiteral("x")), text);
    EXPECT_EQ(replaceStringFromTo(text, Absent, QStringLiteral("x")), text);
}

TEST(ReplaceReturnCode, MakesEveryLineEndTheSame)
{
    EXPECT_EQ(replaceReturnCode(QStringLiteral("a\r\nb\rc\n")), QStringLiteral("a\nb\nc\n"));
    EXPECT_EQ(replaceReturnCode(QStringLiteral("\r\r\n\n")), QStringLiteral("\n\n\n"));
}

} // namespace
} // namespace pulsebar
