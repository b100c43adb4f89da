#include "platform/linux_/hwmon/HwmonSmc.h"
#include "sensors/smc/SmcTool.h"
#include "smc/Tool.h"

#include <chrono>
#include <cstdio>

namespace {

using namespace pulsebar;

constexpr int kNotUnderstood = 2;

int work(const smc::Options &options)
{
    HwmonSmc::Options listing;
    listing.patience = std::chrono::seconds(3);
    listing.complain = [](const std::string &problem) {
        std::fprintf(stderr, "pulsebar-smc: %s\n", problem.c_str());
    };
    HwmonSmc controller(Sysroot::fromEnvironment(), listing);
    const smc::Surroundings surroundings{controller, controller};
    return smc::run(options, surroundings);
}

} // namespace

int main(int argc, char **argv)
{
    const auto [options, error] =
        smc::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (!error.empty()) {
        std::fprintf(stderr, "pulsebar-smc: %s\n", error.c_str());
        usage("pulsebar-smc", stderr);
        return kNotUnderstood;
    }
    int status = smc::kDone;
    if (options.action == smc::Action::Help)
        usage("pulsebar-smc");
    else if (options.action == smc::Action::Version)
        std::puts("pulsebar-smc " PULSEBAR_VERSION);
    else
        status = work(options);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("pulsebar-smc: the output could not be written\n", stderr);
        return smc::kFailed;
    }
    return status;
}
