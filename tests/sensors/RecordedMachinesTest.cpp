// Recorded machines from their files to the menu: readers, SMC, collectors, statistics, texts.

#include "controller/TitleTexts.h"
#include "engine/TopMonitor.h"
#include "menu/MainMenu.h"
#include "menu/MenuReading.h"
#include "platform/TemporaryMachine.h"
#include "platform/linux_/SysPowerSupplies.h"
#include "platform/linux_/hwmon/HwmonSmc.h"
#include "sensors/Battery.h"
#include "sensors/ExpectedMachines.h"
#include "sensors/Fans.h"
#include "sensors/SensorLists.h"
#include "sensors/Temperatures.h"
#include "support/QtPrinting.h"
#include "support/WaitFor.h"
#include "util/Values.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pulsebar {

namespace expected {

void PrintTo(const Machine &machine, std::ostream *out)
{
    *out << machine.name;
}

} // namespace expected

namespace {

using testing::ElementsAreArray;

/// What the tags of the sections' rows are.
constexpr int batteryTag = titles::kBattery;
constexpr int temperatureTag = titles::kTemperature;
constexpr int fanTag = titles::kFanSpeed;

/// Readings are exact to 1/64 of a degree.
double degreesOf(const expected::Sensor &sensor)
{
    return std::round(sensor.millidegrees * 64.0 / 1000.0) / 64.0;
}

/// A busy machine is not slow firmware.
PatientFiles::Options unhurried()
{
    PatientFiles::Options options;
    options.budget = std::chrono::seconds(20);
    options.quick = std::chrono::seconds(20);
    options.surelySlow = std::chrono::seconds(20);
    return options;
}

class RecordedSensors : public testing::TestWithParam<expected::Machine>
{
protected:
    RecordedSensors()
    {
        copyRecordedMachine(GetParam().name, m_machine);
        m_monitor.setMonitorBattery(true);
        m_monitor.setMonitorTemperature(true);
        m_monitor.setMonitorFanMove(true);
    }

    void sample() { m_monitor.loadTopInfo({}); }
    QVariantMap dictionary(const char *key) const
    {
        return m_monitor.topDict().value(QLatin1String(key)).toMap();
    }

    /// Takes samples until the first readings of all sensors are in.
    void settle()
    {
        sample();
        const auto all = static_cast<qsizetype>(GetParam().sensors.size());
        EXPECT_TRUE(waitFor([&] {
            sample();
            return dictionary("CPUTemparatures").size() == all;
        })) << "there are "
            << dictionary("CPUTemparatures").size();
    }

    Menu menu() const
    {
        MainMenuState state;
        state.topDict = m_monitor.topDict();
        state.temperatureKeys = m_monitor.temperatureKeys();
        state.fanKeys = m_monitor.fanKeys();
        state.preferences.titles.monitorTemperature = true;
        state.preferences.titles.monitorFanMove = true;
        Menu menu;
        addMainMenu(menu, state);
        return menu;
    }

    /// The section whose choice shows that type in the panel.
    static expected::Section section(const Menu &menu, int tag)
    {
        for (const MenuItem &item : menu.items()) {
            if (item.tag == tag && item.action == QLatin1String("changeTitleToDisplayType"))
                return {reading::title(item), reading::titlesBelow(item)};
        }
        return {};
    }

    std::string title(int type) const
    {
        return titles::titleOfType(type, m_monitor.topDict(), m_monitor.fahrenheit()).toStdString();
    }

