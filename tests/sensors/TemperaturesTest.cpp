#include "sensors/Temperatures.h"

#include "support/FakeSensorNames.h"
#include "support/FakeSmc.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"

#include <QLoggingCategory>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

QVariantMap element(const char *name, const char *key)
{
    return {{QStringLiteral("Key"), QString::fromLatin1(name)},
            {QStringLiteral("SMCKey"), QString::fromLatin1(key)}};
}

QStringList namesIn(const QVariantList &keys)
{
    QStringList names;
    for (const QVariant &key : keys)
        names.append(key.toMap().value(QStringLiteral("Key")).toString());
    return names;
}

const QString Die = QStringLiteral("CPU Die");
const QString Drive = QStringLiteral("Drive");

class TemperaturesTest : public testing::Test
{
protected:
    QVariantMap sample(bool fahrenheit = false)
    {
        m_smc.calls.clear();
        return *m_temperatures.SMCGetTemperatures(fahrenheit);
    }
    QVariantMap named(bool fahrenheit = false)
    {
        m_smc.calls.clear();
        return *m_withNames.SMCGetTemperatures(fahrenheit);
    }
    void drive(double degrees)
    {
        m_smc.setDegrees("Tds0", static_cast<int>(degrees),
                         static_cast<int>((degrees - static_cast<int>(degrees)) * 64));
    }

    FakeSmc m_smc;
    SmcLink m_link{m_smc};
    QVariantList m_list{element("CPU Die", "Tcp0"), element("Drive", "Tds0")};
    FakeSensorNames m_names;
    Temperatures m_temperatures{m_link, m_list};
    Temperatures m_withNames{m_link, m_list, &m_names};
};

TEST_F(TemperaturesTest, ReadingsStandUnderTheirNames)
{
    m_smc.setDegrees("Tcp0", 52, 33);
    drive(31);
    EXPECT_EQ(sample(), (QVariantMap{{Die, 52.515625}, {Drive, 31.0}}));
    EXPECT_EQ(m_temperatures.temperatureKeys(), m_list);
    EXPECT_EQ(sample().value(Die).typeId(), QMetaType::Double);
}

TEST_F(TemperaturesTest, OneConnectionPerSample)
{
    m_smc.setDegrees("Tcp0", 52);
    sample();
    EXPECT_EQ(m_smc.opened, 1);
    EXPECT_EQ(m_smc.closed, 1);
    EXPECT_FALSE(m_smc.isOpen);
    EXPECT_EQ(m_smc.asked("Tcp0"), 1);
}

TEST_F(TemperaturesTest, TwoFailuresInARowDropASensor)
{
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(sample().contains(Drive));
        EXPECT_EQ(m_smc.asked("Tds0"), 1);
    }
    drive(45);
    EXPECT_FALSE(sample().contains(Drive));
    EXPECT_EQ(m_smc.asked("Tds0"), 0);
}

TEST_F(TemperaturesTest, OnlyConsecutiveFailuresCount)
{
    sample();
    drive(45);
    EXPECT_EQ(sample().value(Drive), QVariant(45.0));
    m_smc.remove("Tds0");
    sample();
    EXPECT_EQ(m_smc.asked("Tds0"), 1);
    drive(46);
    EXPECT_EQ(sample().value(Drive), QVariant(46.0));
}

TEST_F(TemperaturesTest, ASmallReadingIsShownAndCountsAsAFailure)
{
    drive(0.5);
    EXPECT_EQ(sample().value(Drive), QVariant(0.5));
    EXPECT_EQ(sample().value(Drive), QVariant(0.5));
    EXPECT_FALSE(sample().contains(Drive));
    EXPECT_EQ(m_smc.asked("Tds0"), 0);
}

TEST_F(TemperaturesTest, OneDegreeIsNoFailure)
{
    drive(1);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(sample().value(Drive), QVariant(1.0));
}

TEST_F(TemperaturesTest, BelowZeroIsNotShown)
{
    m_smc.set("Tds0", "sp78", {0xFF, 0x00});
    EXPECT_FALSE(sample().contains(Drive));
}

TEST_F(TemperaturesTest, TheCpuDieFallsBackOnOtherKeysInTheirOrder)
{
    m_smc.setDegrees("TCAH", 52);
    m_smc.setDegrees("TC0H", 60);
    for (int i = 0; i < 4; ++i) { // its own key fails each time and does not count
        EXPECT_EQ(sample().value(Die), QVariant(52.0));
        EXPECT_EQ(m_smc.asked("Tcp0"), 1);
        EXPECT_EQ(m_smc.asked("TC0F"), 1);
        EXPECT_EQ(m_smc.asked("TC0H"), 0);
    }
    m_smc.setDegrees("TC0F", 48);
    EXPECT_EQ(sample().value(Die), QVariant(48.0));
    EXPECT_EQ(m_smc.asked("TCAH"), 0);
    m_smc.setDegrees("Tcp0", 47);
    EXPECT_EQ(sample().value(Die), QVariant(47.0));
    EXPECT_EQ(m_smc.asked("TC0F"), 0);
}

