// What the application's own readings of the machine cost per sample, against the limit: the same
// bytes fetched with plain calls on descriptors that are kept open, and thrown away.
//
// Usage: reads_bench [samples] [pause in milliseconds]
// Cold figures come from samples with a pause between them, as in real use; hot ones from a loop.
#include "platform/linux_/BlockDevices.h"
#include "platform/linux_/LinuxPlatform.h"

#include <libmnl/libmnl.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <numeric>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsebar;

/// The floor: descriptors and one socket, no parsing.
class PlainReads
{
public:
    PlainReads()
        : m_stat(::open("/proc/stat", O_RDONLY | O_CLOEXEC))
        , m_netlink(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE))
    {
        BlockDevices devices{Sysroot()};
        for (const auto &disk : devices.list().value_or(std::vector<std::string>()))
            m_disks.push_back(::open(devices.of(disk, "stat").c_str(), O_RDONLY | O_CLOEXEC));
    }
    ~PlainReads()
    {
        ::close(m_stat);
        ::close(m_netlink);
        for (const int disk : m_disks)
            ::close(disk);
    }
    PlainReads(const PlainReads &) = delete;
    PlainReads &operator=(const PlainReads &) = delete;

    void cores() { fetch(m_stat); }
    void disks()
    {
        for (const int disk : m_disks)
            fetch(disk);
    }
    void interfaces()
    {
        struct
        {
            nlmsghdr header;
            if_stats_msg stats;
        } request{};
        request.header.nlmsg_len = sizeof request;
        request.header.nlmsg_type = RTM_GETSTATS;
        request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
        request.stats.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);
        if (::send(m_netlink, &request, sizeof request, 0) < 0)
            std::abort();
        while (!isLast(::recv(m_netlink, m_buffer.data(), m_buffer.size(), 0)))
            continue;
    }

private:
    void fetch(int descriptor)
    {
        if (::pread(descriptor, m_buffer.data(), m_buffer.size(), 0) < 0)
            std::abort();
    }
    bool isLast(ssize_t size) const
    {
        int left = static_cast<int>(size);
        const void *start = m_buffer.data();
        for (auto *message = static_cast<const nlmsghdr *>(start); mnl_nlmsg_ok(message, left);
             message = mnl_nlmsg_next(message, &left)) {
            if (message->nlmsg_type == NLMSG_DONE || message->nlmsg_type == NLMSG_ERROR)
                return true;
        }
        return size <= 0;
    }

    int m_stat;
    int m_netlink;
    std::vector<int> m_disks;
    alignas(nlmsghdr) std::array<char, 1U << 18U> m_buffer{};
};

double cpuMicroseconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

double cost(const std::function<void()> &reading)
{
    const double before = cpuMicroseconds();
    reading();
    return cpuMicroseconds() - before;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double mean(const std::vector<double> &values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

struct Pair
{
    const char *name;
    std::function<void()> plain;
    std::function<void()> ours;
};

/// Both in turns within one run, so that they meet the same machine.
void measure(const Pair &pair, int samples, std::chrono::milliseconds pause)
{
    std::vector<double> plain;
    std::vector<double> ours;
    pair.plain();
    pair.ours();
    for (int i = 0; i < samples; ++i) {
        std::this_thread::sleep_for(pause);
        plain.push_back(cost(pair.plain));
        std::this_thread::sleep_for(pause);
        ours.push_back(cost(pair.ours));
    }
    const char *temperature = pause.count() > 0 ? "cold" : "hot";
    std::printf("%-10s %4s  median: limit %6.1f us, ours %6.1f us, ratio %.2f"
                "  mean: limit %6.1f us, ours %6.1f us, ratio %.2f\n",
                pair.name, temperature, median(plain), median(ours), median(ours) / median(plain),
                mean(plain), mean(ours), mean(ours) / mean(plain));
}

} // namespace

int main(int argc, char **argv)
{
    const int samples = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 21;
    const std::chrono::milliseconds pause(argc > 2 ? std::atoi(argv[2]) : 200);
    PlainReads plain;
    const auto platform = makeLinuxPlatform(Sysroot());
    const std::vector<Pair> pairs{
        {"cores", [&] { plain.cores(); }, [&] { platform->coreTicks->readCoreTicks(); }},
        {"interfaces", [&] { plain.interfaces(); },
         [&] { platform->interfaceCounters->readInterfaceCounters(); }},
        {"disks", [&] { plain.disks(); }, [&] { platform->diskCounters->readDiskCounters(); }},
        {"sample",
         [&] {
             plain.cores();
             plain.interfaces();
             plain.disks();
         },
         [&] {
             platform->coreTicks->readCoreTicks();
             platform->interfaceCounters->readInterfaceCounters();
             platform->diskCounters->readDiskCounters();
         }},
    };
    constexpr int hotFactor = 50;
    for (const auto &pair : pairs) {
        measure(pair, samples * hotFactor, std::chrono::milliseconds(0));
        measure(pair, samples, pause);
    }
    return 0;
}
