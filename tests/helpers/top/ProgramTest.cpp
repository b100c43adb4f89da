#include "common/Output.h"
#include "helpers/common/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace pulsebar::top {
namespace {

constexpr std::uint64_t second = 1'000'000'000;

/// The sampler as a child process. Its output is a packet pipe: each read is one write (of no more
/// than a page).
class Program
{
public:
    explicit Program(std::vector<std::string> arguments, const std::string &sysroot = {})
    {
        std::array<int, 2> out{};
        std::array<int, 2> errors{};
        EXPECT_EQ(::pipe2(out.data(), O_DIRECT | O_CLOEXEC), 0);
        EXPECT_EQ(::pipe2(errors.data(), O_CLOEXEC), 0);
        arguments.insert(arguments.begin(), PULSEBAR_TOP);
        m_pid = ::fork();
        if (m_pid == 0)
            become(arguments, sysroot, out[1], errors[1]);
        ::close(out[1]);
        ::close(errors[1]);
        m_out = out[0];
        m_errors = errors[0];
    }
    ~Program()
    {
        closeOutput();
        ::close(m_errors);
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    pid_t pid() const { return m_pid; }
    /// What one write brought; empty at the end.
    std::string readOnce() const { return readFrom(m_out); }
    std::string readErrors() const { return readFrom(m_errors); }
    void closeOutput()
    {
        if (m_out >= 0)
            ::close(m_out);
        m_out = -1;
    }
    /// The exit code, or minus the signal that ended it.
    int wait()
    {
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        m_pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    [[noreturn]] static void become(const std::vector<std::string> &arguments,
                                    const std::string &sysroot, int out, int errors)
    {
        ::dup2(out, STDOUT_FILENO);
        ::dup2(errors, STDERR_FILENO);
        if (sysroot.empty())
            ::unsetenv("PULSEBAR_SYSROOT");
        else
            ::setenv("PULSEBAR_SYSROOT", sysroot.c_str(), 1);
        std::vector<char *> pointers;
        pointers.reserve(arguments.size() + 1);
        for (const auto &argument : arguments)
            pointers.push_back(const_cast<char *>(argument.c_str()));
        pointers.push_back(nullptr);
        ::execv(pointers.front(), pointers.data());
        ::_exit(127);
    }
    static std::string readFrom(int descriptor)
    {
        std::string text(65536, '\0');
        const auto count = ::read(descriptor, text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

    pid_t m_pid = 0;
    int m_out = -1;
    int m_errors = -1;
};

/// The rows of a report, split at blanks, by their first word.
std::map<std::string, std::vector<std::string>> rowsOf(const std::string &report)
{
    std::map<std::string, std::vector<std::string>> rows;
    std::istringstream lines(report);
    std::string line;
    bool inRows = false;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::vector<std::string> row{std::istream_iterator<std::string>(words), {}};
        if (inRows && !row.empty())
            rows[row.front()] = row;
        inRows = inRows || line.starts_with("PID");
    }
    return rows;
}

class Machine : public TestFolder
{
public:
    Machine()
    {
        write("proc/stat", "cpu 100 0 100 800 0 0 0 0 0 0\ncpu0 1 0 0 1 0 0 0\ncpu1 1 0 0 1\n"
                           "processes 5\nprocs_running 1\n");
        write("proc/meminfo", "MemTotal: 8388608 kB\nMemAvailable: 1695744 kB\n"
                              "Active: 3072000 kB\nInactive: 2048000 kB\n"
                              "Unevictable: 1572864 kB\nSwapTotal: 0 kB\nSwapFree: 0 kB\n");
        write("proc/loadavg", "0.52 0.40 0.10 1/99 300\n");
        writeStat(1, "init", 50, 2);
        writeStat(300, "Web 2.5 Server", 0, 21, 'R', 3);
        write("proc/300/status", "Uid:\t0\t0\t0\t0\nvoluntary_ctxt_switches:\t5\n");
        write("proc/300/io", "syscr: 30\nsyscw: 12\n");
    }
};

TEST(Program, RefusesWhatItDoesNotKnow)
{
    for (const auto &arguments : std::vector<std::vector<std::string>>{
             {"-q"}, {"-stats", "pid,nice"}, {"-l"}, {"-s", "0"}}) {
        Program program(arguments);
        EXPECT_EQ(program.readOnce(), "");
        const auto errors = program.readErrors();
        EXPECT_NE(errors.find("usage: pulsebar-top "), std::string::npos);
        EXPECT_EQ(errors.find('\n'), errors.size() - 1);
        EXPECT_EQ(program.wait(), 2);
    }
}

TEST(Program, TellsAboutItself)
{
    Program help({"--help"});
    EXPECT_TRUE(help.readOnce().starts_with("usage: pulsebar-top "));
    EXPECT_EQ(help.wait(), 0);
    Program version({"--version"});
    EXPECT_THAT(version.readOnce(),
                testing::MatchesRegex("pulsebar-top [0-9]+[.][0-9]+[.][0-9]+\n"));
    EXPECT_EQ(version.wait(), 0);
}

TEST(Program, ReportsARecordedMachineAndFollowsItsFiles)
{
    const Machine machine;
    Program program({"-l", "2", "-u", "-n", "10", "-s", "1", "-stats",
                     "pid,command,cpu,time,threads,user,sysbsd,pageins,rsize,vsize"},
                    machine.path());
    const auto first = program.readOnce();
    EXPECT_NE(first.find("CPU usage: 10.00% user, 10.00% sys, 80.00% idle\n"), std::string::npos);
    EXPECT_NE(first.find("PhysMem: 1536M wired, 3000M active, 2000M inactive, 6536M used, "
                         "1656M free.\n"),
              std::string::npos);
    auto rows = rowsOf(first);
    EXPECT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows["1"], (std::vector<std::string>{"1", "init", "0.0", "00:00.55", "1", "N/A",
                                                   "N/A", "3", "1024K", "100M"}));
    EXPECT_EQ(rows["300"],
              (std::vector<std::string>{"300", "Web\u00a02.5", "Server", "0.0", "00:00.05", "3",
                                        "root", "42", "3", "1024K", "100M"}));

    machine.write("proc/stat", "cpu 150 0 100 850 0 0 0 0 0 0\ncpu0 1 0 0 1 0 0 0\ncpu1 1 0 0 1\n");
    machine.writeStat(1, "init", 100, 2, 'R');
    machine.remove("proc/300");
    machine.writeStat(301, "new", 25, 500);
    const auto next = program.readOnce();
    EXPECT_NE(next.find("CPU usage: 50.00% user, 0.00% sys, 50.00% idle\n"), std::string::npos);
    rows = rowsOf(next);
    ASSERT_EQ(rows.size(), 2U);
    // Half a second's and 0.3 seconds' worth of ticks over an interval of a second.
    EXPECT_NEAR(std::stod(rows["1"][2]), 50, 15);
    EXPECT_NEAR(std::stod(rows["301"][2]), 30, 10);
    EXPECT_EQ(program.readOnce(), "");
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, WritesEachReportAtOnceInTime)
{
    const auto start = monotonicNow();
    Program program({"-l", "2", "-u", "-n", "5", "-s", "1", "-R", "-stats",
                     "pid,command,cpu,time,threads,user,power"});
    for (std::uint64_t i = 0; i < 2; ++i) {
        const auto report = program.readOnce();
        EXPECT_NE(report.find("CPU usage: "), std::string::npos);
        EXPECT_FALSE(rowsOf(report).empty());
        EXPECT_LE(rowsOf(report).size(), 5U);
        // Generous at the upper end: other tests run beside this one.
        const auto elapsed = monotonicNow() - start;
        EXPECT_GE(elapsed, (i * 20 + 1) * second / 20);
        EXPECT_LE(elapsed, (i * 10 + 30) * second / 10);
    }
    EXPECT_EQ(program.readOnce(), "");
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, EndsQuietlyWhileItWaitsForAReaderThatIsGone)
{
    Program program({"-l", "0", "-n", "1", "-s", "3600", "-stats", "pid,cpu"});
    EXPECT_NE(program.readOnce(), "");
    program.closeOutput();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.readErrors(), "");
}

TEST(Program, EndsWithTheProgramThatStartedIt)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const auto parent = ::fork();
    if (parent == 0) {
        // The sampler's output stays open in the test: only its parent goes away.
        ::dup2(ends[1], STDOUT_FILENO);
        if (::fork() == 0) {
            ::execl(PULSEBAR_TOP, PULSEBAR_TOP, "-n", "1", "-s", "3600", nullptr);
            ::_exit(127);
        }
        for (;;)
            ::pause();
    }
    ::close(ends[1]);
    std::string text(65536, '\0');
    EXPECT_GT(::read(ends[0], text.data(), text.size()), 0);
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    EXPECT_EQ(::read(ends[0], text.data(), text.size()), 0); // the end of its output
    ::close(ends[0]);
}

TEST(Program, AgreesWithTheKernelAboutABusyProcess)
{
    const auto spinner = ::fork();
    if (spinner == 0) {
        std::atomic<unsigned> rounds{0};
        for (;;)
            ++rounds;
    }
    Program program(
        {"-l", "2", "-u", "-n", "9", "-s", "1", "-stats", "pid,command,cpu,time,threads"});
    program.readOnce();
    const auto rows = rowsOf(program.readOnce());
    ::kill(spinner, SIGKILL);
    ::waitpid(spinner, nullptr, 0);
    const auto row = rows.find(std::to_string(spinner));
    ASSERT_NE(row, rows.end());
    EXPECT_GT(std::stod(row->second[2]), 10.0);
    EXPECT_LT(std::stod(row->second[2]), 103.0);
    EXPECT_EQ(row->second[4], "1/1");
}

} // namespace
} // namespace pulsebar::top
