#include "platform/linux_/LinuxProcesses.h"

#include "platform/TemporaryMachine.h"
#include "platform/linux_/PidHandle.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

namespace pulsebar {
namespace {

/// A child that sleeps until it is ended; with `name` as its command name. `prepare` is called in
/// the child, before it is there.
class Sleeper
{
public:
    explicit Sleeper(
        const char *name = "sleeper", void (*prepare)() = [] {})
    {
        std::array<int, 2> ready{};
        EXPECT_EQ(::pipe2(ready.data(), O_CLOEXEC), 0);
        m_pid = ::fork();
        if (m_pid == 0) {
            prepare();
            ::prctl(PR_SET_NAME, name);
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            [[maybe_unused]] const auto written = ::write(ready[1], "", 1);
            sigset_t none{};
            ::sigemptyset(&none);
            for (;;)
                ::sigsuspend(&none);
        }
        ::close(ready[1]);
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
    }
    ~Sleeper()
    {
        ::kill(m_pid, SIGKILL);
        collect();
    }
    Sleeper(const Sleeper &) = delete;
    Sleeper &operator=(const Sleeper &) = delete;

    QString number() const { return QString::number(m_pid); }
    pid_t pid() const { return m_pid; }
    void end() const { ::kill(m_pid, SIGKILL); }
    /// @return the wait status
    int collect()
    {
        int status = 0;
        if (!m_collected)
            ::waitpid(m_pid, &status, 0);
        m_collected = true;
        return status;
    }

private:
    pid_t m_pid = 0;
    bool m_collected = false;
};

void waitForEndOf(const HeldProcess &process)
{
    pollfd end{process.endDescriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 10000), 1);
}

void waitForEndOfMainThread(pid_t pid)
{
    const std::string file = "/proc/" + std::to_string(pid) + "/stat";
    for (int looks = 0; looks < 10000; ++looks) {
        const auto text = readWholeFile(file);
        const auto stat = text ? parsePidStat(*text) : std::nullopt;
        if (stat && stat->state == 'Z')
            return;
        ::usleep(1000);
    }
    ADD_FAILURE() << "the main thread goes on";
}

TEST(LinuxProcesses, HoldsARunningProcess)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_EQ(held->pid(), sleeper.pid());
    EXPECT_TRUE(held->isRunning());
    EXPECT_LE(held->startTime(), processes.now());
    EXPECT_GE(held->startTime() + 1000, processes.now());
    ASSERT_GE(held->endDescriptor(), 0);
    EXPECT_TRUE(::fcntl(held->endDescriptor(), F_GETFD) & FD_CLOEXEC);
}

TEST(LinuxProcesses, HoldsNothingButADecimalNumberAboveOne)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper sleeper;
    for (const QString &text :
         {QString(), QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("-1"),
          u'-' + sleeper.number(), u'+' + sleeper.number(), u' ' + sleeper.number(),
          sleeper.number() + u' ', u'0' + sleeper.number(), sleeper.number() + QStringLiteral("-2"),
          QString::number((1LL << 32) + sleeper.pid()), QStringLiteral("abc")})
        EXPECT_FALSE(processes.hold(text, processes.now())) << text.toStdString();
}

TEST(LinuxProcesses, HoldsNoProcessThatCameAfterTheList)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_TRUE(processes.hold(sleeper.number(), held->startTime()));
    EXPECT_FALSE(processes.hold(sleeper.number(), held->startTime() - 1));
}

TEST(LinuxProcesses, HasEndedBeforeItsParentKnows)
{
    LinuxProcesses processes{Sysroot()};
    Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    sleeper.end();
    waitForEndOf(*held);
    EXPECT_FALSE(held->isRunning());
    EXPECT_FALSE(held->askToEnd());
    // Its number is still taken, by what nobody can act on.
    EXPECT_FALSE(processes.hold(sleeper.number(), processes.now()));
    sleeper.collect();
    EXPECT_FALSE(held->isRunning());
    EXPECT_FALSE(processes.hold(sleeper.number(), processes.now()));
}

TEST(LinuxProcesses, AsksToEnd)
{
    LinuxProcesses processes{Sysroot()};
    Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_TRUE(held->askToEnd());
    const int status = sleeper.collect();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
}

TEST(LinuxProcesses, DoesWithoutDescriptors)
{
    LinuxProcesses processes{Sysroot()};
    Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    PidHandle withoutDescriptor(sleeper.pid(), held->startTime(), -1);
    PidHandle successor(sleeper.pid(), held->startTime() - 1, -1);
    EXPECT_TRUE(withoutDescriptor.isRunning());
    EXPECT_FALSE(successor.isRunning());
    EXPECT_FALSE(successor.askToEnd());
    EXPECT_TRUE(withoutDescriptor.askToEnd());
    waitForEndOf(*held);
    EXPECT_FALSE(withoutDescriptor.isRunning());
    EXPECT_FALSE(withoutDescriptor.askToEnd());
    EXPECT_EQ(WTERMSIG(sleeper.collect()), SIGTERM);
}

