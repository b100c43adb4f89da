#include "platform/linux_/low/proc_meminfo.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(MemInfo, TakesTheFiguresByName)
{
    const auto info = parseMemInfo("MemTotal:       24684084 kB\n"
                                   "MemAvailable:   24327180 kB\n"
                                   "Active:            18996 kB\n"
                                   "Active(anon):       1548 kB\n"
                                   "SUnreclaim:        35564 kB\n"
                                   "HugePages_Total:       0\n"
                                   "PageTables:         1928 kB");
    EXPECT_EQ(info.memTotal, 24684084U);
    EXPECT_EQ(info.memAvailable, 24327180U);
    EXPECT_EQ(info.active, 18996U);
    EXPECT_EQ(info.sUnreclaim, 35564U);
    EXPECT_EQ(info.pageTables, 1928U);
    EXPECT_FALSE(info.inactive);
    EXPECT_FALSE(info.swapTotal);
}

TEST(MemInfo, LeavesMalformedLinesOut)
{
    const auto info = parseMemInfo("MemTotal: -1 kB\nMemFree:\n\nActive: x\nSwapFree: 7 kB\n");
    EXPECT_FALSE(info.memTotal);
    EXPECT_FALSE(info.memFree);
    EXPECT_FALSE(info.active);
    EXPECT_EQ(info.swapFree, 7U);
}

} // namespace
} // namespace pulsebar