TEST_F(TemperaturesTest, TheLastFallbackReplacesWhatWasReadBefore)
{
    m_smc.setDegrees("Tcp0", 0, 32);
    m_smc.setDegrees("TC0F", 0, 16);
    EXPECT_FALSE(sample().contains(Die)); // TC0H has nothing
    m_smc.setDegrees("TC0H", 44);
    EXPECT_EQ(sample().value(Die), QVariant(44.0));
}

TEST_F(TemperaturesTest, OtherSensorsHaveNoFallback)
{
    m_smc.setDegrees("TC0F", 52);
    m_smc.setDegrees("Tcp0", 50);
    EXPECT_FALSE(sample().contains(Drive));
    EXPECT_EQ(m_smc.asked("TC0F"), 0);
}

TEST_F(TemperaturesTest, FahrenheitByItsOwnFormula)
{
    drive(50);
    EXPECT_DOUBLE_EQ(sample(true).value(Drive).toDouble(), 147.6);
    drive(0.5); // the limits are in Celsius
    EXPECT_DOUBLE_EQ(sample(true).value(Drive).toDouble(), 32.5 / 5.0 * 9.0);
    sample(true);
    EXPECT_EQ(sample(true).size(), 0);
}

TEST_F(TemperaturesTest, WithoutAControllerTheSampleIsEmptyAndThatIsSaidOnce)
{
    QLoggingCategory::setFilterRules(QStringLiteral("pulsebar.sensors.debug=true"));
    const LogCapture log;
    m_smc.opening = {SmcOpening::NoService, 0};
    for (int i = 0; i < 3; ++i) {
        const auto answer = m_temperatures.SMCGetTemperatures(false);
        ASSERT_TRUE(answer.has_value());
        EXPECT_TRUE(answer->isEmpty());
    }
    EXPECT_EQ(LogCapture::lines(),
              QStringList{QStringLiteral("pulsebar.sensors: Error: no SMC found")});
    EXPECT_EQ(m_smc.closed, 0);
    m_smc.opening = {SmcOpening::Refused, kSmcNotPrivileged};
    sample();
    m_smc.opening = {SmcOpening::Opened, 0};
    sample();
    sample();
    EXPECT_EQ(LogCapture::lines().mid(1),
              (QStringList{QStringLiteral("pulsebar.sensors: Error: IOServiceOpen() = e00002c1"),
                           QStringLiteral("pulsebar.sensors: SMC found")}));
    QLoggingCategory::setFilterRules(QString());
}

TEST_F(TemperaturesTest, AMachineWithoutAControllerIsNotWorthALine)
{
    const LogCapture log;
    m_smc.opening = {SmcOpening::NoService, 0};
    sample();
    EXPECT_EQ(LogCapture::lines(), QStringList());
}

TEST_F(TemperaturesTest, AnOpeningThatSucceedsIsNotWorthALine)
{
    const LogCapture log;
    sample();
    EXPECT_EQ(LogCapture::lines(), QStringList());
}

TEST_F(TemperaturesTest, ARestingSensorNeitherCountsNorIsShown)
{
    m_names.say({{"Tds0", "disk"}});
    m_names.resting = {"Tds0"};
    drive(0.5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(named().contains(Drive));
        EXPECT_EQ(m_smc.asked("Tds0"), 1);
    }
    drive(33);
    EXPECT_EQ(named().value(Drive), QVariant(33.0)); // a reading outweighs it
}

TEST_F(TemperaturesTest, ARestBetweenTwoFailuresDoesNotMakeThemAnyBetter)
{
    m_names.say({{"Tds0", "disk"}});
    named();
    m_names.resting = {"Tds0"};
    named();
    m_names.resting.clear();
    named();
    named();
    EXPECT_EQ(m_smc.asked("Tds0"), 0);
}

TEST_F(TemperaturesTest, ARestingCpuDieStillFallsBack)
{
    m_names.resting = {"Tcp0"};
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(named().contains(Die));
    EXPECT_EQ(m_smc.asked("TC0H"), 1);
    m_smc.setDegrees("TCAH", 41);
    EXPECT_EQ(named().value(Die), QVariant(41.0));
}

