#include "graph/GraphSeries.h"

#include "graph/GraphViewSetting.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

QString caption(const char *key)
{
    return GraphSeries(s(key)).caption();
}

QString label(const char *key, const QVariant &last)
{
    return lastValueText(GraphSeries(s(key)), last);
}

TEST(GraphSeries, SplitsAKeyAtTheFirstSeparator)
{
    const GraphSeries core(s("CPUUsage__CPU1"));
    EXPECT_EQ(core.windowKey, s("CPUUsage__CPU1"));
    EXPECT_EQ(core.title, s("CPU1"));
    EXPECT_EQ(core.dataType, s("CPUUsage"));
    const GraphSeries process(s("CPUUsage__412//a__b//c"));
    EXPECT_EQ(process.title, s("412//a__b//c"));
    EXPECT_EQ(process.dataType, s("CPUUsage"));
}

TEST(GraphSeries, WithoutASeparatorTheWholeKeyIsTheTitle)
{
    const GraphSeries total(s("CPUTotalUsage"));
    EXPECT_EQ(total.title, s("CPUTotalUsage"));
    EXPECT_FALSE(total.dataType);
    EXPECT_EQ(total.rules, GraphSeries(s("CPUUsage__CPU1")).rules);
    EXPECT_EQ(GraphSeries(s("CPU3")).title, s("CPU3"));
}

TEST(GraphSeries, TakesAnEmptyPieceForNone)
{
    EXPECT_EQ(GraphSeries(s("Network__")).title, s("Network__"));
    EXPECT_EQ(GraphSeries(s("Network__")).dataType, s("Network"));
    EXPECT_EQ(GraphSeries(s("__x")).title, s("x"));
    EXPECT_FALSE(GraphSeries(s("__x")).dataType);
    EXPECT_EQ(GraphSeries(s("")).title, s(""));
    EXPECT_EQ(caption("CPUUsage__412//"), s("412//"));
}

TEST(GraphSeries, ShowsEveryKindOfDataByItsRules)
{
    const GraphDisplayRules temperature = GraphSeries(s("Temperature__CPU Die")).rules;
    EXPECT_EQ(temperature, (GraphDisplayRules{s("℃"), s("%0.1f℃"), 1.0F, 1.0F}));
    const GraphDisplayRules fan = GraphSeries(s("FanMove__FanAverage")).rules;
    EXPECT_EQ(fan, (GraphDisplayRules{s("RPM"), s("%.0fRPM"), 1.0F, 1.0F}));
    const GraphDisplayRules network = GraphSeries(s("Network__NetworkInMinuteStats")).rules;
    EXPECT_EQ(network, (GraphDisplayRules{s("KB"), s(""), 1.0F, 1024.0F}));
    const GraphDisplayRules percent{s("%"), s("%0.1f%%"), 100.0F, 1.0F};
    EXPECT_EQ(GraphSeries(s("CPUTotalUsage")).rules, percent);
    EXPECT_EQ(GraphSeries(s("CPUUsage__9//top")).rules, percent);
    EXPECT_EQ(GraphSeries(s("temperature__CPU Die")).rules, percent) << "kinds are exact";
}

TEST(GraphSeries, DrawsOnlyTheTrafficOfAllInterfacesOnTheirScale)
{
    EXPECT_TRUE(GraphSeries(s("Network__NetworkInMinuteStats")).isTraffic());
    EXPECT_TRUE(GraphSeries(s("NetworkOutMinuteStats")).isTraffic());
    EXPECT_FALSE(GraphSeries(s("Network__eth0")).isTraffic());
    EXPECT_FALSE(GraphSeries(s("CPUUsage__7//NetworkInMinuteStats")).isTraffic());
}

TEST(GraphSeries, CaptionsSeriesOfOurOwnInPlainWords)
{
    EXPECT_EQ(caption("CPUTotalUsage"), s("CPU Total"));
    EXPECT_EQ(caption("Network__NetworkInMinuteStats"), s("Network In"));
    EXPECT_EQ(caption("FanMove__FanAverage"), s("Fan Average"));
    EXPECT_EQ(caption("FanMove__Fan0"), s("Fan0"));
    EXPECT_EQ(caption("CPUUsage__CPU1"), s("CPU1"));
    EXPECT_EQ(caption("Temperature__CPU Die"), s("CPU Die"));
    EXPECT_EQ(caption("Temperature__nct6775 Ambient__Zone"), s("Zone"));
}

TEST(GraphSeries, CaptionsAProcessByItsNameAlone)
{
    EXPECT_EQ(caption("CPUUsage__412//Web Content"), s("Web Content"));
    EXPECT_EQ(caption("CPUUsage__412//a//b"), s("a//b"));
    EXPECT_EQ(caption("CPUUsage__412//a__b"), s("b"));
    // A name that happens to be a key of the texts is a name all the same.
    EXPECT_EQ(caption("CPUUsage__412//free"), s("free"));
    EXPECT_EQ(caption("CPUUsage__412//<b>x</b> &amp; %@"), s("<b>x</b> &amp; %@"));
}

