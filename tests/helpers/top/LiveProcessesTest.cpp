#include "top/LiveProcesses.h"

#include "helpers/common/TestFolder.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_loadavg.h"
#include "platform/linux_/low/proc_stat.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <unistd.h>

namespace pulsebar::top {
namespace {

/// A child process that waits to be ended.
class Child
{
public:
    Child()
        : m_pid(::fork())
    {
        if (m_pid == 0) {
            for (;;)
                ::pause();
        }
    }
    ~Child() { end(); }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    pid_t pid() const { return m_pid; }
    void kill() const { ::kill(m_pid, SIGKILL); }
    void end()
    {
        if (m_pid <= 0)
            return;
        kill();
        ::waitpid(m_pid, nullptr, 0);
        m_pid = 0;
    }

private:
    pid_t m_pid;
};

ListHint hintNow()
{
    const auto load = readWholeFile("/proc/loadavg");
    const auto stat = readWholeFile("/proc/stat");
    return {parseLoadAverage(*load)->lastPid, parseProcStatSummary(*stat).forks};
}

bool contains(const std::vector<pid_t> &pids, pid_t pid)
{
    return std::find(pids.begin(), pids.end(), pid) != pids.end();
}

TEST(LiveProcesses, ListsNewProcessesAsTheWholeListDoes)
{
    LiveProcesses processes;
    std::vector<pid_t> all;
    ASSERT_TRUE(processes.listAll(hintNow(), all));
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    EXPECT_TRUE(contains(all, ::getpid()));
    for (int i = 0; i < 5; ++i) {
        const Child child;
        std::vector<pid_t> found;
        if (!processes.listNew(hintNow(), found)) {
            // Numbers wrapped around or very many came at once: the whole list is asked for.
            found.clear();
            ASSERT_TRUE(processes.listAll(hintNow(), found));
        }
        EXPECT_TRUE(contains(found, child.pid()));
        EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    }
}

TEST(LiveProcesses, OldProcessesBehindTheNewOnesAreNotListedAgain)
{
    const auto listedUpTo = [](pid_t lastPid) {
        LiveProcesses processes;
        std::vector<pid_t> pids;
        EXPECT_TRUE(processes.listAll({1, 1000}, pids));
        pids.clear();
        EXPECT_TRUE(processes.listNew({lastPid, 1001}, pids));
        return pids;
    };
    EXPECT_TRUE(contains(listedUpTo(::getpid()), ::getpid()));
    EXPECT_FALSE(contains(listedUpTo(::getpid() - 1), ::getpid()));
}

TEST(LiveProcesses, WantsTheWholeListWhenInDoubt)
{
    LiveProcesses processes;
    std::vector<pid_t> pids;
    EXPECT_FALSE(processes.listNew({100, 100}, pids)); // nothing was listed yet
    const auto list = [&](ListHint first, ListHint second) {
        pids.clear();
        EXPECT_TRUE(processes.listAll(first, pids));
        pids.clear();
        return processes.listNew(second, pids);
    };
    EXPECT_TRUE(list({1000, 1000}, {1001, 1001}));
    EXPECT_FALSE(list({1000, 1000}, {999, 1001})); // numbers began anew
    EXPECT_FALSE(list({1000, 1000}, {1001, 5000}));
    EXPECT_FALSE(list({1000, 1000}, {1001, 999}));
    EXPECT_FALSE(list({}, {1001, 999}));
    EXPECT_FALSE(list({1000, 1000}, {}));
}

TEST(LiveProcesses, TellsAProcessFromItsStartToItsEnd)
{
    ASSERT_TRUE(LiveProcesses::works());
    LiveProcesses processes;
    Child child;
    KeptFile file;
    const auto stat = processes.stat(child.pid(), file, true);
    ASSERT_TRUE(stat);
    EXPECT_GE(file.descriptor, 0);
    EXPECT_EQ(stat->threads, 1U);
    EXPECT_TRUE(processes.cpuTime(child.pid()));
    child.kill();
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(child.pid()), &info, WEXITED | WNOWAIT);
    EXPECT_EQ(processes.stat(child.pid(), file, true)->state, 'Z');
    EXPECT_TRUE(processes.cpuTime(child.pid()));
    const auto pid = child.pid();
    child.end();
    EXPECT_FALSE(processes.stat(pid, file, true));
    EXPECT_LT(file.descriptor, 0);
    EXPECT_FALSE(processes.cpuTime(pid));
}

TEST(LiveProcesses, CpuTimeIsThatOfTheProcess)
{
    LiveProcesses processes;
    const auto before = processes.cpuTime(::getpid());
    const auto start = std::clock();
    while (std::clock() - start < CLOCKS_PER_SEC / 20) {
    }
    const auto after = processes.cpuTime(::getpid());
    ASSERT_TRUE(before && after);
    EXPECT_GE(*after - *before, 45'000'000U);
}

TEST(FileProcesses, TellsARecordedMachineAndFollowsIt)
{
    const TestFolder folder;
    folder.writeStat(7, "old name", 100, 20);
    folder.writeStat(300, "b", 1, 21);
    folder.write("proc/self", "");
    folder.write("proc/12/stat", "garbage");
    FileProcesses processes(folder.path() + "/proc");
    std::vector<pid_t> pids;
    ASSERT_TRUE(processes.listAll({}, pids));
    EXPECT_EQ(pids, (std::vector<pid_t>{7, 12, 300}));
    EXPECT_FALSE(processes.listNew({1, 1}, pids));
    EXPECT_EQ(processes.cpuTime(7), 1'050'000'000U);
    EXPECT_FALSE(processes.cpuTime(12));
    EXPECT_FALSE(processes.cpuTime(8));
    KeptFile file;
    EXPECT_EQ(processes.stat(7, file, true)->comm, "old name");
    folder.writeStat(7, "new", 200, 20);
    EXPECT_EQ(processes.cpuTime(7), 2'050'000'000U);
    EXPECT_EQ(processes.stat(7, file, true)->comm, "new");
    pids.clear();
    EXPECT_FALSE(FileProcesses("/nonexistent").listAll({}, pids));
}

} // namespace
} // namespace pulsebar::top
