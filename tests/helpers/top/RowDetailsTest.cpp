#include "top/RowDetails.h"

#include "helpers/common/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace pulsebar::top {
namespace {

constexpr std::uint64_t second = 1'000'000'000;

Process processNamed(std::string_view comm)
{
    Process process;
    process.pid = 42;
    process.known = true;
    process.state = 'S';
    process.threads = 1;
    process.startTicks = 5;
    process.cpuTime = 10;
    process.commLength = static_cast<std::uint8_t>(comm.size());
    std::copy_n(comm.begin(), std::min(comm.size(), Process::commSpace), process.comm.begin());
    return process;
}

std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class RowDetailsTest : public testing::Test
{
protected:
    void writeStatus(int switches, const std::string &uid = "0 4000000001 0 0")
    {
        m_folder.write("proc/42/status", "Name:\tx\nState:\tS (sleeping)\nUid:\t" + uid +
                                             "\nvoluntary_ctxt_switches:\t" +
                                             std::to_string(switches) + "\n");
    }
    TestFolder m_folder;
    RowDetails m_details{Sysroot(m_folder.path()), *parseColumnList("user,power,sysbsd,threads")};
};

TEST_F(RowDetailsTest, ReadsWhatTheColumnsWant)
{
    writeStatus(100);
    m_folder.write("proc/42/io", "syscr: 7\nsyscw: 5\n");
    auto process = processNamed("bash");
    process.tenthsOfPercent = 12;
    process.residentPages = 2;
    const auto row = m_details.rowOf(process, second);
    EXPECT_EQ(row.name, "bash");
    EXPECT_EQ(row.user, "4000000001"); // nobody has that number
    EXPECT_EQ(row.calls, 12U);
    EXPECT_EQ(row.wakeUpsPerSecond, 0.0);
    EXPECT_EQ(row.tenthsOfPercent, 12U);
    EXPECT_GE(row.residentBytes, 8192U);
}

TEST_F(RowDetailsTest, WhatMayNotBeReadIsAbsent)
{
    const auto row = m_details.rowOf(processNamed("bash"), second);
    EXPECT_FALSE(row.user);
    EXPECT_FALSE(row.calls);
    EXPECT_EQ(row.name, "bash");
}

TEST_F(RowDetailsTest, CountsWakeUpsSinceTheLastLook)
{
    auto process = processNamed("bash");
    writeStatus(100);
    m_details.rowOf(process, second);
    process.cpuTime = 20;
    writeStatus(150);
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 3 * second).wakeUpsPerSecond, 25.0);
    // It slept: nothing is read, and there was nothing.
    writeStatus(1000);
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 4 * second).wakeUpsPerSecond, 0.0);
    process.cpuTime = 30;
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 5 * second).wakeUpsPerSecond, 850.0);
}

TEST_F(RowDetailsTest, ThreadsThatEndedTakeNoWakeUpsBack)
{
    auto process = processNamed("bash");
    writeStatus(100);
    m_details.rowOf(process, second);
    process.cpuTime = 20;
    writeStatus(40);
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 2 * second).wakeUpsPerSecond, 0.0);
    process.cpuTime = 30;
    writeStatus(45);
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 3 * second).wakeUpsPerSecond, 5.0);
}

