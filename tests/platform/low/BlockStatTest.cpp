#include "platform/linux_/low/block_stat.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(BlockStat, TakesTheColumnsThatAreUsed)
{
    const auto stat = parseBlockStat("       1        2        3        4        5        6        "
                                     "7        8        9       10       11       12\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->readOperations, 1U);
    EXPECT_EQ(stat->readSectors, 3U);
    EXPECT_EQ(stat->readMilliseconds, 4U);
    EXPECT_EQ(stat->writeOperations, 5U);
    EXPECT_EQ(stat->writtenSectors, 7U);
    EXPECT_EQ(stat->writeMilliseconds, 8U);
}

TEST(BlockStat, ALineThatIsCutOffOrDamagedIsAbsent)
{
    for (const char *text : {"", "\n", "1 2 3 4 5 6 7", "1 2 x 4 5 6 7 8", "1 2 -3 4 5 6 7 8",
                             "1 2 3 4\n5 6 7 8", "1 2 99999999999999999999 4 5 6 7 8"})
        EXPECT_FALSE(parseBlockStat(text)) << text;
}

} // namespace
} // namespace pulsebar
