#include "controller/AlertWatch.h"
#include "controller/Alerts.h"
#include "controller/Settings.h"
#include "engine/HardwareEvents.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace pulsebar {
namespace {

AlertRule cpuRule(double threshold, int duration = 0, bool rising = true)
{
    AlertRule rule;
    rule.threshold = threshold;
    rule.duration = duration;
    rule.rising = rising;
    return rule;
}

AlertRule ruleOf(AlertSubject subject, bool rising, double threshold, const char *part = "")
{
    AlertRule rule;
    rule.subject = subject;
    rule.rising = rising;
    rule.threshold = threshold;
    rule.part = s(part);
    return rule;
}

QVariantMap cpuSample(double load)
{
    return {{s("CPUUsageCoreAverage"), load},
            {s("CPUUsageMinuteStats"), QVariantMap{{s("AverageValue"), load}}}};
}

/// Feeds samples to the monitor's rules and to the watch, as a running program does.
class AlertWatchTest : public testing::Test
{
protected:
    AlertWatchTest()
    {
        QObject::connect(&watch, &AlertWatch::alarmTold, &watch, [this](const Alarm &alarm) {
            alarms += alarm;
            story += s("told ") + alarm.id;
        });
        QObject::connect(&watch, &AlertWatch::alarmEnded, &watch,
                         [this](const QString &id) { story += s("ended ") + id; });
    }

    void sample(const QVariantMap &dict, qint64 seconds)
    {
        const QVariantList observed = alerts.observedEntries();
        if (dict.contains(s("BatteryStats")))
            events.checkBattery(observed, dict);
        if (dict.contains(s("CPUTemparaturesMinutesStats")))
            events.checkTemperatures(observed, dict);
        if (dict.contains(s("FanMoveMinutesStats")))
            events.checkFans(observed, dict);
        if (dict.contains(s("CPUUsageMinuteStats")))
            events.checkCPU(observed, dict);
        if (dict.contains(s("NetStatistics")))
            events.checkNetwork(observed, dict);
        events.checkProcesses(observed, recordOf);
        history.add(dict, seconds * 1000, ++loads);
        watch.sampleTaken(dict, seconds * 1000);
    }
    void cpu(double load, qint64 seconds) { sample(cpuSample(load), seconds); }
    QStringList heard() { return std::exchange(story, {}); }
    static QStringList told(const QString &id) { return {s("told ") + id}; }
    static QStringList ended(const QString &id) { return {s("ended ") + id}; }
    const QStringList nothing;

