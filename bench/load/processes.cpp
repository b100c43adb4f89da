// A crowd of processes to measure samplers by.
//   processes COUNT AWAKE PERIOD_MS
// COUNT children, of which AWAKE wake every PERIOD_MS and work for about 20 microseconds; the
// others sleep for good. Prints "ready" once all are there; they end with this program.
#include <sys/prctl.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void sleepForGood()
{
    for (;;)
        ::pause();
}

[[noreturn]] void wakeAgainAndAgain(std::chrono::milliseconds period, int number)
{
    // Spread over the period, as unrelated programs are.
    auto next = Clock::now() + period * (number % 97) / 97;
    for (;;) {
        std::this_thread::sleep_until(next);
        for (const auto end = Clock::now() + std::chrono::microseconds(20); Clock::now() < end;) {
        }
        next += period;
    }
}

[[noreturn]] void live(int number, bool awake, std::chrono::milliseconds period, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(0);
    ::prctl(PR_SET_NAME, ("load-" + std::to_string(number)).c_str());
    if (awake)
        wakeAgainAndAgain(period, number);
    sleepForGood();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fputs("usage: processes COUNT AWAKE PERIOD_MS\n", stderr);
        return 2;
    }
    const int count = std::atoi(argv[1]);
    const int awake = std::atoi(argv[2]);
    const std::chrono::milliseconds period(std::atoi(argv[3]));
    const auto parent = ::getpid();
    for (int i = 0; i < count; ++i) {
        const auto child = ::fork();
        if (child == 0)
            live(i, i < awake, period, parent);
        if (child < 0) {
            std::perror("fork");
            return 1;
        }
    }
    std::puts("ready");
    std::fflush(stdout);
    sleepForGood();
}