TEST(GraphSeries, CaptionsAreOneLineOfText)
{
    const QString name = s("a\nb\tc") + QChar(0) + QChar(0x1b) + QChar(0x202e) + s("d");
    EXPECT_EQ(GraphSeries(s("CPUUsage__412//") + name).caption(), s("a b c\ufffd\ufffd\ufffdd"));
}

TEST(GraphSeries, StoresAProcessUnderItsNameButLooksForItsNumberToo)
{
    const GraphSeries process(s("CPUUsage__412//firefox"));
    EXPECT_EQ(process.keyToLoad(), s("GraphWindowSetting_412//firefox"));
    EXPECT_EQ(process.keyToStore(), s("GraphWindowSetting_firefox"));
    const GraphSeries core(s("CPUUsage__CPU1"));
    EXPECT_EQ(core.keyToLoad(), s("GraphWindowSetting_CPU1"));
    EXPECT_EQ(core.keyToStore(), core.keyToLoad());
    EXPECT_EQ(GraphSeries(s("CPUUsage__412//a//b")).keyToStore(), s("GraphWindowSetting_a//b"));
    EXPECT_EQ(GraphSeries(s("CPUUsage__412//")).keyToStore(), s("GraphWindowSetting_412//"));
}

TEST(LastValueText, FollowsTheKindOfData)
{
    EXPECT_EQ(label("CPUTotalUsage", 0.1234F), s("12.3%"));
    EXPECT_EQ(label("CPUUsage__412//x", 3.5), s("350.0%"));
    EXPECT_EQ(label("Temperature__CPU Die", 61.46), s("61.5℃"));
    EXPECT_EQ(label("FanMove__Fan0", 1998.4), s("1998RPM"));
    EXPECT_EQ(label("Network__NetworkInMinuteStats", quint64(1536)), s("1.5KB"));
    EXPECT_EQ(label("Network__NetworkInMinuteStats", quint64(15) << 20), s("15MB"));
}

TEST(LastValueText, OfNoSampleIsZeroOrNothing)
{
    EXPECT_EQ(label("CPUTotalUsage", {}), s("0.0%"));
    EXPECT_EQ(label("FanMove__Fan0", {}), s("0RPM"));
    EXPECT_EQ(label("Network__NetworkInMinuteStats", {}), s(""));
}

class ThresholdTest : public testing::Test
{
protected:
    bool under(const char *key, const QVariant &last)
    {
        return isUnderThreshold(GraphSeries(s(key)), setting, last);
    }
    void set(double threshold, int type)
    {
        setting.setProperty("threshold", float(threshold));
        setting.setProperty("thresholdType", type);
    }

    GraphViewSetting setting;
};

TEST_F(ThresholdTest, ComparesPercentWithTheScaledSample)
{
    set(50.0, 1);
    EXPECT_TRUE(under("CPUTotalUsage", 0.499));
    EXPECT_FALSE(under("CPUTotalUsage", 0.5)) << "neither side";
    EXPECT_FALSE(under("CPUTotalUsage", 0.501));
    set(50.0, 0);
    EXPECT_FALSE(under("CPUTotalUsage", 0.499));
    EXPECT_FALSE(under("CPUTotalUsage", 0.5)) << "neither side";
    EXPECT_TRUE(under("CPUTotalUsage", 0.501));
    set(50.0, -7);
    EXPECT_TRUE(under("CPUTotalUsage", 0.499)) << "any type but 0 is below";
}

TEST_F(ThresholdTest, CountsTrafficInUnitsOf1024Bytes)
{
    set(10.0, 1);
    EXPECT_TRUE(under("Network__NetworkInMinuteStats", quint64(10239)));
    EXPECT_FALSE(under("Network__NetworkInMinuteStats", quint64(10240)));
    set(10.0, 0);
    EXPECT_FALSE(under("Network__NetworkInMinuteStats", quint64(10240)));
    EXPECT_TRUE(under("Network__NetworkInMinuteStats", quint64(10241)));
}

TEST_F(ThresholdTest, ComparesDegreesAndSpeedsAsTheyAre)
{
    set(60.0, 1);
    EXPECT_TRUE(under("Temperature__CPU Die", 59.9));
    EXPECT_FALSE(under("Temperature__CPU Die", 60.0));
    set(1200.0, 0);
    EXPECT_TRUE(under("FanMove__Fan0", 1201.0));
}

TEST_F(ThresholdTest, TakesNoSampleForZeroAndWhatIsNoNumberForNeither)
{
    set(10.0, 1);
    EXPECT_TRUE(under("CPUTotalUsage", {}));
    EXPECT_FALSE(under("CPUTotalUsage", std::numeric_limits<double>::quiet_NaN()));
    set(10.0, 0);
    EXPECT_FALSE(under("CPUTotalUsage", {}));
    EXPECT_FALSE(under("CPUTotalUsage", std::numeric_limits<double>::quiet_NaN()));
}

} // namespace
} // namespace pulsebar
