#include "smc/Options.h"

#include <gtest/gtest.h>

namespace pulsebar::smc {
namespace {

TEST(SmcOptions, EachActionHasItsLetter)
{
    EXPECT_EQ(parseOptions({"-h"}).options.action, Action::Help);
    EXPECT_EQ(parseOptions({"--help"}).options.action, Action::Help);
    EXPECT_EQ(parseOptions({"-v"}).options.action, Action::Version);
    EXPECT_EQ(parseOptions({"--version"}).options.action, Action::Version);
    EXPECT_EQ(parseOptions({"-l"}).options.action, Action::ListKeys);
    EXPECT_EQ(parseOptions({"-f"}).options.action, Action::ShowFans);
    EXPECT_EQ(parseOptions({"-k", "Tcp0", "-r"}).options.action, Action::ReadKey);
    EXPECT_EQ(parseOptions({"-k", "F0Mn", "-w", "1f40"}).options.action, Action::WriteKey);
    for (const std::vector<std::string> &good :
         std::vector<std::vector<std::string>>{{"-h"}, {"-l", "-l"}, {"-r", "-k", "Tcp0"}})
        EXPECT_EQ(parseOptions(good).error, "");
}

TEST(SmcOptions, ValuesStandBehindOrInTheArgument)
{
    const ParsedOptions apart = parseOptions({"-w", "1F40", "-k", "F0Mn"});
    EXPECT_EQ(apart.options.key, "F0Mn");
    EXPECT_EQ(apart.options.value, "1F40");
    const ParsedOptions together = parseOptions({"-kF0Mn", "-w1F40"});
    EXPECT_EQ(together.options.key, "F0Mn");
    EXPECT_EQ(together.options.value, "1F40");
}

TEST(SmcOptions, KeysAreFilledUpWithBlanks)
{
    EXPECT_EQ(parseOptions({"-r", "-k", "FS!"}).options.key, "FS! ");
    EXPECT_EQ(parseOptions({"-r", "-k", "A"}).options.key, "A   ");
}

TEST(SmcOptions, WhatIsNotUnderstoodIsSaid)
{
    const auto errorOf = [](const std::vector<std::string> &arguments) {
        return parseOptions(arguments).error;
    };
    EXPECT_EQ(errorOf({}), "what shall be done?");
    EXPECT_EQ(errorOf({"-k", "Tcp0"}), "-k goes with -r or -w");
    EXPECT_EQ(errorOf({"-r"}), "which key? (-k)");
    EXPECT_EQ(errorOf({"-w", "00"}), "which key? (-k)");
    EXPECT_EQ(errorOf({"-k"}), "-k needs a value");
    EXPECT_EQ(errorOf({"-k", "F0Mn", "-w"}), "-w needs a value");
    EXPECT_EQ(errorOf({"-x"}), "unknown option -x");
    EXPECT_EQ(errorOf({"-l", "more"}), "unknown option more");
    EXPECT_EQ(errorOf({"-lf"}), "unknown option -lf");
    EXPECT_EQ(errorOf({"-l", "-f"}), "only one of -f, -h, -l, -r, -v and -w at a time");
}

TEST(SmcOptions, KeysAndValuesAreLookedAt)
{
    for (const std::string key : {"", "F10Ac", "T\x1B[m", "T\xC3\x84"})
        EXPECT_EQ(parseOptions({"-r", "-k", key}).error,
                  "a key has up to four printable characters");
    for (const std::string &value : {std::string(), std::string("1"), std::string("1g"),
                                     std::string("0x10"), std::string(66, '0')})
        EXPECT_EQ(parseOptions({"-k", "F0Mn", "-w", value}).error,
                  "a value is 1 to 32 pairs of hexadecimal digits");
    EXPECT_EQ(parseOptions({"-k", "F0Mn", "-w", std::string(64, '0')}).error, "");
}

} // namespace
} // namespace pulsebar::smc