    TemporaryMachine m_machine;
    HwmonSmc m_smc{m_machine.root()};
    SmcLink m_link{m_smc};
    SensorLists m_lists = readSensorLists({QStringLiteral(PULSEBAR_DATA)});
    Temperatures m_temperatures{m_link, m_lists.temperature, &m_smc};
    Fans m_fans{m_link, m_lists.fan};
    SysPowerSupplies m_supplies{m_machine.root(), unhurried()};
    Battery m_battery{m_supplies};
    TopMonitor m_monitor{{.battery = &m_battery, .temperatures = &m_temperatures, .fans = &m_fans},
                         SamplerCommand()};
};

TEST_P(RecordedSensors, TemperaturesHaveTheirNames)
{
    settle();
    const QVariantMap sample = dictionary("CPUTemparatures");
    for (const auto &sensor : GetParam().sensors) {
        const QVariant degrees = sample.value(QString::fromStdString(sensor.name));
        EXPECT_EQ(degrees.typeId(), QMetaType::Double) << sensor.name;
        EXPECT_EQ(degrees.toDouble(), degreesOf(sensor)) << sensor.name;
    }
    EXPECT_EQ(sample.size(), static_cast<qsizetype>(GetParam().sensors.size()))
        << QStringList(sample.keys()).join(QStringLiteral(" | ")).toStdString();
}

TEST_P(RecordedSensors, FahrenheitIsAsTheSystemComputesIt)
{
    m_monitor.setFahrenheit(true);
    settle();
    const QVariantMap sample = dictionary("CPUTemparatures");
    for (const auto &sensor : GetParam().sensors) {
        EXPECT_DOUBLE_EQ(sample.value(QString::fromStdString(sensor.name)).toDouble(),
                         (degreesOf(sensor) + 32.0) / 5.0 * 9.0)
            << sensor.name;
    }
    EXPECT_EQ(title(temperatureTag), GetParam().fahrenheitTitle);
}

TEST_P(RecordedSensors, EverySensorHasItsStatistics)
{
    settle();
    sample();
    const QVariantMap temperatures = dictionary("CPUTemparaturesMinutesStats");
    EXPECT_EQ(temperatures.keys(), dictionary("CPUTemparatures").keys());
    for (const auto &sensor : GetParam().sensors) {
        const QVariantMap record = temperatures.value(QString::fromStdString(sensor.name)).toMap();
        for (const char *value : {"CurrentValue", "LastValue", "AverageValue", "MaxValue"})
            EXPECT_FLOAT_EQ(floatValueForKey(record, QLatin1String(value)),
                            static_cast<float>(degreesOf(sensor)))
                << sensor.name << ' ' << value;
    }
    QVariantList fans = m_monitor.topDict().value(QStringLiteral("FanMoveMinutesStats")).toList();
    std::vector<float> speeds;
    for (const QVariant &record : fans)
        speeds.push_back(floatValueForKey(record.toMap(), QStringLiteral("CurrentValue")));
    std::vector<float> expectedSpeeds;
    for (const auto &fan : GetParam().fans)
        expectedSpeeds.push_back(fan.actual);
    if (!GetParam().fans.empty())
        expectedSpeeds.push_back(GetParam().average);
    EXPECT_EQ(speeds, expectedSpeeds);
}

TEST_P(RecordedSensors, FansInTheOrderOfTheirChips)
{
    settle();
    EXPECT_EQ(m_monitor.topDict().contains(QStringLiteral("FanMove")), !GetParam().fans.empty());
    const QVariantMap sample = dictionary("FanMove");
    const QVariantList fans = sample.value(QStringLiteral("DataArray")).toList();
    ASSERT_EQ(fans.size(), static_cast<qsizetype>(GetParam().fans.size()));
    for (qsizetype number = 0; number < fans.size(); ++number) {
        const auto &fan = GetParam().fans.at(static_cast<std::size_t>(number));
        const QVariantMap figures = fans.at(number).toMap();
        const std::map<const char *, float> all{{"ActualSpeed", fan.actual},
                                                {"MinimumSpeed", fan.minimum},
                                                {"MaximumSpeed", fan.maximum},
                                                {"TargetSpeed", fan.target}};
        for (const auto &[key, speed] : all)
            EXPECT_EQ(figures.value(QLatin1String(key)), QVariant(speed)) << number << ' ' << key;
    }
    EXPECT_FLOAT_EQ(floatValueForKey(sample, QStringLiteral("AverageSpeed")), GetParam().average);
}

TEST_P(RecordedSensors, TheFirstBatteryOfTheMachine)
{
    sample();
    const QVariantMap record = dictionary("BatteryStats");
    EXPECT_EQ(record.isEmpty(), !GetParam().battery);
    if (!GetParam().battery)
        return;
    const expected::Pack &pack = *GetParam().battery;
    EXPECT_EQ(record.value(QStringLiteral("BatteryEnabled")), QVariant(true));
    EXPECT_EQ(record.value(QStringLiteral("IsConnected")), QVariant(pack.connected));
    EXPECT_EQ(record.value(QStringLiteral("FullyCharged")), QVariant(pack.full));
    EXPECT_NEAR(record.value(QStringLiteral("BatteryRemainPercent")).toFloat(), pack.percent, 1e-4);
    const auto figure = [&](const char *key) -> std::optional<int> {
        const QVariant value = record.value(QLatin1String(key));
        return value.isValid() ? std::optional(value.toInt()) : std::nullopt;
    };
    EXPECT_EQ(figure("BatteryCycleCount"), pack.cycles);
    EXPECT_EQ(figure("BatteryVoltage"), pack.millivolts);
    EXPECT_EQ(figure("BatteryAmperage"), pack.milliamperes);
}

TEST_P(RecordedSensors, TheTitleShowsThem)
{
    settle();
    EXPECT_EQ(title(temperatureTag), GetParam().temperatureTitle);
    EXPECT_EQ(title(fanTag), GetParam().fanTitle);
    EXPECT_EQ(title(batteryTag), GetParam().batteryTitle);
}

TEST_P(RecordedSensors, TheMenuListsThem)
{
    settle();
    const Menu shown = menu();
    const expected::Section temperatures = section(shown, temperatureTag);
    EXPECT_EQ(temperatures.title, GetParam().temperatureSection);
    std::vector<std::string> rows;
    for (const auto &sensor : GetParam().sensors)
        rows.push_back(sensor.row);
    EXPECT_THAT(temperatures.rows, ElementsAreArray(rows));

    expected::Section fans = section(shown, fanTag);
    std::erase_if(fans.rows, [](const std::string &row) {
        // Statistics have a digit behind the point.
        return row == "-" || row == "Show Graph" || row.find('.') != std::string::npos;
    });
    EXPECT_EQ(fans.title, GetParam().fanSection.title);
    EXPECT_THAT(fans.rows, ElementsAreArray(GetParam().fanSection.rows));

    const expected::Section battery = section(shown, batteryTag);
    EXPECT_EQ(battery.title, GetParam().batterySection.title);
    EXPECT_THAT(battery.rows, ElementsAreArray(GetParam().batterySection.rows));
}

TEST_P(RecordedSensors, SeveralSamplesSayTheSame)
{
    settle();
    const QVariantMap first = m_monitor.topDict();
    for (int count = 0; count < 9; ++count) {
        sample();
        for (const char *key : {"CPUTemparatures", "FanMove", "BatteryStats"})
            EXPECT_EQ(dictionary(key), first.value(QLatin1String(key)).toMap()) << key;
    }
}

/// Where there is one, the machine's plug.
class RecordedPlug : public RecordedSensors
{
protected:
    RecordedPlug()
    {
        for (const int trigger : {1, 2})
            m_monitor.setObserveArray(
                m_monitor.observeArray() +
                QVariantList{QVariantMap{{QStringLiteral("type"), 12},
                                         {QStringLiteral("batteryTriggerEventType"), trigger}}});
        QObject::connect(
            &m_monitor, &TopMonitor::hardwareEvent, &m_monitor, [this](const QVariantMap &entry) {
                m_fired.push_back(intValueForKey(entry, QStringLiteral("batteryTriggerEventType")));
            });
    }