TEST_F(TemperaturesTest, KeysOfOtherMachinesDoNotExcuseACpuDieThatFails)
{
    m_names.say({{"Tcp0", "coretemp Package id 0"}});
    m_names.resting = {"TC0F", "TCAH", "TC0H"}; // as all keys that are not there
    for (int i = 0; i < 2; ++i) {
        named();
        EXPECT_EQ(m_smc.asked("Tcp0"), 1);
    }
    named();
    EXPECT_EQ(m_smc.asked("Tcp0"), 0);
}

TEST_F(TemperaturesTest, ARestingFallbackExcusesTheCpuDie)
{
    m_names.say({{"TCAH", "applesmc TCAH"}});
    m_names.resting = {"TCAH"};
    for (int i = 0; i < 4; ++i)
        named();
    EXPECT_EQ(m_smc.asked("Tcp0"), 1);
}

TEST_F(TemperaturesTest, SensorsOutsideTheListFollowUnderTheirOwnNames)
{
    m_smc.setDegrees("Tcp0", 50);
    m_smc.setDegrees("t0a1", 28);
    m_smc.setDegrees("t0a2", 29);
    m_names.say({{"Tcp0", "coretemp Package id 0"}, {"t0a1", "acpitz 1"}, {"t0a2", "CPU Die"}});
    EXPECT_EQ(named(), (QVariantMap{{Die, 50.0},
                                    {QStringLiteral("acpitz 1"), 28.0},
                                    {QStringLiteral("CPU Die 2"), 29.0}}));
    EXPECT_EQ(namesIn(m_withNames.temperatureKeys()),
              (QStringList{Die, Drive, QStringLiteral("acpitz 1"), QStringLiteral("CPU Die 2")}));
    EXPECT_EQ(m_withNames.temperatureKeys().at(2), QVariant(element("acpitz 1", "t0a1")));
}

TEST_F(TemperaturesTest, SensorsThatAppearAreAppendedAndThoseThatGoKeepTheirPlace)
{
    m_names.say({{"t001", "one"}});
    named();
    m_names.say({{"t002", "two"}, {"t001", "another"}});
    named();
    m_names.say({{"t003", "one"}});
    named();
    EXPECT_EQ(namesIn(m_withNames.temperatureKeys()).mid(2),
              (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("one 2")}));
}

TEST_F(TemperaturesTest, NamesAreReadOnlyWhenTheyChanged)
{
    m_names.say({{"t001", "one"}});
    for (int i = 0; i < 5; ++i)
        named();
    EXPECT_EQ(m_names.asked, 1);
    m_names.say({});
    named();
    named();
    EXPECT_EQ(m_names.asked, 2);
}

TEST_F(TemperaturesTest, ASensorThatComesBackIsReadAgain)
{
    m_names.say({{"Tds0", "disk"}});
    named();
    named();
    named();
    EXPECT_EQ(m_smc.asked("Tds0"), 0); // dropped
    m_names.say({{"Tgp0", "gpu"}, {"Tds0", "disk"}});
    named();
    EXPECT_EQ(m_smc.asked("Tds0"), 0); // it was there all the time
    m_names.say({});
    named();
    m_names.say({{"Tds0", "disk"}});
    drive(30);
    EXPECT_EQ(named().value(Drive), QVariant(30.0));
}

TEST_F(TemperaturesTest, KeysOfOtherMachinesAreNotAskedAgainBeforeTheSensorsChange)
{
    m_names.allRest = true; // "its module may be loaded later"
    m_names.say({{"Tgp0", "gpu"}});
    named();
    EXPECT_EQ(m_smc.asked("Tds0"), 1);
    for (int i = 0; i < 5; ++i) {
        named();
        EXPECT_EQ(m_smc.asked("Tds0"), 0);
        EXPECT_EQ(m_smc.asked("Tcp0"), 1); // not every way to the die has a name
        EXPECT_EQ(m_smc.asked("Tgp0"), 1);
    }
    drive(30);
    m_names.say({{"Tgp0", "gpu"}, {"Tds0", "disk"}});
    EXPECT_EQ(named().value(Drive), QVariant(30.0));
}

TEST_F(TemperaturesTest, AKeyWithoutANameThatAnsweredOnceIsAskedOn)
{
    m_names.allRest = true;
    drive(30);
    named();
    m_smc.remove("Tds0");
    named();
    drive(31);
    EXPECT_EQ(named().value(Drive), QVariant(31.0));
}

TEST_F(TemperaturesTest, TheCpuDieIsTriedAgainWhenTheSensorsChange)
{
    for (int i = 0; i < 3; ++i)
        named();
    EXPECT_EQ(m_smc.asked("Tcp0"), 0);
    m_smc.setDegrees("Tcp0", 40); // a second way to a sensor of another name
    m_names.say({{"TC0D", "applesmc TC0D"}});
    EXPECT_EQ(named().value(Die), QVariant(40.0));
}

} // namespace
} // namespace pulsebar
