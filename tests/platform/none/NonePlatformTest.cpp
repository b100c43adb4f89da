#include "platform/none/NonePlatform.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace pulsebar {
namespace {

TEST(NonePlatform, EveryContractIsThereAndAnswersNothing)
{
    const auto platform = makeNonePlatform();
    ASSERT_TRUE(platform->coreTicks && platform->interfaceCounters && platform->diskCounters &&
                platform->systemFacts && platform->processIcons && platform->processes &&
                platform->processTable && platform->workspace && platform->loginItems &&
                platform->battery && platform->smc && platform->sensorNames);
    EXPECT_FALSE(platform->coreTicks->readCoreTicks());
    EXPECT_FALSE(platform->interfaceCounters->readInterfaceCounters());
    EXPECT_FALSE(platform->diskCounters->readDiskCounters());
    for (int selector = 0; selector < 30; ++selector) {
        EXPECT_FALSE(platform->systemFacts->text(selector));
        EXPECT_FALSE(platform->systemFacts->number(selector));
    }
    EXPECT_TRUE(platform->processIcons->iconForPID(QStringLiteral("1")).isEmpty());
    EXPECT_FALSE(platform->processes->hold(QString::number(::getpid()), ~0ULL));
    EXPECT_FALSE(platform->processTable->shortNames());
    EXPECT_TRUE(platform->workspace->iconForFile(QStringLiteral("/bin/sh")).isEmpty());
    EXPECT_TRUE(platform->workspace->fullPathForApplication(QStringLiteral("sh")).isEmpty());
    EXPECT_TRUE(platform->workspace->commandForProgram(QStringLiteral("/bin/sh")).isEmpty());
    EXPECT_FALSE(platform->battery->readBatteries());
    EXPECT_EQ(platform->smc->open().opening, SmcOpening::NoService);
    SmcRecord answer{};
    EXPECT_EQ(platform->smc->call(kSmcSelector, SmcRecord{}, answer), kSmcNotOpen);
    platform->smc->close();
    EXPECT_TRUE(platform->sensorNames->names().empty());
    EXPECT_EQ(platform->sensorNames->revision(), 0U);
    EXPECT_FALSE(platform->sensorNames->isResting("Tcp0"));
    EXPECT_EQ(platform->workspace->displayName(QStringLiteral("/bin/sh")), QStringLiteral("sh"));
}

TEST(NonePlatform, IsWhatABuildWithoutASystemGets)
{
    const auto platform = makePlatform();
    ASSERT_TRUE(platform);
    EXPECT_FALSE(platform->coreTicks->readCoreTicks());
}

} // namespace
} // namespace pulsebar