    std::vector<int> firedWith(bool online)
    {
        m_fired.clear();
        const std::string folder = "sys/class/power_supply/";
        for (const char *supply : {"AC", "ADP1"}) {
            if (std::filesystem::exists(m_machine.path(folder + supply)))
                m_machine.write(folder + supply + "/online", online ? "1\n" : "0\n");
        }
        sample();
        return m_fired;
    }

    std::vector<int> m_fired;
};

TEST_P(RecordedPlug, IsNoticedAtTheNextSample)
{
    using Fired = std::vector<int>;
    const bool hasBattery = GetParam().battery.has_value();
    const Fired plugged = hasBattery ? Fired{1} : Fired();
    const Fired unplugged = hasBattery ? Fired{2} : Fired();
    EXPECT_EQ(firedWith(false), Fired());
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(firedWith(true), plugged);
        EXPECT_EQ(firedWith(true), Fired());
        EXPECT_EQ(firedWith(false), unplugged);
    }
}

std::string nameOfCase(const testing::TestParamInfo<expected::Machine> &machine)
{
    return caseNameOf(machine.param.name);
}

INSTANTIATE_TEST_SUITE_P(Kinds, RecordedSensors, testing::ValuesIn(expected::machines()),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(Kinds, RecordedPlug, testing::ValuesIn(expected::machines()), nameOfCase);

} // namespace
} // namespace pulsebar
