#include "engine/HardwareEvents.h"
#include "support/QtPrinting.h"

namespace pulsebar {
namespace {

const QString Type = QStringLiteral("type");
const QString ObserveType = QStringLiteral("observeType");
const QString Threshold = QStringLiteral("threshold");

QVariantMap rising(int type, const QVariant &threshold)
{
    return {{Type, type}, {ObserveType, 0}, {Threshold, threshold}};
}

QVariantMap falling(int type, const QVariant &threshold)
{
    return {{Type, type}, {ObserveType, 1}, {Threshold, threshold}};
}

QVariantMap with(QVariantMap entry, const char16_t *key, const QVariant &value)
{
    entry.insert(QString::fromUtf16(key), value);
    return entry;
}

QVariantMap batterySample(float percent, bool connected)
{
    return {{QStringLiteral("BatteryStats"),
             QVariantMap{{QStringLiteral("BatteryRemainPercent"), percent},
                         {QStringLiteral("IsConnected"), connected}}}};
}

QVariantMap average(const char16_t *key, double value)
{
    return {{QString::fromUtf16(key), QVariantMap{{QStringLiteral("AverageValue"), value}}}};
}

class HardwareEventsTest : public ::testing::Test
{
protected:
    /// Whether exactly these entries fired since the last call.
    QVariantList fired() { return std::exchange(m_fired, {}); }
    QVariantList battery(const QVariantMap &entry, float percent, bool connected = false)
    {
        m_events.checkBattery({entry}, batterySample(percent, connected));
        return fired();
    }
    QVariantList cpu(const QVariantMap &entry, double load)
    {
        m_events.checkCPU({entry}, average(u"CPUUsageMinuteStats", load));
        return fired();
    }
    QVariantList m_fired;
    HardwareEvents m_events{[this](const QVariantMap &entry) { m_fired.append(entry); }};
    const QVariantList m_nothing = {};
};

TEST_F(HardwareEventsTest, ARisingBatteryDoesNotFireRightAfterStartButDoesLater)
{
    const QVariantMap entry = rising(12, 20);
    EXPECT_EQ(battery(entry, 20), m_nothing);
    EXPECT_EQ(battery(entry, 19), m_nothing);
    EXPECT_EQ(battery(entry, 20), (QVariantList{entry}));
    EXPECT_EQ(battery(entry, 25), m_nothing);
}

TEST_F(HardwareEventsTest, AFallingBatteryFiresOnceItIsAtTheThreshold)
{
    const QVariantMap entry = falling(12, 20.0);
    EXPECT_EQ(battery(entry, 10), m_nothing);
    EXPECT_EQ(battery(entry, 30), m_nothing);
    EXPECT_EQ(battery(entry, 20), (QVariantList{entry}));
    EXPECT_EQ(battery(entry, 19), m_nothing);
}

TEST_F(HardwareEventsTest, TheCableFiresOnceAndNeverOnTheFirstSample)
{
    const QVariantMap plugged = with(rising(12, 0), u"batteryTriggerEventType", 1);
    const QVariantMap unplugged = with(rising(12, 0), u"batteryTriggerEventType", 2);
    const auto sample = [&](bool connected) {
        m_events.checkBattery({plugged, unplugged}, batterySample(50, connected));
        return fired();
    };
    EXPECT_EQ(sample(true), m_nothing);
    EXPECT_EQ(sample(false), (QVariantList{unplugged}));
    EXPECT_EQ(sample(false), m_nothing);
    EXPECT_EQ(sample(true), (QVariantList{plugged}));
    EXPECT_EQ(sample(true), m_nothing);
}

TEST_F(HardwareEventsTest, AnUnknownBatteryTriggerNeverFires)
{
    const QVariantMap entry = with(falling(12, 50), u"batteryTriggerEventType", 3);
    battery(entry, 90, true);
    EXPECT_EQ(battery(entry, 10, false), m_nothing);
}

TEST_F(HardwareEventsTest, ACpuLoadFiresAtThePercentItsAverageReaches)
{
    const QVariantMap entry = rising(10, 50);
    EXPECT_EQ(cpu(entry, 0.45), m_nothing);
    EXPECT_EQ(cpu(entry, 0.5), (QVariantList{entry}));
    EXPECT_EQ(cpu(entry, 0.55), m_nothing);
    EXPECT_EQ(cpu(entry, 0.49), m_nothing);
    EXPECT_EQ(cpu(entry, 0.9), (QVariantList{entry}));
}

TEST_F(HardwareEventsTest, AFallingCpuLoad)
{
    const QVariantMap entry = falling(10, 50);
    EXPECT_EQ(cpu(entry, 0.45), m_nothing);
    EXPECT_EQ(cpu(entry, 0.6), m_nothing);
    EXPECT_EQ(cpu(entry, 0.5), (QVariantList{entry}));
    EXPECT_EQ(cpu(entry, 0.4), m_nothing);
}

TEST_F(HardwareEventsTest, NetworkDirectionsAreWatchedApart)
{
    const QVariantMap out = with(rising(11, 1000), u"networkTriggerDataType", 0);
    const QVariantMap in = with(rising(11, 1000), u"networkTriggerDataType", 1);
    const auto sample = [&](double inBytes, double outBytes) {
        QVariantMap dict = average(u"NetworkInMinuteStats", inBytes);
        dict.insert(average(u"NetworkOutMinuteStats", outBytes));
        m_events.checkNetwork({out, in}, dict);
        return fired();
    };
    EXPECT_EQ(sample(999.9, 0), m_nothing);
    EXPECT_EQ(sample(1000.5, 999), (QVariantList{in}));
    EXPECT_EQ(sample(5000, 1000), (QVariantList{out}));
    EXPECT_EQ(sample(5000, 1000), m_nothing);
}

TEST_F(HardwareEventsTest, AFallingNetworkRateWithoutRecordsReadsAsZero)
{
    const QVariantMap entry = with(falling(11, 10), u"networkTriggerDataType", 1);
    m_events.checkNetwork({entry}, average(u"NetworkInMinuteStats", 100));
    m_events.checkNetwork({entry}, {});
    EXPECT_EQ(fired(), (QVariantList{entry}));
}

QVariantMap record(const QVariant &current, const QVariant &last)
{
    return {{QStringLiteral("CurrentValue"), current}, {QStringLiteral("LastValue"), last}};
}

TEST_F(HardwareEventsTest, ATemperatureFiresFromItsOwnRecord)
{
    const QVariantMap up = with(rising(17, 80), u"temperaturePart", QStringLiteral("CPU Die"));
    const QVariantMap down = with(falling(17, 80), u"temperaturePart", QStringLiteral("GPU"));
    const QVariantMap unknown = with(rising(17, 80), u"temperaturePart", QStringLiteral("Nose"));
    const auto sample = [&](const QVariantMap &cpuDie, const QVariantMap &gpu) {
        m_events.checkTemperatures(
            {up, down, unknown},
            {{QStringLiteral("CPUTemparaturesMinutesStats"),
              QVariantMap{{QStringLiteral("CPU Die"), cpuDie}, {QStringLiteral("GPU"), gpu}}}});
        return fired();
    };
    EXPECT_EQ(sample(record(80.0, 79.0), record(81.0, 90.0)), (QVariantList{up}));
    EXPECT_EQ(sample(record(85.0, 80.0), record(80.0, 81.0)), (QVariantList{down}));
    // The first sample of a series has no last value.
    EXPECT_EQ(sample({{QStringLiteral("CurrentValue"), 99.0}}, {}), m_nothing);
}

TEST_F(HardwareEventsTest, FansFireFromTheirAverage)
{
    const QVariantMap entry = rising(18, 2000);
    const auto sample = [&](const QVariantList &records) {
        m_events.checkFans({entry}, {{QStringLiteral("FanMoveMinutesStats"), records}});
        return fired();
    };
    EXPECT_EQ(sample({record(3000.0F, 1000.0F), record(1900.0F, 1000.0F)}), m_nothing);
    EXPECT_EQ(sample({record(100.0F, 100.0F), record(2000.0F, 1900.0F)}), (QVariantList{entry}));
    EXPECT_EQ(sample({}), m_nothing);
}

TEST_F(HardwareEventsTest, AProcessFiresFromItsRecordedAverages)
{
    const QVariantMap entry = with(rising(15, 50), u"processName", QStringLiteral("Safari"));
    const auto sample = [&](double last, double now) {
        m_events.checkProcesses({entry}, [&](const QString &process) {
            EXPECT_EQ(process, QStringLiteral("Safari"));
            return QVariantMap{{QStringLiteral("AverageValue"), now},
                               {QStringLiteral("lastAverage"), static_cast<float>(last)}};
        });
        return fired();
    };
    EXPECT_EQ(sample(0.4, 0.5), (QVariantList{entry}));
    EXPECT_EQ(sample(0.5, 0.6), m_nothing);
    EXPECT_EQ(sample(0.6, 0.4), m_nothing);
}

TEST_F(HardwareEventsTest, EntriesFireInTheirOrderUnchanged)
{
    const QVariantMap first = with(rising(10, 10), u"note", QStringLiteral("mine"));
    const QVariantMap second = rising(10, 20);
    m_events.checkCPU({second, rising(99, 0), first, QVariant(7)},
                      average(u"CPUUsageMinuteStats", 0.9));
    EXPECT_EQ(fired(), (QVariantList{second, first}));
}

TEST_F(HardwareEventsTest, AnObserverMayReplaceTheEntriesItIsToldAbout)
{
    const auto told = [] { return QVariantList{rising(10, 10), rising(10, 20), rising(10, 30)}; };
    QVariantList entries = told(); // nobody else holds them
    QVariantList heard;
    HardwareEvents events([&](const QVariantMap &entry) {
        heard.append(entry);
        for (QVariant &element : entries)
            element = rising(10, 99);
    });
    events.checkCPU(entries, average(u"CPUUsageMinuteStats", 0.5));
    EXPECT_EQ(heard, told());
}

TEST_F(HardwareEventsTest, AMissingThresholdIsZero)
{
    const QVariantMap entry{{Type, 10}, {ObserveType, 1}};
    EXPECT_EQ(cpu(entry, 0.5), m_nothing);
    EXPECT_EQ(cpu(entry, 0.0), (QVariantList{entry}));
}

TEST_F(HardwareEventsTest, EntriesMayBeTextsAsFromASettingsFile)
{
    const QVariantMap entry{{Type, QStringLiteral("10")},
                            {ObserveType, QStringLiteral("0")},
                            {Threshold, QStringLiteral("50.0")}};
    EXPECT_EQ(cpu(entry, 0.75), (QVariantList{entry}));
}

} // namespace
} // namespace pulsebar
