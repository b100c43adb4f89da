// A process that uses a fixed share of one core.
//   duty PERCENT
#include <sys/prctl.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: duty PERCENT\n", stderr);
        return 2;
    }
    using namespace std::chrono;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    constexpr auto period = milliseconds(20);
    const double share = std::atof(argv[1]) / 100;
    const auto work = duration_cast<nanoseconds>(period * share).count();
    const auto used = [] {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return time.tv_sec * 1'000'000'000L + time.tv_nsec;
    };
    for (auto next = steady_clock::now();;) {
        for (const auto end = used() + work; used() < end;) {
        }
        next += period;
        std::this_thread::sleep_until(next);
    }
}
