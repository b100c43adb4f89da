#include "common/Output.h"
#include "common/Pacer.h"
#include "common/Parent.h"
#include "nettop/Options.h"
#include "nettop/Sampler.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsebar;
using namespace pulsebar::nettop;

constexpr std::uint64_t nsPerSecond = 1'000'000'000;
constexpr int noSockets = 1;
constexpr int wrongArguments = 2;

std::string runtimeFolder()
{
    const char *folder = std::getenv("XDG_RUNTIME_DIR");
    return folder ? folder : "";
}

/// Large pieces come from one growing heap and are used again: a page that the kernel has to clear
/// costs as much as a line of the report.
void keepMemory()
{
    constexpr int large = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
    ::mallopt(M_TRIM_THRESHOLD, large);
    ::mallopt(M_TOP_PAD, 64 << 10);
}

int run(const Options &options)
{
    Pacer pacer(monotonicNow(), 0, options.interval * nsPerSecond);
    const Output output(STDOUT_FILENO);
    Sampler sampler(Sysroot::fromEnvironment(), runtimeFolder());
    for (unsigned long made = 0; options.reports == 0 || made < options.reports; ++made) {
        if (made > 0 && !output.sleepUntil(pacer.due()))
            return 0;
        const auto report = sampler.sample();
        if (!report) {
            std::fprintf(stderr, "pulsebar-nettop: the kernel does not list TCP sockets: %s\n",
                         std::strerror(sampler.error()));
            return noSockets;
        }
        if (!output.write(*report))
            return 0;
        pacer.advance(monotonicNow());
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto [options, error] = parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (!error.empty()) {
        std::fprintf(stderr, "pulsebar-nettop: %s; %s\n", error.c_str(), usageLine().c_str());
        return wrongArguments;
    }
    if (options.help || options.version) {
        std::puts(options.help ? usageLine().c_str() : "pulsebar-nettop " PULSEBAR_VERSION);
        return 0;
    }
    keepMemory();
    std::signal(SIGPIPE, SIG_IGN);
    // Where the size of files is limited, the memory is not written, and that is all.
    std::signal(SIGXFSZ, SIG_IGN);
    return followParent() ? run(options) : 0;
}
