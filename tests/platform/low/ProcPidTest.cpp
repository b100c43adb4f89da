#include "platform/linux_/low/proc_pid_io.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "platform/linux_/low/proc_pid_status.h"

#include <gtest/gtest.h>

#include <string>

namespace pulsebar {
namespace {

constexpr std::string_view tail =
    " S 1 7 7 0 -1 4194560 45 6 3 1 12 34 5 6 20 0 9 0 227617 3133440 "
    "390 18446744073709551615 1 2\n";

TEST(PidStat, TakesTheFieldsByTheirNumbers)
{
    const auto text = "7 (bash)" + std::string(tail);
    const auto stat = parsePidStat(text);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->comm, "bash");
    EXPECT_EQ(stat->state, 'S');
    EXPECT_EQ(stat->majorFaults, 3U);
    EXPECT_EQ(stat->userTicks, 12U);
    EXPECT_EQ(stat->kernelTicks, 34U);
    EXPECT_EQ(stat->threads, 9U);
    EXPECT_EQ(stat->startTicks, 227617U);
    EXPECT_EQ(stat->virtualBytes, 3133440U);
    EXPECT_EQ(stat->residentPages, 390U);
}

TEST(PidStat, EndsTheNameAtTheLastBracket)
{
    for (const std::string comm : {"", " ", "a) R 1 2 3", "a\n7 (b) S 1", "((", "))"}) {
        const auto text = "7 (" + comm + ")" + std::string(tail);
        const auto stat = parsePidStat(text);
        ASSERT_TRUE(stat) << comm;
        EXPECT_EQ(stat->comm, comm);
        EXPECT_EQ(stat->threads, 9U);
    }
}

TEST(PidStat, AnswersNothingForAFragment)
{
    const auto text = "7 (bash)" + std::string(tail);
    const auto lastField = text.find(" 390 ");
    for (std::size_t length = 0; length < lastField; ++length)
        EXPECT_FALSE(parsePidStat(std::string_view(text).substr(0, length))) << length;
    EXPECT_FALSE(parsePidStat(")("));
    EXPECT_FALSE(parsePidStat("7 (x) S a b c d e f g h i j k l m n o p q r s t u"));
}

TEST(PidStatus, TakesTheLinesByName)
{
    const auto status = parsePidStatus("Name:\tcat\nState:\tR (running)\nUid:\t1000\t33\t0\t0\n"
                                       "voluntary_ctxt_switches:\t5\n"
                                       "nonvoluntary_ctxt_switches:\t9\n");
    EXPECT_EQ(status.state, 'R');
    EXPECT_EQ(status.effectiveUid, 33U);
    EXPECT_EQ(status.voluntarySwitches, 5U);
}

TEST(PidStatus, LeavesOutWhatIsNotThere)
{
    const auto status = parsePidStatus("State:\nUid:\t1\t4294967296\nvoluntary_ctxt_switches: x\n");
    EXPECT_EQ(status.state, '?');
    EXPECT_FALSE(status.effectiveUid);
    EXPECT_FALSE(status.voluntarySwitches);
    EXPECT_FALSE(parsePidStatus("Uid:\t5").effectiveUid);
}

TEST(PidIo, AddsReadAndWriteCalls)
{
    EXPECT_EQ(parseIoCalls("rchar: 1\nwchar: 2\nsyscr: 30\nsyscw: 12\n"), 42U);
    EXPECT_FALSE(parseIoCalls("syscr: 30\n"));
    EXPECT_FALSE(parseIoCalls("syscr: 30\nsyscw: x\n"));
    EXPECT_FALSE(parseIoCalls(""));
}

} // namespace
} // namespace pulsebar