    quint64 loads = 0;
    QTemporaryDir folder;
    Settings settings{folder.filePath(s("Pulsebar.conf"))};
    Alerts alerts{settings};
    CulpritHistory history;
    QVariantMap record;
    AlertWatch::ProcessRecord recordOf = [this](const QString &) { return record; };
    QString recordedKey;
    AlertWatch watch{alerts, history, recordOf, [this](const QString &) { return recordedKey; }};
    HardwareEvents events{[this](const QVariantMap &entry) { watch.hardwareEvent(entry); }};
    QStringList story;
    QVector<Alarm> alarms;
};

TEST_F(AlertWatchTest, WithoutADurationItIsToldWithTheSampleOfTheEvent)
{
    const QString id = alerts.add(cpuRule(50));
    cpu(0.45, 0);
    EXPECT_EQ(heard(), nothing);
    cpu(0.5, 3);
    EXPECT_EQ(heard(), told(id));
    EXPECT_TRUE(watch.isAlarming());
    EXPECT_EQ(alarms.value(0).heldFor, 0);
    EXPECT_EQ(alarms.value(0).value, 50.0);
    EXPECT_EQ(alarms.value(0).entry, alerts.find(id)->entry);
    cpu(0.9, 6);
    EXPECT_EQ(heard(), nothing);
    cpu(0.4, 9);
    EXPECT_EQ(heard(), ended(id));
    EXPECT_FALSE(watch.isAlarming());
    cpu(0.3, 12);
    EXPECT_EQ(heard(), nothing);
}

TEST_F(AlertWatchTest, TheConditionMustHoldOnEverySampleOfTheDuration)
{
    const QString id = alerts.add(cpuRule(90, 20));
    cpu(0.5, 0);
    for (qint64 second = 3; second <= 21; second += 3)
        cpu(0.95, second);
    EXPECT_EQ(heard(), nothing); // 18 seconds
    cpu(0.8, 24);
    cpu(0.95, 27);
    cpu(0.95, 46);
    EXPECT_EQ(heard(), nothing); // 19 seconds since it began anew
    cpu(0.95, 47);
    EXPECT_EQ(heard(), told(id));
    EXPECT_EQ(alarms.value(0).heldFor, 20'000);
}

TEST_F(AlertWatchTest, ItIsToldOnceUntilItHasEnded)
{
    const QString id = alerts.add(cpuRule(90));
    cpu(0.5, 0);
    for (qint64 second = 1; second <= 1000; ++second)
        cpu(0.95, second);
    EXPECT_EQ(heard(), told(id));
    cpu(0.5, 1001);
    cpu(0.95, 1002);
    EXPECT_EQ(heard(), ended(id) + told(id));
}

TEST_F(AlertWatchTest, AValueThatDancesIsToldOnceAMinute)
{
    alerts.add(cpuRule(50));
    for (qint64 second = 0; second < 600; ++second)
        cpu(second % 2 == 0 ? 0.49 : 0.51, second);
    EXPECT_EQ(alarms.size(), 10);
    EXPECT_EQ(story.size(), 20); // each of them ended
}

TEST_F(AlertWatchTest, WhatBeginsTooSoonWaitsForTheMinuteWhileItHolds)
{
    const QString id = alerts.add(cpuRule(50));
    cpu(0.4, 0);
    cpu(0.6, 1);
    cpu(0.4, 2);
    cpu(0.6, 3);
    cpu(0.6, 60);
    EXPECT_EQ(heard(), told(id) + ended(id));
    cpu(0.6, 61);
    EXPECT_EQ(heard(), told(id));
    EXPECT_EQ(alarms[1].heldFor, 58'000);
}

TEST_F(AlertWatchTest, WhatHoldsAlreadyWhenItIsMadeIsNoEvent)
{
    cpu(0.9, 0);
    const QString id = alerts.add(cpuRule(50));
    cpu(0.9, 3);
    EXPECT_EQ(heard(), nothing);
    cpu(0.4, 6);
    cpu(0.9, 9);
    EXPECT_EQ(heard(), told(id));
}

TEST_F(AlertWatchTest, OneEventBeginsEveryAlertOfItsCondition)
{
    const QString atOnce = alerts.add(cpuRule(50));
    const QString later = alerts.add(cpuRule(50, 10));
    const QString off = alerts.add(cpuRule(50));
    alerts.setEnabled(off, false);
    const QString other = alerts.add(cpuRule(60));
    cpu(0.4, 0);
    cpu(0.55, 3);
    EXPECT_EQ(heard(), told(atOnce));
    cpu(0.7, 13);
    EXPECT_EQ(heard(), told(later) + told(other));
}

TEST_F(AlertWatchTest, RemovedSwitchedOffAndChangedAlertsEnd)
{
    const QString removed = alerts.add(cpuRule(50));
    const QString off = alerts.add(cpuRule(50));
    const QString changed = alerts.add(cpuRule(50));
    const QString renamed = alerts.add(cpuRule(50));
    cpu(0.4, 0);
    cpu(0.6, 3);
    heard();
    alerts.remove(removed);
    EXPECT_EQ(heard(), ended(removed));
    alerts.setEnabled(off, false);
    EXPECT_EQ(heard(), ended(off));
    alerts.change(changed, cpuRule(55));
    EXPECT_EQ(heard(), ended(changed));
    AlertRule rule = cpuRule(50, 7);
    rule.name = s("x");
    alerts.change(renamed, rule);
    EXPECT_EQ(heard(), nothing);
    EXPECT_TRUE(watch.isAlarming());
    cpu(0.4, 6);
    EXPECT_EQ(heard(), ended(renamed));
}

TEST_F(AlertWatchTest, ADurationThatIsChangedMeanwhileCounts)
{
    const QString id = alerts.add(cpuRule(50, 10));
    cpu(0.4, 0);
    cpu(0.6, 3);
    alerts.change(id, cpuRule(50, 20));
    cpu(0.6, 13);
    EXPECT_EQ(heard(), nothing);
    cpu(0.6, 23);
    EXPECT_EQ(heard(), told(id));
}

TEST_F(AlertWatchTest, SwitchingAnAlertOffAndOnIsNoWayAroundTheMinute)
{
    const QString id = alerts.add(cpuRule(50));
    cpu(0.4, 0);
    cpu(0.6, 1);
    alerts.setEnabled(id, false);
    alerts.setEnabled(id, true);
    cpu(0.4, 2);
    cpu(0.6, 3);
    EXPECT_EQ(heard(), told(id) + ended(id));
}

TEST_F(AlertWatchTest, AListenerMayChangeTheList)
{
    const QString first = alerts.add(cpuRule(50));
    const QString second = alerts.add(cpuRule(50));
    QObject::connect(&watch, &AlertWatch::alarmTold, &watch,
                     [&](const Alarm &) { alerts.setObserveArray({}); });
    cpu(0.4, 0);
    cpu(0.6, 3);
    // What is gone is not told any more.
    EXPECT_EQ(alarms.size(), 1);
    EXPECT_EQ(alarms.value(0).id, first);
    EXPECT_TRUE(heard().contains(s("ended ") + second));
    EXPECT_FALSE(watch.isAlarming());
}

QVariantMap temperatureSample(std::optional<double> now, double last)
{
    QVariantMap record{{s("LastValue"), last}};
    if (now)
        record.insert(s("CurrentValue"), *now);
    return {{s("CPUTemparaturesMinutesStats"), QVariantMap{{s("CPU Die"), record}}}};
}

TEST_F(AlertWatchTest, ASampleWithoutTheFigureCountsForNothing)
{
    const QString id = alerts.add([] {
        AlertRule rule = ruleOf(AlertSubject::Temperature, true, 80, "CPU Die");
        rule.duration = 10;
        return rule;
    }());
    sample(temperatureSample(81, 70), 0);
    sample(temperatureSample(std::nullopt, 81), 5);
    sample({}, 10);
    EXPECT_EQ(heard(), nothing);
    sample(temperatureSample(82, 81), 12);
    EXPECT_EQ(heard(), told(id));
    EXPECT_EQ(alarms.value(0).value, 82.0);
    sample({}, 72);
    EXPECT_EQ(heard(), nothing);
    sample({}, 73); // unseen for more than a minute
    EXPECT_EQ(heard(), ended(id));
}

TEST_F(AlertWatchTest, TheCableIsToldAndWithdrawn)
{
    const QString in = alerts.add(ruleOf(AlertSubject::CablePluggedIn, true, 0));
    const QString out = alerts.add(ruleOf(AlertSubject::CableUnplugged, true, 0));
    const auto battery = [&](bool connected, qint64 seconds) {
        sample({{s("BatteryStats"),
                 QVariantMap{{s("BatteryRemainPercent"), 50.0F}, {s("IsConnected"), connected}}}},
               seconds);
    };
    battery(true, 0);
    EXPECT_EQ(heard(), nothing);
    battery(false, 3);
    EXPECT_EQ(heard(), told(out));
    battery(false, 6);
    EXPECT_EQ(heard(), nothing);
    battery(true, 9);
    EXPECT_EQ(heard(), ended(out) + told(in));
}

TEST_F(AlertWatchTest, ABatteryThatRunsDownAndOneThatIsGone)
{
    const QString id = alerts.add(ruleOf(AlertSubject::BatteryPercent, false, 20));
    const auto battery = [&](const QVariantMap &status, qint64 seconds) {
        sample({{s("BatteryStats"), status}}, seconds);
    };
    battery({{s("BatteryRemainPercent"), 50.0F}}, 0);
    battery({}, 3); // taken out: no charge to speak of
    EXPECT_EQ(heard(), nothing);
    battery({{s("BatteryRemainPercent"), 50.0F}}, 6);
    battery({{s("BatteryRemainPercent"), 19.5F}}, 9);
    EXPECT_EQ(heard(), told(id));
    EXPECT_EQ(alarms.value(0).value, 19.5);
}

TEST_F(AlertWatchTest, NetworkFansAndAProcess)
{
    const QString in = alerts.add(ruleOf(AlertSubject::NetworkIn, true, 1000));
    const QString out = alerts.add(ruleOf(AlertSubject::NetworkOut, true, 1000));
    const QString fans = alerts.add(ruleOf(AlertSubject::Fans, true, 2000));
    const QString process = alerts.add(ruleOf(AlertSubject::ProcessShare, true, 50, "hog"));
    const auto all = [&](double rateIn, double rateOut, float rpm, qint64 seconds) {
        const auto average = [](double rate) { return QVariantMap{{s("AverageValue"), rate}}; };
        sample({{s("NetStatistics"), QVariantMap()},
                {s("NetworkInMinuteStats"), average(rateIn)},
                {s("NetworkOutMinuteStats"), average(rateOut)},
                {s("FanMoveMinutesStats"),
                 QVariantList{QVariantMap{{s("CurrentValue"), rpm}, {s("LastValue"), 1900.0F}}}}},
               seconds);
    };
    all(999.9, 5, 1900, 0);
    EXPECT_EQ(heard(), nothing);
    all(1000.7, 5, 1900, 3);
    EXPECT_EQ(heard(), told(in));
    EXPECT_EQ(alarms.last().value, 1000.0);
    all(1000.7, 2000, 1900, 6);
    EXPECT_EQ(heard(), told(out));
    all(1000.7, 2000, 2100, 9);
    EXPECT_EQ(heard(), told(fans));
    EXPECT_EQ(alarms.last().value, 2100.0);
    record = {{s("AverageValue"), 0.5}, {s("lastAverage"), 0.4F}};
    all(1000.7, 2000, 2100, 12);
    EXPECT_EQ(heard(), told(process));
    EXPECT_EQ(alarms.last().value, 50.0);
    record = {}; // it has ended and is forgotten
    all(5, 5, 100, 15);
    EXPECT_EQ(heard(), ended(in) + ended(out) + ended(fans) + ended(process));
}

QVariantMap blaming(double load, const char *name, int pid, const char *usage)
{
    QVariantMap dict = cpuSample(load);
    dict.insert(s("ProcessList"), QVariantList{QVariantMap{{s("ProcessName"), s(name)},
                                                           {s("PID"), QString::number(pid)},
                                                           {s("CPUUsage"), s(usage)}}});
    return dict;
}

TEST_F(AlertWatchTest, TheCulpritIsWhoUsedMostSinceTheEvent)
{
    alerts.add(cpuRule(90, 6));
    sample(blaming(0.5, "before", 11, "4.0"), 0);
    sample(blaming(0.95, "hog", 12, "0.9"), 3);
    sample(blaming(0.95, "brief", 13, "1.0"), 6);
    sample(blaming(0.95, "hog", 12, "0.9"), 9);
    ASSERT_EQ(alarms.size(), 1);
    ASSERT_TRUE(alarms.value(0).culprit);
    EXPECT_EQ(alarms.value(0).culprit->name, s("hog"));
    EXPECT_EQ(alarms.value(0).culprit->number, 12);
    EXPECT_NEAR(alarms.value(0).culprit->fraction, 0.6, 1e-9);
}

TEST_F(AlertWatchTest, AtOnceTheCulpritIsThatOfTheMinute)
{
    alerts.add(cpuRule(90));
    sample(blaming(0.1, "long ago", 10, "9.0"), 0);
    sample(blaming(0.5, "hog", 11, "0.9"), 61);
    sample(blaming(0.5, "hog", 11, "0.9"), 64);
    sample(blaming(0.95, "brief", 12, "1.0"), 67);
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_EQ(alarms.value(0).culprit->name, s("hog"));
    EXPECT_EQ(alarms.value(0).culprit->number, 0); // it is not there now
}

TEST_F(AlertWatchTest, NobodyIsToBlameForALoadThatFell)
{
    alerts.add(cpuRule(50, 0, false));
    sample(blaming(0.9, "hog", 11, "0.9"), 0);
    sample(blaming(0.4, "hog", 11, "0.2"), 3);
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_FALSE(alarms.value(0).culprit);
}

/// Two processes called "hog", 11 the busier one in this very sample.
QVariantMap twoHogs()
{
    QVariantMap dict = blaming(0.9, "hog", 11, "0.9");
    QVariantList processes = dict.value(s("ProcessList")).toList();
    processes += blaming(0.9, "hog", 12, "0.2").value(s("ProcessList")).toList();
    processes += blaming(0.9, "12//hog", 13, "0.95").value(s("ProcessList")).toList();
    dict.insert(s("ProcessList"), processes);
    return dict;
}

TEST_F(AlertWatchTest, AProcessIsTheOneWhoseRecordCrossed)
{
    for (const char *process : {"hog", "12//hog"})
        alerts.add(ruleOf(AlertSubject::ProcessShare, true, 50, process));
    record = {{s("AverageValue"), 0.6}, {s("lastAverage"), 0.4F}};
    recordedKey = s("12//hog");
    sample(twoHogs(), 3);
    ASSERT_EQ(alarms.size(), 2);
    for (const Alarm &alarm : std::as_const(alarms)) {
        EXPECT_EQ(alarm.culprit->number, 12);
        EXPECT_EQ(alarm.culprit->name, s("hog"));
        EXPECT_EQ(alarm.culprit->fraction, 0.2);
    }
}

TEST_F(AlertWatchTest, AProcessThatIsNotListedHasNoNumber)
{
    alerts.add(ruleOf(AlertSubject::ProcessShare, true, 50, "hog"));
    record = {{s("AverageValue"), 0.6}, {s("lastAverage"), 0.4F}};
    recordedKey = s("14//hog"); // ended in this sample; others of its name run on
    sample(twoHogs(), 3);
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_EQ(alarms[0].culprit->name, s("hog"));
    EXPECT_EQ(alarms[0].culprit->number, 0);
}

TEST_F(AlertWatchTest, SamplesMayBeAMinuteApart)
{
    const QString atOnce = alerts.add(cpuRule(50));
    const QString later = alerts.add(cpuRule(50, 100));
    const auto late = [this](double load, qint64 milliseconds) {
        const QVariantMap dict = cpuSample(load);
        events.checkCPU(alerts.observedEntries(), dict);
        watch.sampleTaken(dict, milliseconds);
    };
    late(0.4, 0);
    late(0.6, 60'020);
    EXPECT_EQ(heard(), told(atOnce));
    late(0.6, 120'050);
    EXPECT_EQ(heard(), nothing);
    late(0.6, 180'090);
    EXPECT_EQ(heard(), told(later));
    late(0.4, 240'110);
    EXPECT_EQ(heard(), ended(atOnce) + ended(later));
}

TEST_F(AlertWatchTest, AnotherScaleOfTemperaturesEndsAndBeginsNothing)
{
    const QString id = alerts.add(ruleOf(AlertSubject::Temperature, true, 80, "CPU Die"));
    const QString cool = alerts.add(ruleOf(AlertSubject::Temperature, true, 90, "CPU Die"));
    sample(temperatureSample(85, 70), 0);
    EXPECT_EQ(heard(), told(id));
    watch.changeScale(true);
    alerts.changeScale(true);
    sample(temperatureSample(210.6, 85), 3); // 85 degrees Celsius, the last one in the old scale
    sample(temperatureSample(210.6, 210.6), 120);
    EXPECT_EQ(heard(), nothing);
    EXPECT_TRUE(watch.isAlarming());
    watch.changeScale(false);
    alerts.changeScale(false);
    sample(temperatureSample(85, 210.6), 123);
    EXPECT_EQ(heard(), nothing);
    sample(temperatureSample(79, 85), 126);
    EXPECT_EQ(heard(), ended(id));
    EXPECT_EQ(alerts.find(cool)->rule.threshold, 90);
}

/// Whatever the monitor fires holds in that sample: both compare alike, to the last bit.
TEST_F(AlertWatchTest, WhatFiresHolds)
{
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same walk every time
    int fired = 0;
    QVariantMap dict;
    HardwareEvents rules([&](const QVariantMap &entry) {
        ++fired;
        EXPECT_EQ(alertHolds(*alertRuleFromEntry(entry), dict, recordOf), true)
            << entry.value(s("threshold")).toString().toStdString();
    });
    QVariantList entries;
    for (int percent = 0; percent <= 100; ++percent) {
        for (const bool rising : {true, false}) {
            entries += entryWithAlertRule(cpuRule(percent + (percent % 3) / 3.0, 0, rising));
            entries += entryWithAlertRule(ruleOf(AlertSubject::NetworkIn, rising, percent / 7.0));
            entries += entryWithAlertRule(ruleOf(AlertSubject::BatteryPercent, rising, percent));
            entries += entryWithAlertRule(ruleOf(AlertSubject::ProcessShare, rising, percent, "x"));
        }
    }
    float last = 0;
    for (int i = 0; i < 400; ++i) {
        const double percent = static_cast<double>(random() % 101);
        dict = {{s("CPUUsageMinuteStats"), QVariantMap{{s("AverageValue"), percent / 100.0}}},
                {s("NetStatistics"), QVariantMap()},
                {s("NetworkInMinuteStats"), QVariantMap{{s("AverageValue"), percent / 7.0}}},
                {s("BatteryStats"),
                 QVariantMap{{s("BatteryRemainPercent"), static_cast<float>(percent)}}}};
        record = {{s("AverageValue"), percent / 100.0}, {s("lastAverage"), last}};
        last = static_cast<float>(percent / 100.0);
        rules.checkBattery(entries, dict);
        rules.checkCPU(entries, dict);
        rules.checkNetwork(entries, dict);
        rules.checkProcesses(entries, recordOf);
    }
    EXPECT_GT(fired, 1000);
}

} // namespace
} // namespace pulsebar
