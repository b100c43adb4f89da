// Temperatures, fans and the battery of a machine that changes while the program runs.
#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "e2e/SensorMachine.h"
#include "support/Text.h"

#include <QDBusArgument>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace pulsebar::e2e {
namespace {

constexpr QLatin1String kScripting = RunningProgram::kScripting;
constexpr QLatin1String kControl = RunningProgram::kControl;
const QString kNoValue = QStringLiteral("org.pulsebar.Error.NoValue");
const QString kDie = QStringLiteral("CPU Die");
const QString kFan = QStringLiteral("fan1_input");
const QString kInput = QStringLiteral("temp1_input");
const QString kLabel = QStringLiteral("temp1_label");

constexpr int kPackage = 0; ///< the number of the processor's chip

class SensorsTest : public testing::Test
{
protected:
    SensorsTest()
    {
        machine.addChip(kPackage, "coretemp");
        machine.setChip(kPackage, kLabel, "Package id 0");
        machine.setChip(kPackage, kInput, "45000");
        desktop.writeSettings("[General]\nrefreshSec=1\ntitleTypesToDisplay=10\n");
    }

    /// The newest sample's dictionary under a key.
    static QVariantMap sampled(const RunningProgram &program, const char *key)
    {
        const QVariant sample = program.get(kScripting, "informationDictionary").value;
        return qdbus_cast<QVariantMap>(qdbus_cast<QVariantMap>(sample).value(s(key)));
    }

    static QVariant temperature(const RunningProgram &program, const QString &name)
    {
        return sampled(program, "CPUTemparatures").value(name);
    }

    static bool waitForTitle(const RunningProgram &program, const QString &title)
    {
        return waitFor([&] { return program.title() == title; });
    }

    static QList<double> history(const RunningProgram &program, const QString &key)
    {
        return qdbus_cast<QList<double>>(program.control("cacheDataForKey", {key}).value);
    }

    static void observe(const RunningProgram &program, const QList<QVariantMap> &entries)
    {
        ASSERT_EQ(program.set(kControl, "observeArray", QVariant::fromValue(entries)), QString());
    }

