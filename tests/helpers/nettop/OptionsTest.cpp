#include "nettop/Options.h"

#include <gtest/gtest.h>

namespace pulsebar::nettop {
namespace {

Options understood(const std::vector<std::string> &arguments)
{
    const auto parsed = parseOptions(arguments);
    EXPECT_EQ(parsed.error, "");
    return parsed.options;
}

TEST(NettopOptions, TakeTheMonitorsArguments)
{
    const auto options = understood({"-L1", "-m", "tcp", "-c"});
    EXPECT_EQ(options.reports, 1U);
    EXPECT_EQ(options.interval, 1U);
}

TEST(NettopOptions, TakeValuesApartOrJoined)
{
    for (const auto &arguments : std::vector<std::vector<std::string>>{
             {"-L", "3", "-s", "2", "-m", "tcp"}, {"-L3", "-s2", "-mtcp", "-c", "-c"}}) {
        const auto options = understood(arguments);
        EXPECT_EQ(options.reports, 3U);
        EXPECT_EQ(options.interval, 2U);
    }
    EXPECT_EQ(understood({}).reports, 1U);
    EXPECT_EQ(understood({"-L", "0"}).reports, 0U);
    EXPECT_TRUE(understood({"--help"}).help);
    EXPECT_TRUE(understood({"--version"}).version);
}

TEST(NettopOptions, RefuseTheRest)
{
    for (const auto &arguments : std::vector<std::vector<std::string>>{{"-m", "udp"},
                                                                       {"-m"},
                                                                       {"-L"},
                                                                       {"-L", "-1"},
                                                                       {"-Lx"},
                                                                       {"-L1x"},
                                                                       {"-s0"},
                                                                       {"-s", "86401"},
                                                                       {"-x"},
                                                                       {"tcp"},
                                                                       {""},
                                                                       {"-"},
                                                                       {"--helpful"},
                                                                       {"-L99999999999999999999"}})
        EXPECT_NE(parseOptions(arguments).error, "") << arguments.front();
}

} // namespace
} // namespace pulsebar::nettop
