#include "engine/AppUsage.h"
#include "engine/UsageCaches.h"
#include "support/QtPrinting.h"

namespace pulsebar {
namespace {

class UsageCachesTest : public ::testing::Test
{
protected:
    std::optional<UsageCache> at(const QString &key) const
    {
        return cacheDataForKey(m_caches, m_appUsage, key);
    }
    /// Two cores with the caches [1] and [2] and the average [3].
    void makeCores()
    {
        m_caches.cpuUsage.setCores({0, 1});
        m_caches.cpuUsage.core(0) = {1};
        m_caches.cpuUsage.core(1) = {2};
        m_caches.cpuUsage.average() = {3};
    }
    UsageCaches m_caches;
    AppUsage m_appUsage;
    const std::optional<UsageCache> m_none;
};

TEST_F(UsageCachesTest, CoresAreNumberedFromOneAndTheAverageComesLast)
{
    makeCores();
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU1")), (UsageCache{1}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU2")), (UsageCache{2}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU3")), (UsageCache{3}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU4")), m_none);
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU0")), m_none);
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU-1")), m_none);
    EXPECT_EQ(at(QStringLiteral("CPUTotalUsage")), (UsageCache{3}));
}

TEST_F(UsageCachesTest, BeforeTheFirstSampleThereIsNoCoreCache)
{
    EXPECT_EQ(at(QStringLiteral("CPUTotalUsage")), m_none);
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU1")), m_none);
}

TEST_F(UsageCachesTest, CoresThatComeAndGoLeaveTheOthersCachesAlone)
{
    makeCores();
    m_caches.cpuUsage.setCores({1, 2});
    EXPECT_EQ(m_caches.cpuUsage.count(), 3U);
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU1")), (UsageCache{2}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__CPU2")), UsageCache());
    EXPECT_EQ(at(QStringLiteral("CPUTotalUsage")), (UsageCache{3}));
}

TEST_F(UsageCachesTest, FansAreNumberedFromZeroAndTheAverageComesLast)
{
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan0")), m_none);
    EXPECT_EQ(at(QStringLiteral("FanMove__FanAverage")), m_none);
    m_caches.fanMove = {{1}, {2}, {3}};
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan0")), (UsageCache{1}));
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan1")), (UsageCache{2}));
    EXPECT_EQ(at(QStringLiteral("FanMove__FanAverage")), (UsageCache{3}));
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan3")), (UsageCache{3}));
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan99")), (UsageCache{3}));
    EXPECT_EQ(at(QStringLiteral("FanMove__Fan-1")), m_none);
}

TEST_F(UsageCachesTest, TemperaturesGoByTheirNames)
{
    m_caches.temperature.insert(QStringLiteral("CPU Die"), {50.0});
    EXPECT_EQ(at(QStringLiteral("Temperature__CPU Die")), (UsageCache{50.0}));
    EXPECT_EQ(at(QStringLiteral("Temperature__GPU")), m_none);
    EXPECT_EQ(at(QStringLiteral("Temperature__")), m_none);
}

TEST_F(UsageCachesTest, NetworkCachesAreThereFromTheStart)
{
    EXPECT_EQ(at(QStringLiteral("Network__NetworkInMinuteStats")), UsageCache());
    m_caches.networkOut = {7};
    EXPECT_EQ(at(QStringLiteral("Network__NetworkOutMinuteStats")), (UsageCache{7}));
}

TEST_F(UsageCachesTest, OtherNamesAreProcesses)
{
    m_appUsage.calcMinuteAppUsage(
        {QVariantMap{{QStringLiteral("PID"), QStringLiteral("123")},
                     {QStringLiteral("ProcessName"), QStringLiteral("Safari")},
                     {QStringLiteral("CPUUsage"), QStringLiteral("0.5")}}},
        60);
    EXPECT_EQ(at(QStringLiteral("CPUUsage__123//Safari")), (UsageCache{0.5F}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__Safari")), (UsageCache{0.5F}));
    EXPECT_EQ(at(QStringLiteral("CPUUsage__9//Other")), m_none);
}

TEST_F(UsageCachesTest, AKeyWithoutAKindNamesNothing)
{
    makeCores();
    EXPECT_EQ(at(QStringLiteral("Safari")), m_none);
    EXPECT_EQ(at(QStringLiteral("CPU1")), m_none);
    EXPECT_EQ(at(QString()), m_none);
    EXPECT_EQ(at(QStringLiteral("__")), m_none);
}

} // namespace
} // namespace pulsebar