    void writeOwnList(const QByteArray &text) const
    {
        const QString name = desktop.folder() + s("/data_home/pulsebar/Temperature.plist");
        QDir().mkpath(desktop.folder() + s("/data_home/pulsebar"));
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    Desktop desktop;
    Panel panel{desktop};
    SensorMachine machine{desktop.useMachine(s("vm"))};
};

TEST_F(SensorsTest, TemperatureInTheTitleInEitherScale)
{
    RunningProgram program(desktop);
    ASSERT_TRUE(waitForTitle(program, s("CPU:45\u2103"))) << program.title().toStdString();
    const QVariant all = program.get(kScripting, "temperatures").value;
    EXPECT_EQ(qdbus_cast<QVariantMap>(all), (QVariantMap{{kDie, 45.0}}));
    machine.setChip(kPackage, kInput, "51250");
    ASSERT_TRUE(waitForTitle(program, s("CPU:51\u2103")));
    EXPECT_EQ(temperature(program, kDie), QVariant(51.25));
    const QList<double> past = history(program, s("Temperature__CPU Die"));
    ASSERT_FALSE(past.isEmpty());
    EXPECT_EQ(past.constFirst(), 45.0);
    EXPECT_EQ(past.constLast(), 51.25);

    machine.setChip(kPackage, kInput, "45000");
    MenuClient menu(desktop, program.process().pid());
    ASSERT_TRUE(menu.choose({s("Preference"), s("In Fahrenheit")}));
    ASSERT_TRUE(waitForTitle(program, s("CPU:139\u2109"))) << program.title().toStdString();
    EXPECT_EQ(temperature(program, kDie), QVariant((45.0 + 32.0) / 5.0 * 9.0));
    const MenuRow row = menu.look({s("CPU Die: 138.6\u2109")});
    EXPECT_EQ(row.labels(), QStringList{s("CPU Die:138.6\u2109")});
}

TEST_F(SensorsTest, FansInTheTitleAndTheMenu)
{
    machine.addChip(1, "nct6775");
    for (const char *file : {"fan1_input", "fan2_input"})
        machine.setChip(1, s(file), "1200");
    machine.setChip(1, s("fan1_min"), "300");
    RunningProgram program(desktop);
    program.set(kControl, "titleTypesToDisplay", QVariant::fromValue(QList<int>{11}));
    ASSERT_TRUE(waitForTitle(program, s("1200RPM"))) << program.title().toStdString();
    machine.setChip(1, s("fan2_input"), "22000");
    ASSERT_TRUE(waitForTitle(program, s("11600RPM")));
    const QVariant speeds = program.get(kScripting, "fanMoves").value;
    EXPECT_EQ(qdbus_cast<QList<double>>(speeds), (QList<double>{1200, 22000}));
    EXPECT_EQ(history(program, s("FanMove__Fan1")).constLast(), 22000.0);
    EXPECT_EQ(history(program, s("FanMove__FanAverage")).constLast(), 11600.0);

    MenuClient menu(desktop, program.process().pid());
    const MenuRow fans = menu.look({s("Fan: 11600RPM")});
    const QStringList labels = fans.labels();
    EXPECT_EQ(labels.constFirst(), s("-"));
    EXPECT_TRUE(labels.contains(s("Show Graph")));
    EXPECT_EQ(labels.mid(labels.size() - 2),
              (QStringList{s("Fan #1: 1200RPM"), s("Fan #2: 22000RPM")}));
    const QStringList first = fans.child(s("Fan #1: 1200RPM"))->labels();
    EXPECT_EQ(first.mid(0, 2), (QStringList{s("Actual: 1200RPM"), s("Minimum: 300RPM")}));
}

TEST_F(SensorsTest, WithoutFansAndBatteryTheirValuesAreAbsent)
{
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.get(kScripting, "fanMoves").error, kNoValue);
    EXPECT_EQ(program.get(kScripting, "batteryRemain").error, kNoValue);
    EXPECT_EQ(program.control("cacheDataForKey", {s("FanMove__Fan0")}).error, kNoValue);
    EXPECT_EQ(program.control("cacheDataForKey", {s("Temperature__GPU")}).error, kNoValue);
    EXPECT_TRUE(sampled(program, "FanMove").isEmpty());
    MenuClient menu(desktop, program.process().pid());
    const QStringList labels = menu.open().labels();
    EXPECT_TRUE(labels.contains(s("CPU Die: 45.0\u2103")));
    EXPECT_TRUE(labels.filter(s("Fan")).isEmpty());
    EXPECT_TRUE(labels.filter(s("Battery")).isEmpty());
    // Fan Speed is offered where fans are looked for; the battery only where there is one.
    const QStringList types = menu.root().at({s("Preference"), s("Top Title")})->labels();
    EXPECT_TRUE(types.contains(s("CPU Temperature")));
    EXPECT_TRUE(types.contains(s("Fan Speed")));
    EXPECT_FALSE(types.contains(s("Battery")));
}

TEST_F(SensorsTest, WithoutSensorsTemperaturesAreAbsent)
{
    machine.removeChip(kPackage);
    RunningProgram program(desktop);
    ASSERT_TRUE(waitForTitle(program, s("N/A"))) << program.title().toStdString();
    EXPECT_EQ(program.get(kScripting, "temperatures").error, kNoValue);
}

TEST_F(SensorsTest, BatteryIsPluggedAndUnplugged)
{
    machine.addBattery(50, false);
    RunningProgram program(desktop);
    program.set(kControl, "titleTypesToDisplay", QVariant::fromValue(QList<int>{4}));
    ASSERT_TRUE(waitForTitle(program, s("50.0%"))) << program.title().toStdString();
    EXPECT_EQ(program.get(kScripting, "batteryRemain").value, QVariant(50.0));
    MenuClient menu(desktop, program.process().pid());
    QStringList figures = menu.look({s("Battery: 50.0%")}).labels();
    figures.sort();
    EXPECT_EQ(figures,
              (QStringList{s(" Voltage:12000mV"), s("Amperage:-500mA"), s("Cycle Count:120")}));

    machine.setCharge(50, true);
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_TRUE(menu.open().child(s("Charging: 50.0%")));
    EXPECT_TRUE(menu.root().at({s("Preference"), s("Top Title"), s("Battery")}));
    menu.close();
    machine.setSupply(s("BAT0"), s("status"), "Full");
    ASSERT_TRUE(waitForTitle(program, s("Full")));
    EXPECT_TRUE(menu.open().child(s("Battery is charged")));
    menu.close();
    machine.setCharge(49, false);
    EXPECT_TRUE(waitForTitle(program, s("49.0%")));
}

TEST_F(SensorsTest, RotationTakesTheSensorsInTurn)
{
    machine.addBattery(50, false);
    machine.setChip(kPackage, kFan, "1000");
    // Of the numbers 1 to 12 the battery, the temperature and the fans.
    desktop.writeSettings(
        "[General]\nrefreshSec=1\ntitleTypesToDisplay=7\ntoggleTitleOptionArray="
        "false, false, false, true, false, false, false, false, false, true, true, "
        "false\n");
    RunningProgram program(desktop);
    for (const QString &title : {s("50.0%"), s("CPU:45\u2103"), s("1000RPM"), s("50.0%")})
        EXPECT_TRUE(waitForTitle(program, title)) << title.toStdString();
    machine.setSupply(s("BAT0"), s("present"), "0");
    for (const QString &title : {s("CPU:45\u2103"), s("1000RPM"), s("CPU:45\u2103")})
        EXPECT_TRUE(waitForTitle(program, title)) << title.toStdString();
}

TEST_F(SensorsTest, CableAndChargeFireTheirEvents)
{
    machine.addBattery(50, false);
    RunningProgram program(desktop);
    const auto entry = [](int trigger, int falling, double threshold) {
        return QVariantMap{{s("type"), 12},
                           {s("batteryTriggerEventType"), trigger},
                           {s("observeType"), falling},
                           {s("threshold"), threshold},
                           {s("note"), s("%1/%2").arg(trigger).arg(falling)}};
    };
    const QVariantMap rises = entry(0, 0, 55);
    const QVariantMap falls = entry(0, 1, 45);
    const QVariantMap plugged = entry(1, 0, 0);
    const QVariantMap unplugged = entry(2, 0, 0);
    observe(program, {rises, falls, plugged, unplugged});
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.events, QVector<QVariantMap>());
    const auto expectOnce = [&program](const QVariantMap &expected) {
        ASSERT_TRUE(waitFor([&program] { return !program.events.isEmpty(); }));
        ASSERT_TRUE(program.waitForSamples(1));
        EXPECT_EQ(program.events, QVector<QVariantMap>{expected});
        program.events.clear();
    };
    machine.setCharge(50, true);
    expectOnce(plugged);
    machine.setCharge(60, true);
    expectOnce(rises);
    machine.setCharge(60, false);
    expectOnce(unplugged);
    machine.setCharge(45, false);
    expectOnce(falls);
}

