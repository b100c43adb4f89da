#include "platform/linux_/low/proc_diskstats.h"
#include "platform/linux_/low/proc_loadavg.h"
#include "platform/linux_/low/proc_net_dev.h"
#include "platform/linux_/low/proc_stat.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ProcStatSummary, TakesTotalsAndCounts)
{
    const auto summary = parseProcStatSummary("cpu 1 2 3 4\ncpu0 1 2 3 4\ncpu3 x\nintr 7 0 0\n"
                                              "processes 12978\nprocs_running 2\n"
                                              "procs_blocked 1\n");
    ASSERT_TRUE(summary.total);
    EXPECT_EQ(summary.total->idle, 4U);
    EXPECT_EQ(summary.processors, 2);
    EXPECT_EQ(summary.forks, 12978U);
    EXPECT_EQ(summary.running, 2U);
    EXPECT_EQ(summary.blocked, 1U);
    EXPECT_FALSE(parseProcStatSummary("").total);
    EXPECT_FALSE(parseProcStatSummary("processes x").forks);
}

TEST(LoadAverage, TakesTheAveragesAsTheyStand)
{
    const auto load = parseLoadAverage("0.52 10.40 0.05 1/89 12990\n");
    ASSERT_TRUE(load);
    EXPECT_EQ(load->oneMinute, "0.52");
    EXPECT_EQ(load->fiveMinutes, "10.40");
    EXPECT_EQ(load->fifteenMinutes, "0.05");
    EXPECT_EQ(load->lastPid, 12990);
}

TEST(LoadAverage, AnswersNothingForAnotherText)
{
    for (const auto *text :
         {"", "0.1 0.2 0.3 1/2", "0.1 0.2 0.3 1/2 x", "user, 0.2 0.3 1/2 5", "0.1.2 0.2 0.3 1/2 5",
          "0.1 0.2 0.3 1/2 99999999999", "0.1 0.2 0.11111111111111111 1/2 5"})
        EXPECT_FALSE(parseLoadAverage(text)) << text;
}

TEST(NetDev, TakesBytesAndPackets)
{
    const auto list = parseNetDev("Inter-|   Receive  |  Transmit\n face |bytes packets|\n"
                                  "    lo:    3267      29    0    0    0     0          0"
                                  "         0     3268      30    0    0    0     0  0 0\n"
                                  "eth0:1:5 6 0 0 0 0 0 0 7 8 0 0 0 0 0 0\n"
                                  "bad: 1 2 3\n");
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].name, "lo");
    EXPECT_EQ(list[0].inBytes, 3267U);
    EXPECT_EQ(list[0].inPackets, 29U);
    EXPECT_EQ(list[0].outBytes, 3268U);
    EXPECT_EQ(list[0].outPackets, 30U);
    EXPECT_EQ(list[1].name, "eth0:1");
    EXPECT_EQ(list[1].outPackets, 8U);
}

TEST(DiskStats, TakesReadsAndWrites)
{
    const auto list = parseDiskStats("   8       0 sda 5 1 8 100 6 2 16 200 0 300 300\n"
                                     "   8       1\nx 1 sdb 1 1 1 1 1 1 1\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].name, "sda");
    EXPECT_EQ(list[0].reads, 5U);
    EXPECT_EQ(list[0].sectorsRead, 8U);
    EXPECT_EQ(list[0].writes, 6U);
    EXPECT_EQ(list[0].sectorsWritten, 16U);
}

} // namespace
} // namespace pulsebar