TEST_F(RowDetailsTest, KeepsFilesOpenOnlyWhileTheirRowIsShown)
{
    auto process = processNamed("bash");
    m_folder.write("proc/42/io", "syscr: 1\nsyscw: 1\n");
    writeStatus(1);
    const auto before = openDescriptors();
    for (int i = 0; i < 3; ++i) {
        process.cpuTime += 10;
        EXPECT_EQ(m_details.rowOf(process, second).calls, 2U);
        m_details.endReport();
    }
    EXPECT_EQ(openDescriptors(), before + 2);
    m_folder.write("proc/42/io", "syscr: 5\nsyscw: 1\n");
    process.cpuTime += 10;
    EXPECT_EQ(m_details.rowOf(process, second).calls, 6U);
    m_details.endReport();
    m_details.endReport();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(RowDetailsTest, KeepsABoundedNumberOfFiles)
{
    const auto before = openDescriptors();
    const auto folderOf = [](int pid) { return "proc/" + std::to_string(pid); };
    for (int pid = 1; pid <= 100; ++pid) {
        m_folder.write(folderOf(pid) + "/status", "Uid:\t0\t0\n");
        m_folder.write(folderOf(pid) + "/io", "syscr: 1\nsyscw: 1\n");
    }
    for (int report = 0; report < 3; ++report) {
        for (int pid = 1; pid <= 100; ++pid) {
            auto process = processNamed("bash");
            process.pid = pid;
            process.cpuTime = static_cast<std::uint64_t>(report);
            EXPECT_EQ(m_details.rowOf(process, second).calls, 2U);
        }
        m_details.endReport();
    }
    EXPECT_GT(openDescriptors(), before);
    EXPECT_LE(openDescriptors(), before + 128);
}

TEST_F(RowDetailsTest, ANewOwnerOfTheNumberStartsAnew)
{
    auto process = processNamed("bash");
    writeStatus(100);
    m_details.rowOf(process, second);
    process = processNamed("other");
    process.startTicks = 99;
    process.cpuTime = 11;
    writeStatus(500, "0 0 0 0");
    const auto row = m_details.rowOf(process, 2 * second);
    EXPECT_EQ(row.name, "other");
    EXPECT_EQ(row.user, "root");
    EXPECT_DOUBLE_EQ(row.wakeUpsPerSecond, 0.0);
}

TEST_F(RowDetailsTest, CompletesACutNameAndFollowsItsChange)
{
    using namespace std::string_literals;
    m_folder.write("proc/42/cmdline", "/usr/bin/gnome-terminal-server\0--x\0"s);
    auto process = processNamed("gnome-terminal-");
    EXPECT_EQ(m_details.rowOf(process, second).name, "gnome-terminal-server");
    auto changed = processNamed("after exec");
    changed.cpuTime = 11;
    EXPECT_EQ(m_details.rowOf(changed, 2 * second).name, "after exec");
}

TEST_F(RowDetailsTest, ReadsNoMoreThanItNeedsOfAHugeCommandLine)
{
    m_folder.write("proc/42/cmdline", std::string(1'000'000, 'x'));
    EXPECT_EQ(m_details.rowOf(processNamed("xxxxxxxxxxxxxxx"), second).name.size(), 64U);
}

TEST_F(RowDetailsTest, TakesAKernelWorkersLongNameFromItsStat)
{
    m_folder.writeStat(42, "kworker/u8:0-events_unbound", 1, 5);
    EXPECT_EQ(m_details.rowOf(processNamed("kworker/u8:0-events_unbound"), second).name,
              "kworker/u8:0-events_unbound");
    m_folder.remove("proc/42");
    auto vanished = processNamed("kworker/u8:0-events_unbound");
    vanished.cpuTime = 99;
    EXPECT_EQ(m_details.rowOf(vanished, second).name, "kworker/u8:0-eve");
}

TEST_F(RowDetailsTest, WalksTheThreadsOfABusyProcess)
{
    writeStatus(1000);
    for (const auto *thread : {"42", "43", "44"}) {
        m_folder.write(std::string("proc/42/task/") + thread + "/status",
                       std::string("State:\t") + (thread[1] == '4' ? "R" : "S") +
                           " (x)\nvoluntary_ctxt_switches:\t10\n");
    }
    auto process = processNamed("many");
    process.threads = 3;
    process.tenthsOfPercent = 500;
    auto row = m_details.rowOf(process, second);
    EXPECT_EQ(row.threads, 3U);
    EXPECT_EQ(row.runningThreads, 1U);
    // A quiet one's are not: the sums of one thread and of all are never compared.
    process.tenthsOfPercent = 1;
    process.cpuTime = 20;
    row = m_details.rowOf(process, 2 * second);
    EXPECT_FALSE(row.runningThreads);
    EXPECT_DOUBLE_EQ(row.wakeUpsPerSecond, 0.0);
}

TEST_F(RowDetailsTest, KnowsThatASingleThreadRuns)
{
    writeStatus(1);
    auto process = processNamed("busy");
    process.state = 'R';
    EXPECT_EQ(m_details.rowOf(process, second).runningThreads, 1U);
}

TEST_F(RowDetailsTest, ForgetsRowsThatAreNoLongerShown)
{
    auto process = processNamed("bash");
    writeStatus(100);
    m_details.rowOf(process, second);
    for (int i = 0; i < 20; ++i)
        m_details.endReport();
    process.cpuTime = 20;
    writeStatus(200);
    EXPECT_DOUBLE_EQ(m_details.rowOf(process, 2 * second).wakeUpsPerSecond, 0.0);
}

} // namespace
} // namespace pulsebar::top
