#include "common/Output.h"
#include "common/Pacer.h"
#include "common/Parent.h"
#include "top/Options.h"
#include "top/Sampler.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsebar;
using namespace pulsebar::top;

constexpr std::uint64_t nsPerSecond = 1'000'000'000;
/// Long enough for a first impression, short enough that the program's title is there at once.
constexpr std::uint64_t firstInterval = nsPerSecond / 20;

void run(const Options &options)
{
    const auto start = monotonicNow();
    Pacer pacer(start, firstInterval, options.interval * nsPerSecond);
    const Output output(STDOUT_FILENO);
    Sampler sampler(options, Sysroot::fromEnvironment());
    sampler.sample();
    for (unsigned long made = 0; options.reports == 0 || made < options.reports; ++made) {
        if (!output.sleepUntil(pacer.due()))
            return;
        sampler.sample();
        if (!output.write(sampler.report()))
            return;
        pacer.advance(monotonicNow());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const auto [options, error] = parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (!error.empty()) {
        std::fprintf(stderr, "pulsebar-top: %s; %s\n", error.c_str(), usageLine().c_str());
        return 2;
    }
    if (options.help || options.version) {
        std::puts(options.help ? usageLine().c_str() : "pulsebar-top " PULSEBAR_VERSION);
        return 0;
    }
    std::signal(SIGPIPE, SIG_IGN);
    if (followParent())
        run(options);
    return 0;
}
