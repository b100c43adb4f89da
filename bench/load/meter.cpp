// What other processes cost, measured side by side over the same time.
//   meter SECONDS PID...
// Prints a line per process: PID, CPU milliseconds per second (all threads, from the process's CPU
// clock), wake-ups per second (voluntary context switches of all threads), resident KiB.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Reading
{
    double cpuMilliseconds = 0;
    long switches = 0;
    long residentKib = 0;
};

double cpuMilliseconds(int pid)
{
    timespec time{};
    const auto clock = static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | 2U);
    if (::clock_gettime(clock, &time) != 0) {
        std::fprintf(stderr, "meter: process %d is gone\n", pid);
        std::exit(1);
    }
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

long numberIn(const std::string &path, const std::string &key)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key))
            return std::atol(line.c_str() + key.size());
    }
    return 0;
}

Reading read(int pid)
{
    const auto folder = "/proc/" + std::to_string(pid);
    Reading reading;
    reading.cpuMilliseconds = cpuMilliseconds(pid);
    reading.residentKib = numberIn(folder + "/status", "VmRSS:");
    for (const auto &thread : std::filesystem::directory_iterator(folder + "/task"))
        reading.switches += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
    return reading;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fputs("usage: meter SECONDS PID...\n", stderr);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> pids;
    std::vector<Reading> before;
    for (int i = 2; i < argc; ++i)
        before.push_back(read(pids.emplace_back(std::atoi(argv[i]))));
    std::this_thread::sleep_for(std::chrono::duration<double>(std::atof(argv[1])));
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (std::size_t i = 0; i < pids.size(); ++i) {
        const auto after = read(pids[i]);
        std::printf("%d %.4f %.2f %ld\n", pids[i],
                    (after.cpuMilliseconds - before[i].cpuMilliseconds) / seconds,
                    static_cast<double>(after.switches - before[i].switches) / seconds,
                    after.residentKib);
    }
    return 0;
}
