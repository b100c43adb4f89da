#include "platform/linux_/low/proc_stat.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

constexpr std::string_view twoProcessors = "cpu  30 4 20 600 10 2 3 99 7 8\n"
                                           "cpu0 10 1 8 300 4 1 1 50 3 4\n"
                                           "cpu2 20 3 12 300 6 1 2 49 4 4\n"
                                           "intr 5 0 0\n"
                                           "ctxt 1\n";

TEST(ProcStat, FoldsTheTotalLineWithoutStealAndGuest)
{
    const auto total = parseTotalTicks(twoProcessors);
    ASSERT_TRUE(total);
    EXPECT_EQ(total->user, 30U);
    EXPECT_EQ(total->nice, 4U);
    EXPECT_EQ(total->kernel, 25U);
    EXPECT_EQ(total->idle, 610U);
}

TEST(ProcStat, ListsProcessorsByTheKernelsNumberWithGaps)
{
    const auto list = parseNumberedTicks(twoProcessors);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 2U);
    EXPECT_EQ((*list)[0].number, 0);
    EXPECT_EQ((*list)[1].number, 2);
    EXPECT_EQ((*list)[1].ticks.user, 20U);
    EXPECT_EQ((*list)[1].ticks.kernel, 15U);
    EXPECT_EQ((*list)[1].ticks.idle, 306U);
}

TEST(ProcStat, OrdersProcessorsByNumber)
{
    const auto list = parseNumberedTicks("cpu10 1 0 0 0\ncpu9 2 0 0 0\n");
    ASSERT_TRUE(list);
    EXPECT_EQ((*list)[0].number, 9);
    EXPECT_EQ((*list)[1].number, 10);
}

TEST(ProcStat, CountsColumnsOfAnOldKernelAsZero)
{
    const auto total = parseTotalTicks("cpu 1 2 3 4\n");
    ASSERT_TRUE(total);
    EXPECT_EQ(total->kernel, 3U);
    EXPECT_EQ(total->idle, 4U);
}

TEST(ProcStat, AnswersNothingForWhatIsNotThere)
{
    EXPECT_FALSE(parseTotalTicks(""));
    EXPECT_FALSE(parseTotalTicks("cpu 1 2 3\n"));
    EXPECT_FALSE(parseTotalTicks("cpu0 1 2 3 4\n"));
    EXPECT_FALSE(parseNumberedTicks(""));
    EXPECT_FALSE(parseNumberedTicks("cpu 1 2 3 4\n"));
    EXPECT_FALSE(parseNumberedTicks("cpu-1 1 2 3 4\ncpu1x 1 2 3 4\ncpu99999999999 1 2 3 4\n"));
}

TEST(ProcStat, LeavesAMalformedProcessorOutAndGoesOn)
{
    const auto list = parseNumberedTicks("cpu0 a b c d\ncpu1 1 2 3 4\n");
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 1U);
    EXPECT_EQ(list->front().number, 1);
}

} // namespace
} // namespace pulsebar