TEST(LinuxProcesses, TheDescriptorKnowsASuccessorOfTheSameTick)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper gone;
    const Sleeper successor;
    const auto first = processes.hold(gone.number(), processes.now());
    const auto second = processes.hold(successor.number(), processes.now());
    ASSERT_TRUE(first && second);
    // As if the number had gone on within one tick of the clock.
    const PidHandle held(successor.pid(), second->startTime(), ::dup(first->endDescriptor()));
    EXPECT_TRUE(held.isRunning());
    gone.end();
    waitForEndOf(*first);
    EXPECT_FALSE(held.isRunning());
    EXPECT_TRUE(second->isRunning());
}

TEST(LinuxProcesses, ARecordedProcessIsOnlyThisOneWithTheSameStart)
{
    const TemporaryMachine machine;
    LinuxProcesses processes(machine.root());
    const Sleeper sleeper;
    EXPECT_FALSE(processes.hold(sleeper.number(), processes.now()));
    const std::string folder = "/proc/" + std::to_string(sleeper.pid());
    const auto text = readWholeFile(folder + "/stat");
    ASSERT_TRUE(text);
    machine.write(folder.substr(1) + "/stat", *text);
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_TRUE(held->isRunning());
    // The same number at another time.
    std::string other = *text;
    const auto start = std::to_string(held->startTime());
    const auto place = other.rfind(' ' + start + ' ');
    ASSERT_NE(place, std::string::npos);
    other[place + start.size()] = other[place + start.size()] == '9' ? '8' : '9';
    machine.write(folder.substr(1) + "/stat", other);
    EXPECT_FALSE(processes.hold(sleeper.number(), processes.now()));
}

TEST(LinuxProcesses, NoNameDisguisesAProcess)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper sleeper(") Z 1 1 1 1");
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_TRUE(held->isRunning());
    EXPECT_GE(held->startTime() + 1000, processes.now());
}

TEST(LinuxProcesses, RunsOnWithoutItsMainThread)
{
    LinuxProcesses processes{Sysroot()};
    const Sleeper sleeper("twofold", [] {
        // Comes when the first thread sleeps, and ends it alone.
        sigset_t end{};
        ::sigemptyset(&end);
        ::sigaddset(&end, SIGUSR1);
        ::pthread_sigmask(SIG_BLOCK, &end, nullptr);
        ::signal(SIGUSR1, [](int) { ::syscall(SYS_exit, 0); });
        ::raise(SIGUSR1);
        pthread_t thread{};
        const auto sleep = [](void * /*nothing*/) -> void * {
            for (;;)
                ::pause();
        };
        ::pthread_create(&thread, nullptr, sleep, nullptr);
    });
    waitForEndOfMainThread(sleeper.pid());
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_TRUE(held->isRunning());
    EXPECT_TRUE(held->askToEnd());
    waitForEndOf(*held);
    EXPECT_FALSE(held->isRunning());
}

TEST(LinuxProcessTable, ListsTheShortNamesOfAll)
{
    const LinuxProcessTable table;
    const Sleeper one("twin (a) b");
    const Sleeper two("twin (a) b");
    const auto names = table.shortNames();
    ASSERT_TRUE(names);
    EXPECT_EQ(names->count(QStringLiteral("twin (a) b")), 2);
}

TEST(LinuxProcessTable, KnowsTheParentOfTheSameUser)
{
    LinuxProcesses processes{Sysroot()};
    LinuxProcessTable table;
    Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    const auto parent = table.parent(*held);
    ASSERT_TRUE(parent);
    EXPECT_EQ(parent->pid(), ::getpid());
    sleeper.end();
    waitForEndOf(*held);
    EXPECT_FALSE(table.parent(*held));
}

TEST(LinuxProcessTable, KnowsTheProgramsOfWhatRunsAsWeDo)
{
    LinuxProcesses processes{Sysroot()};
    const LinuxProcessTable table;
    Sleeper sleeper;
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    std::array<char, 4096> self{};
    ASSERT_GT(::readlink("/proc/self/exe", self.data(), self.size() - 1), 0);
    EXPECT_EQ(table.programs(*held).value(0), QString::fromUtf8(self.data()));
    sleeper.end();
    waitForEndOf(*held);
    EXPECT_EQ(table.programs(*held), QStringList());
}

TEST(LinuxProcessTable, TakesNoWordFromAnotherViewOfTheFiles)
{
    LinuxProcesses processes{Sysroot()};
    const LinuxProcessTable table;
    const Sleeper sleeper("sandboxed", [] {
        if (::unshare(::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0)
            ::_exit(1);
    });
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_EQ(table.programs(*held), QStringList());
}

TEST(LinuxProcessTable, TakesNoWordFromAnotherUser)
{
    LinuxProcesses processes{Sysroot()};
    LinuxProcessTable table;
    // Only the administrator can be somebody else.
    const bool canChange = ::geteuid() == 0;
    const Sleeper sleeper("stranger", [] {
        if (::geteuid() == 0 && ::setresuid(65534, 65534, 65534) != 0)
            ::_exit(1);
    });
    const auto held = processes.hold(sleeper.number(), processes.now());
    ASSERT_TRUE(held);
    EXPECT_EQ(table.programs(*held).isEmpty(), canChange);
    EXPECT_EQ(table.parent(*held) == nullptr, canChange);
}

} // namespace
} // namespace pulsebar