TEST_F(SensorsTest, HeatAndFansFireTheirEvents)
{
    machine.setChip(kPackage, kFan, "1000");
    RunningProgram program(desktop);
    const QVariantMap hot{{s("type"), 17},
                          {s("observeType"), 0},
                          {s("temperaturePart"), kDie},
                          {s("threshold"), 60.0}};
    const QVariantMap slow{{s("type"), 18}, {s("observeType"), 1}, {s("threshold"), 500.0}};
    observe(program, {hot, slow});
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(kPackage, kInput, "60000");
    ASSERT_TRUE(waitFor([&program] { return !program.events.isEmpty(); }));
    machine.setChip(kPackage, kFan, "0500");
    ASSERT_TRUE(waitFor([&program] { return program.events.size() > 1; }));
    ASSERT_TRUE(program.waitForSamples(1));
    EXPECT_EQ(program.events, (QVector<QVariantMap>{hot, slow}));
}

TEST_F(SensorsTest, SensorThatFailsTwiceIsDropped)
{
    machine.addChip(1, "amdgpu");
    machine.setChip(1, kLabel, "edge");
    machine.setChip(1, kInput, "40000");
    RunningProgram program(desktop);
    const QString gpu = s("GPU");
    ASSERT_TRUE(waitFor([&] { return temperature(program, gpu) == QVariant(40.0); }));
    machine.setChip(1, kInput, "00000");
    machine.setChip(kPackage, kInput, "46000");
    ASSERT_TRUE(waitForTitle(program, s("CPU:46\u2103")));
    ASSERT_TRUE(program.waitForSamples(3));
    machine.setChip(1, kInput, "41000");
    machine.setChip(kPackage, kInput, "47000");
    ASSERT_TRUE(waitForTitle(program, s("CPU:47\u2103")));
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(sampled(program, "CPUTemparatures"), (QVariantMap{{kDie, 47.0}}));
}

