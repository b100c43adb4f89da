// Lets a process end and another one have its number, and looks who is acted on. To be run in a
// process namespace of its own, with /proc of that namespace. Writes what went wrong; nothing means
// that all is well.

#include "platform/AdministratorRights.h"
#include "platform/linux_/LinuxProcesses.h"
#include "platform/linux_/PidHandle.h"
#include "processes/ForceQuit.h"
#include "support/WaitFor.h"

#include <QCoreApplication>

#include <linux/sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace pulsebar;

int failures = 0;

void expect(bool holds, const char *what)
{
    if (!holds) {
        std::printf("%s\n", what);
        ++failures;
    }
}

/// A sleeping child; with `number` it gets that number.
pid_t startChild(pid_t number = 0)
{
    clone_args arguments{};
    arguments.exit_signal = SIGCHLD;
    if (number != 0) {
        arguments.set_tid = reinterpret_cast<__u64>(&number);
        arguments.set_tid_size = 1;
    }
    const auto pid = static_cast<pid_t>(::syscall(SYS_clone3, &arguments, sizeof arguments));
    if (pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            ::pause();
    }
    return pid;
}

void end(pid_t pid)
{
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

bool isAlive(pid_t pid)
{
    // Whoever is sent a signal here is ended by it at once.
    ::usleep(50'000);
    return ::waitpid(pid, nullptr, WNOHANG) == 0;
}

struct WaitingRights : AdministratorRights
{
    struct Run : PrivilegedRun
    {
        explicit Run(int &runs)
            : waiting(runs)
        {
            ++waiting;
        }
        ~Run() override { --waiting; }
        Run(const Run &) = delete;
        Run &operator=(const Run &) = delete;
        int &waiting;
    };
    std::unique_ptr<PrivilegedRun> run(const QString &, const QStringList &,
                                       std::function<void()>) override
    {
        return std::make_unique<Run>(waiting);
    }
    int waiting = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    LinuxProcesses processes{Sysroot()};
    WaitingRights rights;
    ForceQuit forceQuit(&rights);

    const pid_t number = startChild();
    const auto listedAt = processes.now();
    const auto first = processes.hold(QString::number(number), listedAt);
    if (!first)
        std::abort();
    PidHandle withoutDescriptor(number, first->startTime(), -1);
    forceQuit.killAsRoot(first);
    expect(rights.waiting == 1, "the administrator is not asked");
    // The next one of the number starts at another tick of the clock.
    while (processes.now() <= listedAt)
        ::usleep(1000);
    end(number);
    const pid_t second = startChild(number);
    if (second != number)
        std::abort();

    expect(!first->isRunning(), "the first is taken for the second");
    expect(!withoutDescriptor.isRunning(), "the first is taken for the second, without descriptor");
    expect(!processes.hold(QString::number(number), listedAt), "the second was not listed");
    expect(!first->askToEnd() && isAlive(second), "the second was asked to end");
    expect(!withoutDescriptor.askToEnd() && isAlive(second),
           "the second was asked to end, without descriptor");
    forceQuit.kill(*first);
    forceQuit.kill(withoutDescriptor);
    expect(isAlive(second), "the second was ended");
    expect(waitFor([&rights] { return rights.waiting == 0; }),
           "the administrator is still asked to end the second");

    const auto held = processes.hold(QString::number(number), processes.now());
    expect(held && held->isRunning(), "the second cannot be held");
    if (held)
        forceQuit.kill(*held);
    expect(!isAlive(second), "the second was not ended");
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
