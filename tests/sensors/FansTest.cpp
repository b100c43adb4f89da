#include "sensors/Fans.h"

#include "engine/SensorStatistics.h"
#include "support/FakeSmc.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pulsebar {
namespace {

const QString Actual = QStringLiteral("ActualSpeed");
const QString Minimum = QStringLiteral("MinimumSpeed");
const QString Average = QStringLiteral("AverageSpeed");
const QString Data = QStringLiteral("DataArray");

QVariantMap element(const QString &name, const char *format)
{
    return {{QStringLiteral("Key"), name}, {QStringLiteral("SMCKey"), QString::fromLatin1(format)}};
}

class FansTest : public testing::Test
{
protected:
    QVariantMap sample()
    {
        m_smc.calls.clear();
        return m_fans.SMCGetFanMove().value_or(QVariantMap());
    }
    FakeSmc m_smc;
    SmcLink m_link{m_smc};
    QVariantList m_list{element(Actual, "F%dAc"), element(Minimum, "F%dMn")};
    Fans m_fans{m_link, m_list};
};

TEST_F(FansTest, EachFanWithItsFigures)
{
    m_smc.setFans(2);
    m_smc.setRpm("F0Ac", 1200);
    m_smc.setRpm("F0Mn", 800);
    m_smc.setRpm("F1Ac", 1800);
    EXPECT_EQ(sample(),
              (QVariantMap{{Data, QVariantList{QVariantMap{{Actual, 1200.0F}, {Minimum, 800.0F}},
                                               QVariantMap{{Actual, 1800.0F}, {Minimum, 0.0F}}}},
                           {Average, 1500.0F}}));
    EXPECT_EQ(m_fans.fanKeys(), m_list);
    UsageCaches caches;
    const QVariantList records = processFanMoveStats(caches, sample(), 60);
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records[2].toMap().value(QStringLiteral("CurrentValue")), QVariant(1500.0F));
}

TEST_F(FansTest, ValuesAreSinglePrecision)
{
    m_smc.setFans(1);
    m_smc.set("F0Ac", "fpe2", {0x1F, 0x40});
    const QVariantMap fans = sample();
    const QVariant speed = fans.value(Data).toList().value(0).toMap().value(Actual);
    EXPECT_EQ(speed.typeId(), QMetaType::Float);
    EXPECT_EQ(speed.toFloat(), 2000.0F);
    EXPECT_EQ(fans.value(Average).typeId(), QMetaType::Float);
}

TEST_F(FansTest, WithoutAFanTheAverageIsNotANumber)
{
    m_smc.setFans(0);
    const QVariantMap fans = sample();
    EXPECT_EQ(fans.value(Data), QVariant(QVariantList()));
    EXPECT_TRUE(std::isnan(fans.value(Average).toFloat()));
    EXPECT_EQ(fans.value(Average).typeId(), QMetaType::Float);
    m_smc.remove("FNum"); // is read with success and no bytes
    EXPECT_TRUE(std::isnan(sample().value(Average).toFloat()));
}

TEST_F(FansTest, AnUnreadableCountIsAbsentAndTheConnectionIsClosed)
{
    m_smc.setFans(2).infoStatus = kSmcNotFound;
    EXPECT_FALSE(m_fans.SMCGetFanMove().has_value());
    EXPECT_EQ(m_smc.opened, 1);
    EXPECT_EQ(m_smc.closed, 1);
    EXPECT_FALSE(m_smc.isOpen);
    m_smc.setFans(2).bytesStatus = kSmcIoError;
    EXPECT_FALSE(m_fans.SMCGetFanMove().has_value());
    EXPECT_EQ(m_smc.closed, 2);
}

TEST_F(FansTest, WithoutAControllerThereIsNothing)
{
    m_smc.opening = {SmcOpening::NoService, 0};
    EXPECT_FALSE(m_fans.SMCGetFanMove().has_value());
}

TEST_F(FansTest, OneConnectionPerSample)
{
    m_smc.setFans(1);
    m_smc.setRpm("F0Ac", 900);
    sample();
    EXPECT_EQ(m_smc.opened, 1);
    EXPECT_EQ(m_smc.closed, 1);
    EXPECT_EQ(m_smc.asked("F0Ac"), 1);
}

TEST_F(FansTest, TheLastByteOfTheCountCounts)
{
    m_smc.set("FNum", "ui16", {0x01, 0x02});
    EXPECT_EQ(sample().value(Data).toList().size(), 2);
    m_smc.set("FNum", "ui8 ", {0xFF});
    EXPECT_EQ(sample().value(Data).toList().size(), 255);
}

TEST_F(FansTest, AKeyIsReadWhateverItsType)
{
    m_smc.setFans(1);
    m_smc.set("F0Ac", "ui16", {0x1F, 0x40});
    m_smc.setRpm("F0Mn", 700).bytesStatus = kSmcIoError;
    const QVariantMap fan = sample().value(Data).toList().value(0).toMap();
    EXPECT_EQ(fan.value(Actual), QVariant(2000.0F));
    EXPECT_EQ(fan.value(Minimum), QVariant(0.0F)); // its size was known, its bytes were not
}

TEST_F(FansTest, SpeedsBeyondTwoBytesAreExact)
{
    m_smc.setFans(1);
    m_smc.set("F0Ac", "fpe2", {0x02, 0x6C, 0x44}); // 2 * 4096 + 108 * 64 + 17
    EXPECT_EQ(sample().value(Average), QVariant(15121.0F));
}

TEST_F(FansTest, FansFromTheTenthOnAreReadByFourCharacters)
{
    m_smc.setFans(11);
    m_smc.setRpm("F10A", 1100);
    const QVariantList fans = sample().value(Data).toList();
    ASSERT_EQ(fans.size(), 11);
    EXPECT_EQ(fans.at(10).toMap().value(Actual), QVariant(1100.0F));
    EXPECT_EQ(sample().value(Average), QVariant(100.0F));
}

TEST_F(FansTest, WithoutAnActualSpeedTheAverageIsZero)
{
    m_smc.setFans(2);
    m_smc.setRpm("F0Mn", 700);
    Fans fans(m_link, {element(Minimum, "F%dMn")});
    EXPECT_EQ(fans.SMCGetFanMove()->value(Average), QVariant(0.0F));
}

TEST_F(FansTest, FansMayComeAndGo)
{
    for (const int count : {1, 3, 2}) {
        m_smc.setFans(count);
        m_smc.setRpm("F2Ac", 300);
        EXPECT_EQ(sample().value(Data).toList().size(), count);
    }
}

TEST_F(FansTest, AFormatIsNeverMoreThanAText)
{
    m_smc.setFans(1);
    Fans fans(m_link, {element(Actual, "%s%n"), element(Minimum, "F%d%d")});
    EXPECT_EQ(fans.SMCGetFanMove()->value(Average), QVariant(0.0F));
    EXPECT_EQ(m_smc.asked("%s%n"), 1);
}

} // namespace
} // namespace pulsebar
