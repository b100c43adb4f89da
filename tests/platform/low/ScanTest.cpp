#include "platform/linux_/low/Scan.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(Scan, TakesLinesWithAndWithoutANewlineAtTheEnd)
{
    Scan scan("one\n\nthree");
    EXPECT_EQ(scan.line(), "one");
    EXPECT_EQ(scan.line(), "");
    EXPECT_EQ(scan.line(), "three");
    EXPECT_FALSE(scan.line());
}

TEST(Scan, TakesWordsAndNumbersOverRunsOfBlanks)
{
    Scan scan("  cpu\t 12  -7 x");
    EXPECT_EQ(scan.word(), "cpu");
    EXPECT_EQ(scan.number(), 12U);
    EXPECT_FALSE(scan.number());
    EXPECT_EQ(scan.signedNumber(), -7);
    EXPECT_FALSE(scan.number());
    EXPECT_EQ(scan.word(), "x");
    EXPECT_FALSE(scan.word());
    EXPECT_TRUE(scan.atEnd());
}

TEST(Scan, LeavesANumberThatDoesNotFitAbsent)
{
    EXPECT_EQ(Scan("18446744073709551615").number(), UINT64_MAX);
    EXPECT_FALSE(Scan("18446744073709551616").number());
    EXPECT_FALSE(Scan("").number());
}

TEST(Scan, SkipsNoMoreWordsThanThereAre)
{
    Scan scan("a b c");
    EXPECT_TRUE(scan.skipWords(2));
    EXPECT_EQ(scan.word(), "c");
    EXPECT_FALSE(scan.skipWords(1));
}

} // namespace
} // namespace pulsebar
