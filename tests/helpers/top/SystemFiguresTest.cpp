#include "top/SystemFigures.h"

#include "helpers/common/TestFolder.h"

#include <gtest/gtest.h>

namespace pulsebar::top {
namespace {

TEST(CpuShares, AreThoseOfTheIntervalWithNiceAsUser)
{
    const auto shares = cpuSharesBetween({100, 10, 50, 1000}, {130, 20, 70, 1940});
    ASSERT_TRUE(shares);
    EXPECT_EQ(shares->user, 400U);
    EXPECT_EQ(shares->kernel, 200U);
    EXPECT_EQ(shares->idle, 9400U);
}

TEST(CpuShares, TakeABackwardCounterAsStandingStill)
{
    const auto shares = cpuSharesBetween({100, 0, 0, 1000}, {150, 0, 0, 990});
    ASSERT_TRUE(shares);
    EXPECT_EQ(shares->user, 10'000U);
    EXPECT_EQ(shares->idle, 0U);
}

TEST(CpuShares, AreUnknownWhileNoTickPassed)
{
    EXPECT_FALSE(cpuSharesBetween({1, 2, 3, 4}, {1, 2, 3, 4}));
}

MemInfo meminfo()
{
    MemInfo info;
    info.memTotal = 8192 * 1024 + 512;
    info.memAvailable = 1656 * 1024;
    info.active = 3000 * 1024 + 1023;
    info.inactive = 2000 * 1024;
    info.unevictable = 1000 * 1024;
    info.sUnreclaim = 500 * 1024;
    info.kernelStack = 16 * 1024;
    info.pageTables = 20 * 1024;
    info.swapTotal = 1000 * 1024;
    info.swapFree = 400 * 1024;
    return info;
}

TEST(MemoryFigures, UsedAndFreeMakeTheWhole)
{
    const auto figures = memoryFigures(meminfo(), 0);
    EXPECT_EQ(figures.wired, 1536U);
    EXPECT_EQ(figures.active, 3000U);
    EXPECT_EQ(figures.inactive, 2000U);
    EXPECT_EQ(figures.used, 6536U);
    EXPECT_EQ(figures.free, 1656U);
    EXPECT_EQ(figures.swapUsed, 600U);
    EXPECT_EQ(figures.swapFree, 400U);
}

TEST(MemoryFigures, TheZfsCacheIsNotUsed)
{
    const auto figures = memoryFigures(meminfo(), std::uint64_t{1000} << 20U);
    EXPECT_EQ(figures.used, 5536U);
    EXPECT_EQ(figures.free, 2656U);
    const auto absurd = memoryFigures(meminfo(), std::uint64_t{1} << 60U);
    EXPECT_EQ(absurd.used, 0U);
    EXPECT_EQ(absurd.free, 8192U);
}

TEST(MemoryFigures, AnOldKernelsFreeMemoryIsAddedUp)
{
    auto info = meminfo();
    info.memAvailable.reset();
    info.memFree = 100 * 1024;
    info.buffers = 10 * 1024;
    info.cached = 1 * 1024;
    EXPECT_EQ(memoryFigures(info, 0).free, 111U);
}

TEST(MemoryFigures, WhatIsNotToldIsAbsent)
{
    const auto figures = memoryFigures(MemInfo(), 0);
    EXPECT_FALSE(figures.wired);
    EXPECT_FALSE(figures.used);
    EXPECT_FALSE(figures.free);
    EXPECT_FALSE(figures.swapUsed);
}

class SystemReaderTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder.write("proc/stat", "cpu 100 0 100 800 0 0 0\ncpu0 1 1 1 1\ncpu1 1 1 1 1\n"
                                    "processes 77\nprocs_running 3\n");
        m_folder.write("proc/meminfo", "MemTotal: 2048 kB\nMemAvailable: 1024 kB\n");
        m_folder.write("proc/loadavg", "0.10 0.20 0.30 1/99 4321\n");
        m_folder.write("proc/net/dev", "Inter-| Receive | Transmit\n face |bytes packets\n"
                                       "    lo: 9 9 0 0 0 0 0 0 9 9 0 0 0 0 0 0\n"
                                       "  eth0: 1000 10 0 0 0 0 0 0 2000 20 0 0 0 0 0 0\n"
                                       "   br0: 900 9 0 0 0 0 0 0 1900 19 0 0 0 0 0 0\n");
        m_folder.write("proc/diskstats", "8 0 sda 5 0 8 0 6 0 16 0 0 0 0\n"
                                         "8 1 sda1 5 0 8 0 6 0 16 0 0 0 0\n"
                                         "7 0 loop0 1 0 1 0 1 0 1 0 0 0 0\n");
        m_folder.write("sys/block/sda/device/x", "");
        m_folder.write("sys/block/loop0/x", "");
    }
    TestFolder m_folder;
};

TEST_F(SystemReaderTest, ReadsTheMachineAndFollowsIt)
{
    m_folder.write("sys/class/net/eth0/device/x", "");
    SystemReader reader{Sysroot(m_folder.path())};
    auto figures = reader.read();
    ASSERT_TRUE(figures.cpu);
    EXPECT_EQ(figures.cpu->user, 1000U); // since boot: nothing else is known yet
    EXPECT_EQ(figures.processors, 2U);
    EXPECT_EQ(figures.runnableThreads, 3U);
    EXPECT_EQ(figures.listHint.forks, 77U);
    EXPECT_EQ(figures.listHint.lastPid, 4321);
    EXPECT_EQ(figures.memory.used, 1U);
    EXPECT_EQ(figures.loadAverages->at(2), "0.30");
    EXPECT_EQ(figures.network->inBytes, 1000U);
    EXPECT_EQ(figures.network->outCount, 20U);
    EXPECT_EQ(figures.disks->inCount, 5U);
    EXPECT_EQ(figures.disks->outBytes, 16U * 512U);

    m_folder.write("proc/stat", "cpu 150 0 150 800 0 0 0\n");
    figures = reader.read();
    EXPECT_EQ(figures.cpu->user, 5000U);
    EXPECT_EQ(figures.cpu->idle, 0U);
    figures = reader.read(); // not a tick later
    EXPECT_EQ(figures.cpu->user, 5000U);
}

TEST_F(SystemReaderTest, InAContainerEveryInterfaceButTheLoopCounts)
{
    SystemReader reader{Sysroot(m_folder.path())};
    EXPECT_EQ(reader.read().network->inBytes, 1900U);
}

TEST_F(SystemReaderTest, KnowsTheZfsCache)
{
    m_folder.write("proc/spl/kstat/zfs/arcstats", "9 1 0x01\nname type data\nsize 4 1048576\n");
    SystemReader reader{Sysroot(m_folder.path())};
    EXPECT_EQ(reader.read().memory.used, 0U);
}

TEST_F(SystemReaderTest, AnEmptyMachineTellsNothing)
{
    m_folder.remove("proc");
    SystemReader reader{Sysroot(m_folder.path())};
    const auto &figures = reader.read();
    EXPECT_FALSE(figures.cpu);
    EXPECT_FALSE(figures.memory.used);
    EXPECT_FALSE(figures.loadAverages);
    EXPECT_FALSE(figures.network);
    EXPECT_FALSE(figures.disks);
    EXPECT_EQ(figures.processors, 1U);
}

} // namespace
} // namespace pulsebar::top
