#include "engine/NetworkRates.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"

namespace pulsebar {
namespace {

using fakes::ethernet;

quint64 rate(const QVariantMap &rates, QStringView key)
{
    const QVariant value = rates.value(key.toString());
    EXPECT_EQ(value.typeId(), QMetaType::ULongLong) << key.toString().toStdString();
    return value.toULongLong();
}

class NetworkRatesTest : public ::testing::Test
{
protected:
    QVariantMap sample(std::vector<InterfaceCounters> interfaces, int interval = 1)
    {
        m_source.answer = std::move(interfaces);
        return m_rates.netStatistics(interval);
    }
    fakes::InterfacesAnswer m_source;
    NetworkRates m_rates{m_source};
};

TEST_F(NetworkRatesTest, TheFirstCallAnswersSevenZeros)
{
    const QVariantMap rates = sample({ethernet(1000, 2000)});
    EXPECT_EQ(rates.size(), 7);
    for (auto it = rates.begin(); it != rates.end(); ++it)
        EXPECT_EQ(rate(rates, it.key()), 0U);
}

TEST_F(NetworkRatesTest, RatesAreTheDifferencesPerSecondRoundedDown)
{
    InterfaceCounters counters = ethernet(1000, 2000);
    sample({counters});
    counters.inBytes += 100;
    counters.inPackets += 5;
    counters.inErrors += 7;
    counters.outBytes += 299;
    counters.outPackets += 9;
    counters.outErrors += 3;
    counters.collisions += 6;
    const QVariantMap rates = sample({counters}, 3);
    EXPECT_EQ(rate(rates, u"InBytes"), 33U);
    EXPECT_EQ(rate(rates, u"InPackets"), 1U);
    EXPECT_EQ(rate(rates, u"InErrors"), 2U);
    EXPECT_EQ(rate(rates, u"OutBytes"), 99U);
    EXPECT_EQ(rate(rates, u"OutPackets"), 3U);
    EXPECT_EQ(rate(rates, u"OutErrors"), 1U);
    EXPECT_EQ(rate(rates, u"OutCollisions"), 2U);
}

TEST_F(NetworkRatesTest, InterfacesAddUpAndOthersAreNotCounted)
{
    InterfaceCounters loopback = ethernet(0, 0);
    loopback.loopback = true;
    InterfaceCounters down = ethernet(0, 0);
    down.up = false;
    InterfaceCounters bridge = ethernet(0, 0);
    bridge.linkLevel = false;
    sample({ethernet(0, 0), ethernet(0, 0), loopback, down, bridge});
    for (InterfaceCounters *counters : {&loopback, &down, &bridge})
        counters->inBytes = 1000000;
    const QVariantMap rates = sample({ethernet(10, 0), ethernet(20, 5), loopback, down, bridge});
    EXPECT_EQ(rate(rates, u"InBytes"), 30U);
    EXPECT_EQ(rate(rates, u"OutBytes"), 5U);
}

TEST_F(NetworkRatesTest, AnInterfaceThatGoesDownGivesHugeRates)
{
    sample({ethernet(1000, 0), ethernet(500, 0)});
    EXPECT_EQ(rate(sample({ethernet(1000, 0)}), u"InBytes"), ~quint64(0) - 499);
}

TEST_F(NetworkRatesTest, ASourceThatDoesNotAnswerGivesNothing)
{
    sample({ethernet(1000, 0)});
    m_source.answer.reset();
    EXPECT_EQ(m_rates.netStatistics(1), QVariantMap());
    // The totals are still those of before.
    EXPECT_EQ(rate(sample({ethernet(1300, 0)}), u"InBytes"), 300U);
}

TEST_F(NetworkRatesTest, StaysAtZeroUntilPacketsWereCounted)
{
    InterfaceCounters silent = ethernet(40, 0); // bytes without a packet do not count as one
    silent.inPackets = 0;
    sample({silent});
    EXPECT_EQ(rate(sample({ethernet(5000, 0)}), u"InBytes"), 0U);
    EXPECT_EQ(rate(sample({ethernet(6000, 0)}), u"InBytes"), 1000U);
}

} // namespace
} // namespace pulsebar
