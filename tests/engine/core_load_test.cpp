#include "engine/CoreLoad.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"

#include <cmath>

namespace pulsebar {
namespace {

using fakes::core;

double share(const CoreEntry &entry, QStringView key)
{
    const QVariant value = entry.shares.value(key.toString());
    EXPECT_EQ(value.typeId(), QMetaType::Double) << key.toString().toStdString();
    return value.toDouble();
}

class CoreLoadTest : public ::testing::Test
{
protected:
    std::vector<CoreEntry> sample(std::vector<CoreTicks> ticks)
    {
        m_source.answer = std::move(ticks);
        return m_load.CPUUsageInfo();
    }
    fakes::CoreTicksAnswer m_source;
    CoreLoad m_load{m_source};
};

TEST_F(CoreLoadTest, TheFirstCallAnswersNothingTheSecondAnEntryPerCore)
{
    EXPECT_TRUE(sample({core(0, 10, 100), core(1, 20, 100)}).empty());
    const auto entries = sample({core(0, 20, 200), core(1, 95, 200)});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(share(entries[0], u"totalUsage"), 0.10);
    EXPECT_EQ(share(entries[1], u"totalUsage"), 0.75);
}

TEST_F(CoreLoadTest, SharesAreFractionsOfTheInterval)
{
    CoreTicks ticks{0, 100, 100, 100, 100};
    sample({ticks});
    ticks = {0, 150, 110, 130, 110};
    const auto entries = sample({ticks});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(share(entries[0], u"user"), 0.5);
    EXPECT_EQ(share(entries[0], u"nice"), 0.1);
    EXPECT_EQ(share(entries[0], u"kernel"), 0.3);
    EXPECT_EQ(share(entries[0], u"idle"), 0.1);
    EXPECT_EQ(share(entries[0], u"totalUsage"), 0.9);
}

TEST_F(CoreLoadTest, AnIntervalWithoutTicksIsNotANumber)
{
    sample({core(0, 10, 100)});
    const auto entries = sample({core(0, 10, 100)});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_TRUE(std::isnan(share(entries[0], u"totalUsage")));
    EXPECT_TRUE(std::isnan(share(entries[0], u"idle")));
}

TEST_F(CoreLoadTest, ACounterThatWentBackIsNotCorrected)
{
    sample({CoreTicks{0, 100, 0, 0, 1000}});
    const auto entries = sample({CoreTicks{0, 200, 0, 0, 999}});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_GT(share(entries[0], u"idle"), 1e17);
}

TEST_F(CoreLoadTest, ASourceThatDoesNotAnswerGivesNothingAndForgetsNothing)
{
    sample({core(0, 0, 100)});
    m_source.answer.reset();
    EXPECT_TRUE(m_load.CPUUsageInfo().empty());
    const auto entries = sample({core(0, 50, 200)});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(share(entries[0], u"totalUsage"), 0.5);
}

TEST_F(CoreLoadTest, CoresThatComeAndGoKeepTheirOwnCounters)
{
    sample({core(0, 0, 100), core(1, 0, 100), core(2, 0, 100)});
    auto entries = sample({core(0, 10, 200), core(2, 90, 200)});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[1].number, 2);
    EXPECT_EQ(share(entries[1], u"totalUsage"), 0.9);

    // A core that is back has no interval yet.
    entries = sample({core(0, 20, 300), core(1, 50, 900), core(2, 90, 300)});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].number, 0);
    EXPECT_EQ(entries[1].number, 2);
    entries = sample({core(0, 20, 400), core(1, 100, 1000), core(2, 90, 400)});
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(share(entries[1], u"totalUsage"), 0.5);
}

TEST_F(CoreLoadTest, ACoreWhoseCountersStoodAtZeroHasNoIntervalYet)
{
    sample({core(0, 0, 0)});
    EXPECT_TRUE(sample({core(0, 10, 100)}).empty());
}

} // namespace
} // namespace pulsebar
