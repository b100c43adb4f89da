#include "top/ProcessTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace pulsebar::top {
namespace {

constexpr std::uint64_t second = 1'000'000'000;

struct FakeProcess
{
    std::uint64_t cpuTime = 0;
    std::uint64_t startTicks = 10;
    char state = 'S';
    std::uint64_t residentPages = 1;
    std::string comm = "fake";
    bool hidden = false; ///< its stat cannot be read
};

/// A machine of which the test knows what was asked.
class FakeSource : public ProcessSource
{
public:
    bool listAll(const ListHint & /*hint*/, std::vector<pid_t> &pids) override
    {
        ++wholeListings;
        for (const auto &[pid, process] : machine)
            pids.push_back(pid);
        return canList;
    }
    bool listNew(const ListHint &hint, std::vector<pid_t> &pids) override
    {
        if (!hint.lastPid)
            return false;
        for (const auto &[pid, process] : machine) {
            if (pid > *hint.lastPid)
                pids.push_back(pid);
        }
        return true;
    }
    std::optional<std::uint64_t> cpuTime(pid_t pid) override
    {
        const auto found = machine.find(pid);
        if (found == machine.end())
            return std::nullopt;
        return found->second.cpuTime;
    }
    std::optional<PidStat> stat(pid_t pid, KeptFile &file, bool keep) override
    {
        const auto found = machine.find(pid);
        if (found == machine.end() || found->second.hidden)
            return std::nullopt;
        ++statReads[pid];
        if (keep && file.descriptor < 0) {
            file.descriptor = pid;
            mostOpen = std::max(mostOpen, ++open);
        }
        PidStat stat;
        stat.comm = found->second.comm;
        stat.state = found->second.state;
        stat.startTicks = found->second.startTicks;
        stat.residentPages = found->second.residentPages;
        stat.threads = 2;
        return stat;
    }
    void close(KeptFile &file) override
    {
        ASSERT_GE(file.descriptor, 0);
        file.descriptor = -1;
        --open;
    }
    bool startTimesAreLive() const override { return live; }

    std::map<pid_t, FakeProcess> machine;
    std::map<pid_t, int> statReads;
    int wholeListings = 0;
    int open = 0;
    int mostOpen = 0;
    bool canList = true;
    bool live = true;
};

class ProcessTableTest : public testing::Test
{
protected:
    void walk(std::uint64_t elapsed = second)
    {
        WalkTime time;
        time.elapsed = m_first ? 0 : elapsed;
        time.lastWalkTicks = m_ticks;
        time.processors = 2;
        m_table.walk(time, m_hint);
        m_ticks += 100;
        m_first = false;
    }
    const Process *find(pid_t pid)
    {
        const auto &list = m_table.processes();
        const auto found = std::find_if(list.begin(), list.end(),
                                        [&](const Process &each) { return each.pid == pid; });
        return found == list.end() ? nullptr : &*found;
    }
    std::uint32_t tenths(pid_t pid) { return find(pid)->tenthsOfPercent; }
    std::vector<pid_t> order(SortKey key, std::size_t limit = 100)
    {
        std::vector<pid_t> pids;
        for (const auto index : m_table.sorted(key, limit))
            pids.push_back(m_table.processes()[index].pid);
        return pids;
    }

