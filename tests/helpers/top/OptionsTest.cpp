#include "top/Options.h"

#include <gtest/gtest.h>

namespace pulsebar::top {
namespace {

const std::string allKeys = "pid,command,cpu,time,threads,user,msgsent,msgrecv,sysbsd,sysmach,"
                            "power,pageins,rsize,vsize";

TEST(Options, UnderstandsTheMonitorsArguments)
{
    const auto [options, error] = parseOptions(
        {"-l", "0", "-u", "-n", "10", "-s", "2", "-o", "rsize", "-R", "-stats", allKeys});
    EXPECT_EQ(error, "");
    EXPECT_EQ(options.reports, 0U);
    EXPECT_EQ(options.rows, 10U);
    EXPECT_EQ(options.interval, 2U);
    EXPECT_EQ(options.sortKey, SortKey::Memory);
    ASSERT_EQ(options.columns.size(), 14U);
    EXPECT_EQ(options.columns[2], Column::Cpu);
    EXPECT_EQ(options.columns[13], Column::VirtualSize);
}

TEST(Options, TakesColumnsInAnyOrder)
{
    const auto [options, error] = parseOptions({"-stats", "rsize,pid,command"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(options.columns, (std::vector{Column::ResidentSize, Column::Pid, Column::Command}));
}

TEST(Options, RefusesWhatItDoesNotKnow)
{
    const std::vector<std::vector<std::string>> wrong{{"-x"},
                                                      {"-l"},
                                                      {"-l", "x"},
                                                      {"-l", "-1"},
                                                      {"-l", "1 "},
                                                      {"-n", ""},
                                                      {"-s", "0"},
                                                      {"-s", "-3"},
                                                      {"-s", "1.5"},
                                                      {"-s", "99999999999999999999"},
                                                      {"-o"},
                                                      {"-o", "pid"},
                                                      {"-stats"},
                                                      {"-stats", ""},
                                                      {"-stats", "pid,"},
                                                      {"-stats", "pid,nice"},
                                                      {"extra"},
                                                      {"-l", "0", "y"},
                                                      {"-stats", "PID"},
                                                      {""},
                                                      {"-l2"}};
    for (const auto &arguments : wrong)
        EXPECT_NE(parseOptions(arguments).error, "") << testing::PrintToString(arguments);
}

TEST(Options, ANegativeNumberOfRowsIsNone)
{
    const auto [options, error] = parseOptions({"-n", "-1"});
    EXPECT_EQ(error, "");
    EXPECT_EQ(options.rows, 0U);
}

TEST(Options, HasUsefulDefaults)
{
    const auto [options, error] = parseOptions({});
    EXPECT_EQ(error, "");
    EXPECT_EQ(options.reports, 0U);
    EXPECT_EQ(options.rows, Options::noRowLimit);
    EXPECT_EQ(options.interval, 1U);
    EXPECT_EQ(options.sortKey, SortKey::Cpu);
    EXPECT_EQ(options.columns.size(), 7U);
}

} // namespace
} // namespace pulsebar::top
