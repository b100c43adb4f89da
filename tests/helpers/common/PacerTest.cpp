#include "common/Pacer.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(Pacer, DoesNotDrift)
{
    Pacer pacer(1000, 200, 100);
    EXPECT_EQ(pacer.due(), 1200U);
    for (std::uint64_t i = 1; i <= 1000; ++i) {
        pacer.advance(pacer.due() + i % 90); // each report comes a little late
        ASSERT_EQ(pacer.due(), 1200 + i * 100);
    }
}

TEST(Pacer, SkipsMomentsThatHavePassed)
{
    Pacer pacer(0, 200, 100);
    pacer.advance(555);
    EXPECT_EQ(pacer.due(), 600U);
    pacer.advance(700);
    EXPECT_EQ(pacer.due(), 800U);
}

TEST(Pacer, AReportThatIsEarlyStillWaitsForTheNextMoment)
{
    Pacer pacer(0, 200, 100);
    pacer.advance(100);
    EXPECT_EQ(pacer.due(), 300U);
}

} // namespace
} // namespace pulsebar