    FakeSource m_source;
    ProcessTable m_table{m_source, false};
    ListHint m_hint{1000, 1000};
    std::uint64_t m_ticks = 1000;
    bool m_first = true;
};

TEST_F(ProcessTableTest, MeasuresCpuOverTheRealInterval)
{
    m_source.machine[7].cpuTime = 5 * second;
    walk();
    EXPECT_EQ(tenths(7), 0U);
    m_source.machine[7].cpuTime += second;
    walk(2 * second);
    EXPECT_EQ(tenths(7), 500U);
    walk();
    EXPECT_EQ(tenths(7), 0U);
}

TEST_F(ProcessTableTest, ReadsOnlyWhatRanAndARotatingShare)
{
    for (pid_t pid = 1; pid <= 64; ++pid)
        m_source.machine[pid] = {};
    walk();
    m_source.statReads.clear();
    for (int i = 0; i < 32; ++i) {
        m_source.machine[5].cpuTime += 1;
        walk();
    }
    for (pid_t pid = 1; pid <= 64; ++pid)
        EXPECT_EQ(m_source.statReads[pid], pid == 5 ? 32 : 1) << pid;
}

TEST_F(ProcessTableTest, NoticesANumberThatWentToAnotherProcess)
{
    m_source.machine[7] = {5 * second, 10, 'S', 1, "old"};
    walk();
    m_source.machine[7] = {second / 2, m_ticks, 'S', 1, "new"};
    walk();
    EXPECT_EQ(tenths(7), 500U);
    EXPECT_EQ(find(7)->name(), "new");
    // A larger clock does not make it the same process.
    m_source.machine[7] = {100 * second, 20, 'S', 1, "newer"};
    walk();
    EXPECT_EQ(tenths(7), 0U);
    EXPECT_EQ(find(7)->name(), "newer");
}

TEST_F(ProcessTableTest, CountsAllOfAProcessThatBeganInTheInterval)
{
    m_source.machine[7] = {};
    walk();
    m_source.machine[1001] = {second / 4, m_ticks + 30};
    m_source.machine[1002] = {50 * second, 3}; // old, but not seen before
    walk();
    EXPECT_EQ(tenths(1001), 250U);
    EXPECT_EQ(tenths(1002), 0U);
}

TEST_F(ProcessTableTest, NeverGoesBelowZeroOrBeyondTheMachine)
{
    m_source.machine[7].cpuTime = 5 * second;
    m_source.machine[8].cpuTime = 5 * second;
    walk();
    m_source.machine[7].cpuTime = 4 * second;
    m_source.machine[8].cpuTime = 5000 * second;
    walk();
    EXPECT_EQ(tenths(7), 0U);
    EXPECT_EQ(tenths(8), 2000U);
}

TEST_F(ProcessTableTest, ForgetsProcessesThatAreGone)
{
    m_source.machine[7] = {};
    m_source.machine[8] = {};
    m_source.machine[9] = {};
    m_source.machine[9].hidden = true;
    walk();
    EXPECT_EQ(find(9), nullptr);
    m_source.machine.erase(7);
    walk();
    EXPECT_EQ(find(7), nullptr);
    EXPECT_NE(find(8), nullptr);
    EXPECT_EQ(m_table.counts().total, 1U);
}

TEST_F(ProcessTableTest, ListsNewProcessesAloneAndEverythingNowAndThen)
{
    m_source.machine[7] = {};
    walk();
    EXPECT_EQ(m_source.wholeListings, 1);
    m_source.machine[1001] = {};
    m_source.machine[500] = {}; // came with a number that a listing of new ones does not see
    walk();
    EXPECT_EQ(m_source.wholeListings, 1);
    EXPECT_NE(find(1001), nullptr);
    EXPECT_EQ(find(500), nullptr);
    for (int i = 0; i < 30; ++i)
        walk();
    EXPECT_EQ(m_source.wholeListings, 2);
    EXPECT_NE(find(500), nullptr);
    m_hint = {};
    walk();
    EXPECT_EQ(m_source.wholeListings, 3);
    EXPECT_EQ(m_table.processes().size(), 3U);
}

TEST_F(ProcessTableTest, AFailedListingKeepsWhatIsKnown)
{
    m_source.machine[7] = {};
    walk();
    m_source.canList = false;
    m_hint = {};
    walk();
    EXPECT_NE(find(7), nullptr);
}

TEST_F(ProcessTableTest, KeepsABoundedNumberOfFilesOfThoseThatRunOften)
{
    for (pid_t pid = 1; pid <= 400; ++pid)
        m_source.machine[pid] = {};
    const auto runAll = [&] {
        for (auto &[pid, process] : m_source.machine)
            ++process.cpuTime;
        walk();
    };
    for (int i = 0; i < 5; ++i)
        runAll();
    EXPECT_EQ(m_source.open, 256);
    EXPECT_EQ(m_source.mostOpen, 256);
    m_source.machine.erase(1);
    walk();
    EXPECT_EQ(m_source.open, 255);
    for (int i = 0; i < 10; ++i)
        walk();
    EXPECT_EQ(m_source.open, 0);
}

TEST_F(ProcessTableTest, ClosesTheFilesOfProcessesThatALaterListingLacks)
{
    m_source.machine[7] = {};
    m_source.machine[8] = {};
    for (int i = 0; i < 4; ++i) {
        ++m_source.machine[7].cpuTime;
        ++m_source.machine[8].cpuTime;
        walk();
    }
    EXPECT_EQ(m_source.open, 2);
    m_source.machine.clear();
    m_source.machine[9] = {};
    m_hint = {};
    walk();
    EXPECT_EQ(m_source.open, 0);
    EXPECT_EQ(m_table.processes().size(), 1U);
}

TEST_F(ProcessTableTest, SortsByShownCpuThenByTime)
{
    for (pid_t pid = 1; pid <= 4; ++pid)
        m_source.machine[pid].cpuTime = static_cast<std::uint64_t>(pid) * second;
    walk();
    m_source.machine[2].cpuTime += second / 2;
    m_source.machine[1].cpuTime += 10; // too little to show
    walk();
    EXPECT_EQ(order(SortKey::Cpu), (std::vector<pid_t>{2, 4, 3, 1}));
    EXPECT_EQ(order(SortKey::Cpu, 2), (std::vector<pid_t>{2, 4}));
    EXPECT_EQ(order(SortKey::Cpu, 0), std::vector<pid_t>{});
}

TEST_F(ProcessTableTest, SortsByMemoryThenByCpu)
{
    m_source.machine[1].residentPages = 5;
    m_source.machine[2].residentPages = 9;
    m_source.machine[3].residentPages = 5;
    m_source.machine[3].cpuTime = second;
    walk();
    EXPECT_EQ(order(SortKey::Memory), (std::vector<pid_t>{2, 3, 1}));
}

TEST_F(ProcessTableTest, CountsByState)
{
    const std::string states = "RSIDTtZS";
    for (std::size_t i = 0; i < states.size(); ++i)
        m_source.machine[static_cast<pid_t>(i) + 1].state = states[i];
    walk();
    const auto &counts = m_table.counts();
    EXPECT_EQ(counts.total, 8U);
    EXPECT_EQ(counts.running, 1U);
    EXPECT_EQ(counts.sleeping, 3U);
    EXPECT_EQ(counts.stuck, 1U);
    EXPECT_EQ(counts.stopped, 2U);
    EXPECT_EQ(counts.zombie, 1U);
    EXPECT_EQ(counts.threads, 16U);
}

TEST_F(ProcessTableTest, SizesAreFreshWhereTheyAreShown)
{
    m_source.machine[7].residentPages = 5;
    walk();
    m_source.machine[7].residentPages = 6;
    m_table.refreshSizes(0);
    EXPECT_EQ(find(7)->residentPages, 6U);
    // The number's new owner is none of the row's business.
    m_source.machine[7] = {0, 99, 'S', 7};
    m_table.refreshSizes(0);
    EXPECT_EQ(find(7)->residentPages, 6U);
}

TEST_F(ProcessTableTest, ARecordedMachinesNewProcessCountsWhole)
{
    m_source.live = false;
    walk();
    m_source.machine[1001] = {second / 2, 3};
    walk();
    EXPECT_EQ(tenths(1001), 500U);
}

} // namespace
} // namespace pulsebar::top
