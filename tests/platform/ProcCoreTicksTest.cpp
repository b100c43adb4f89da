#include "platform/linux_/ProcCoreTicks.h"

#include "platform/TemporaryMachine.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ProcCoreTicks, FoldsTheColumnsOfEachProcessor)
{
    const auto cores = ProcCoreTicks(recordedMachine("laptop")).readCoreTicks();
    ASSERT_TRUE(cores);
    ASSERT_EQ(cores->size(), 4U);
    const CoreTicks &first = cores->front();
    EXPECT_EQ(first.number, 0);
    EXPECT_EQ(first.user, 912034U);
    EXPECT_EQ(first.nice, 2210U);
    EXPECT_EQ(first.kernel, 301245U + 0U + 41022U);
    EXPECT_EQ(first.idle, 14120233U + 20133U);
}

TEST(ProcCoreTicks, TimeStolenByAHypervisorIsNotCounted)
{
    const auto cores = ProcCoreTicks(recordedMachine("vm")).readCoreTicks();
    ASSERT_TRUE(cores);
    EXPECT_EQ(cores->at(1).kernel, 4011U + 44U);
    EXPECT_EQ(cores->at(1).idle, 341203U + 188U);
}

TEST(ProcCoreTicks, NumbersOfProcessorsMayHaveGaps)
{
    const auto cores = ProcCoreTicks(recordedMachine("board")).readCoreTicks();
    ASSERT_TRUE(cores);
    ASSERT_EQ(cores->size(), 3U);
    EXPECT_EQ(cores->at(2).number, 3);
}

TEST(ProcCoreTicks, FollowsTheFileAsProcessorsComeAndGo)
{
    const TemporaryMachine machine;
    machine.write("proc/stat", "cpu  3 0 0 9\ncpu0 1 0 0 4\ncpu1 2 0 0 5\n");
    ProcCoreTicks source(machine.root());
    ASSERT_EQ(source.readCoreTicks()->size(), 2U);
    machine.write("proc/stat", "cpu  9 0 0 9\ncpu1 9 0 0 9\n");
    const auto cores = source.readCoreTicks();
    ASSERT_TRUE(cores);
    ASSERT_EQ(cores->size(), 1U);
    EXPECT_EQ(cores->at(0).number, 1);
    EXPECT_EQ(cores->at(0).user, 9U);
}

TEST(ProcCoreTicks, AMissingFileIsAbsentUntilItAppears)
{
    const TemporaryMachine machine;
    ProcCoreTicks source(machine.root());
    EXPECT_FALSE(source.readCoreTicks());
    machine.write("proc/stat", "cpu0 1 2 3 4\n");
    EXPECT_TRUE(source.readCoreTicks());
}

TEST(ProcCoreTicks, ReadsTheRunningKernel)
{
    const auto cores = ProcCoreTicks(Sysroot()).readCoreTicks();
    ASSERT_TRUE(cores);
    EXPECT_FALSE(cores->empty());
    EXPECT_GT(cores->front().idle + cores->front().user, 0U);
}

} // namespace
} // namespace pulsebar