TEST_F(SensorsTest, SensorsComeAndGo)
{
    RunningProgram program(desktop);
    ASSERT_TRUE(waitForTitle(program, s("CPU:45\u2103")));
    // A chip is there when its folder is in the class; its files stand before that.
    machine.setChip(3, kLabel, "Composite");
    machine.setChip(3, kInput, "38000");
    machine.addChip(3, "nvme");
    const QString drive = s("NVMe Drive");
    ASSERT_TRUE(waitFor([&] { return temperature(program, drive) == QVariant(38.0); }));
    MenuClient menu(desktop, program.process().pid());
    EXPECT_EQ(menu.look({s("CPU Die: 45.0\u2103")}).labels(),
              (QStringList{s("CPU Die:45.0\u2103"), s("NVMe Drive:38.0\u2103")}));
    machine.removeChip(3);
    ASSERT_TRUE(waitFor([&] { return !temperature(program, drive).isValid(); }));
    ASSERT_TRUE(program.waitForSamples(3));
    machine.setChip(3, kLabel, "Composite");
    machine.setChip(3, kInput, "39000");
    machine.addChip(3, "nvme");
    EXPECT_TRUE(waitFor([&] { return temperature(program, drive) == QVariant(39.0); }));
}

TEST_F(SensorsTest, SleepingDeviceIsNotWoken)
{
    machine.setRuntimeStatus(1, "active");
    machine.addChip(1, "amdgpu");
    machine.setChip(1, kLabel, "edge");
    machine.setChip(1, kInput, "40000");
    RunningProgram program(desktop);
    const QString gpu = s("GPU");
    ASSERT_TRUE(waitFor([&] { return temperature(program, gpu) == QVariant(40.0); }));
    machine.setRuntimeStatus(1, "suspended");
    ASSERT_TRUE(waitFor([&] { return !temperature(program, gpu).isValid(); }));
    machine.setChip(1, kInput, "55000");
    // Longer than a sensor that fails would be asked.
    ASSERT_TRUE(program.waitForSamples(4));
    EXPECT_EQ(sampled(program, "CPUTemparatures"), (QVariantMap{{kDie, 45.0}}));
    EXPECT_FALSE(history(program, s("Temperature__GPU")).contains(55.0));
    machine.setRuntimeStatus(1, "active");
    EXPECT_TRUE(waitFor([&] { return temperature(program, gpu) == QVariant(55.0); }));
}

constexpr const char *kOwnList = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<array>
<dict><key>Key</key><string>100% %@ of_it &amp; more</string><key>SMCKey</key><string>Tcp0</string></dict>
<dict><key>Key</key><string>CPU Die</string><key>SMCKey</key><string>Tcp0</string></dict>
</array>
</plist>
)";

TEST_F(SensorsTest, OwnListIsReadInsteadOfOurs)
{
    writeOwnList(kOwnList);
    RunningProgram program(desktop);
    ASSERT_TRUE(waitForTitle(program, s("CPU:45\u2103")));
    MenuClient menu(desktop, program.process().pid());
    EXPECT_EQ(menu.look({s("CPU Die: 45.0\u2103")}).labels(),
              (QStringList{s("100% %@ of_it & more:45.0\u2103"), s("CPU Die:45.0\u2103")}));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(program.process().log(), QString());
}

TEST_F(SensorsTest, BrokenListOfOnesOwnIsSaidOnce)
{
    writeOwnList("<plist><array><dict>");
    RunningProgram program(desktop);
    ASSERT_TRUE(waitForTitle(program, s("CPU:45\u2103")));
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(program.process().log().count(s("Temperature.plist")), 1)
        << program.process().log().toStdString();
    EXPECT_EQ(program.process().log().count(u'\n'), 1);
}

} // namespace
} // namespace pulsebar::e2e
