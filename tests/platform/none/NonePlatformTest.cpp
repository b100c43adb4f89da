#include "platform/none/NonePlatform.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(NonePlatform, EveryContractIsThereAndAnswersNothing)
{
    const auto platform = makeNonePlatform();
    ASSERT_TRUE(platform->coreTicks && platform->interfaceCounters && platform->diskCounters &&
                platform->systemFacts && platform->processIcons);
    EXPECT_FALSE(platform->coreTicks->readCoreTicks());
    EXPECT_FALSE(platform->interfaceCounters->readInterfaceCounters());
    EXPECT_FALSE(platform->diskCounters->readDiskCounters());
    for (int selector = 0; selector < 30; ++selector) {
        EXPECT_FALSE(platform->systemFacts->text(selector));
        EXPECT_FALSE(platform->systemFacts->number(selector));
    }
    EXPECT_TRUE(platform->processIcons->iconForPID(QStringLiteral("1")).isEmpty());
}

TEST(NonePlatform, IsWhatABuildWithoutASystemGets)
{
    const auto platform = makePlatform();
    ASSERT_TRUE(platform);
    EXPECT_FALSE(platform->coreTicks->readCoreTicks());
}

} // namespace
} // namespace pulsebar
