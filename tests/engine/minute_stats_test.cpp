#include "engine/MinuteStats.h"
#include "engine/MonitorSettings.h"
#include "support/QtPrinting.h"

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

double number(const QVariantMap &record, QStringView key)
{
    const QVariant value = record.value(key.toString());
    EXPECT_EQ(value.typeId(), QMetaType::Double) << key.toString().toStdString();
    return value.toDouble();
}

QVariantMap recordOf(std::initializer_list<double> values, int maximum = 60)
{
    UsageCache cache;
    QVariantMap record;
    for (const double value : values)
        record = calcMinuteStats(cache, value, maximum);
    return record;
}

TEST(MinuteStats, TheFirstSampleOfASeries)
{
    const QVariantMap record = recordOf({0.25});
    EXPECT_EQ(number(record, u"CurrentValue"), 0.25);
    EXPECT_FALSE(record.contains(QStringLiteral("LastValue")));
    EXPECT_EQ(number(record, u"MaxValue"), 0.25);
    EXPECT_EQ(number(record, u"MinValue"), 0.25);
    EXPECT_EQ(number(record, u"AverageValue"), 0.25);
    EXPECT_EQ(number(record, u"PreAverage"), 0.0);
}

TEST(MinuteStats, CurrentAndLastAreTheSamplesAsGiven)
{
    UsageCache cache;
    calcMinuteStats(cache, QVariant::fromValue<quint64>(7), 60);
    const QVariantMap record = calcMinuteStats(cache, QStringLiteral("2.5"), 60);
    EXPECT_EQ(record.value(QStringLiteral("LastValue")).typeId(), QMetaType::ULongLong);
    EXPECT_EQ(record.value(QStringLiteral("CurrentValue")).typeId(), QMetaType::QString);
    EXPECT_EQ(number(record, u"MaxValue"), 7.0);
    EXPECT_EQ(number(record, u"AverageValue"), 4.75);
}

TEST(MinuteStats, AZeroIsTheMinimumOnlyWhileItIsTheNewest)
{
    EXPECT_EQ(number(recordOf({5, 0, 3}), u"MinValue"), 3.0);
    EXPECT_EQ(number(recordOf({5, 3, 0}), u"MinValue"), 0.0);
    EXPECT_EQ(number(recordOf({0, 5, 3}), u"MinValue"), 3.0);
}

TEST(MinuteStats, TheMaximumIsNeverBelowZero)
{
    const QVariantMap record = recordOf({-5, -1});
    EXPECT_EQ(number(record, u"MaxValue"), 0.0);
    EXPECT_EQ(number(record, u"MinValue"), -5.0);
}

TEST(MinuteStats, ThePreviousAverageCountsTheOldestTwiceUntilTheCacheIsFull)
{
    EXPECT_EQ(number(recordOf({3, 6}), u"PreAverage"), (3.0 + 3.0) / 2);
    // Full: exactly the mean of the window before.
    EXPECT_EQ(number(recordOf({1, 2, 6, 30}, 3), u"PreAverage"), 3.0);
    EXPECT_EQ(number(recordOf({1, 2, 6, 30}, 3), u"AverageValue"), (2.0 + 6.0 + 30.0) / 3);
}

TEST(MinuteStats, TheCacheKeepsTheNewest)
{
    UsageCache cache;
    for (int i = 1; i <= 5; ++i)
        calcMinuteStats(cache, i, 3);
    EXPECT_EQ(cache, (UsageCache{3, 4, 5}));
}

TEST(MinuteStats, ACacheLongerThanItMayBeShrinksByNothingButTheOldest)
{
    UsageCache cache{1, 2, 3, 4, 5};
    calcMinuteStats(cache, 6, 2);
    EXPECT_EQ(cache, (UsageCache{2, 3, 4, 5, 6}));
}

TEST(MinuteStats, ACacheOfNothingKeepsTheNewestAlone)
{
    UsageCache cache;
    EXPECT_EQ(number(calcMinuteStats(cache, 4.0, 0), u"AverageValue"), 4.0);
    EXPECT_EQ(number(calcMinuteStats(cache, 8.0, 0), u"AverageValue"), 8.0);
    EXPECT_EQ(cache, (UsageCache{8.0}));
}

TEST(MinuteStats, ValuesAreReadInSinglePrecision)
{
    EXPECT_EQ(number(recordOf({0.1}), u"AverageValue"), static_cast<double>(0.1F));
}

TEST(MinuteStats, NotANumberPassesThroughTheAverageButIsNoExtreme)
{
    const QVariantMap record = recordOf({2, std::nan(""), 1});
    EXPECT_TRUE(std::isnan(number(record, u"AverageValue")));
    EXPECT_EQ(number(record, u"MaxValue"), 2.0);
    EXPECT_EQ(number(record, u"MinValue"), 1.0);
}

TEST(CacheLength, IsAMinuteOfSamples)
{
    MonitorSettings settings;
    const auto lengthAt = [&](int seconds) {
        settings.refreshSec = seconds;
        return settings.cacheLength();
    };
    EXPECT_EQ(lengthAt(1), 60);
    EXPECT_EQ(lengthAt(2), 30);
    EXPECT_EQ(lengthAt(3), 20);
    EXPECT_EQ(lengthAt(5), 12);
    EXPECT_EQ(lengthAt(7), 8);
    EXPECT_EQ(lengthAt(60), 1);
    EXPECT_EQ(lengthAt(61), 0);
}

TEST(CacheLength, ADamagedIntervalCountsAsOneSecond)
{
    MonitorSettings settings;
    for (const int seconds : {0, -1, std::numeric_limits<int>::min()}) {
        settings.refreshSec = seconds;
        EXPECT_EQ(settings.interval(), 1);
        EXPECT_EQ(settings.cacheLength(), 60);
    }
}

} // namespace
} // namespace pulsebar
