#include "FakeNotifications.h"
#include "FakeProcesses.h"
#include "FakeStatusItem.h"
#include "controller/AlarmText.h"
#include "controller/AlertTeller.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

const QString kId = QStringLiteral("alert-1");

/// "CPU above 90% for 20 seconds", told after 21 seconds.
Alarm busyAlarm()
{
    Alarm alarm;
    alarm.id = kId;
    alarm.rule.threshold = 90;
    alarm.rule.duration = 20;
    alarm.value = 95.25;
    alarm.heldFor = 21'100;
    alarm.culprit = Culprit{s("cc1plus"), 412, 1.876};
    return alarm;
}

TEST(AlarmText, NamesTheValueTheThresholdHowLongAndWho)
{
    const Notification told = alarmNotification(busyAlarm(), false);
    EXPECT_EQ(told.summary, s("CPU above 90% for 20 seconds"));
    EXPECT_EQ(told.body,
              s("95.2% now, above 90% for 21 seconds. Busiest process: cc1plus (187.6%)"));
    EXPECT_TRUE(told.actions.isEmpty());
}

TEST(AlarmText, ANamedAlertSaysBelowWhatItWatches)
{
    Alarm alarm = busyAlarm();
    alarm.rule.name = s("Build is stuck");
    const Notification told = alarmNotification(alarm, false);
    EXPECT_EQ(told.summary, s("Build is stuck"));
    EXPECT_TRUE(told.body.startsWith(s("CPU: 95.2% now, above 90%"))) << told.body.toStdString();
}

TEST(AlarmText, AtOnceThereIsNoTimeToTell)
{
    Alarm alarm = busyAlarm();
    alarm.rule.duration = 0;
    alarm.heldFor = 0;
    alarm.culprit.reset();
    EXPECT_EQ(alarmNotification(alarm, false).body, s("95.2% now, above 90%"));
}

TEST(AlarmText, ALongTimeIsToldRoughly)
{
    const auto told = [](qint64 seconds) {
        Alarm alarm = busyAlarm();
        alarm.heldFor = seconds * 1000;
        alarm.culprit.reset();
        return alarmNotification(alarm, false).body.mid(s("95.2% now, above 90% ").size());
    };
    EXPECT_EQ(told(61), s("for 61 seconds"));
    EXPECT_EQ(told(119), s("for 119 seconds"));
    EXPECT_EQ(told(122), s("for 2 minutes"));
    EXPECT_EQ(told(3602), s("for 1 hour"));
    EXPECT_EQ(told(3700), s("for 61 minutes"));
    EXPECT_EQ(told(7301), s("for 2 hours"));
}

TEST(AlarmText, AFallingOneIsBelow)
{
    Alarm alarm;
    alarm.rule.subject = AlertSubject::BatteryPercent;
    alarm.rule.rising = false;
    alarm.rule.threshold = 20;
    alarm.value = 19.5;
    alarm.culprit = Culprit{s("Web Content"), 7, 0.5};
    EXPECT_EQ(alarmNotification(alarm, false).body,
              s("19.5% now, below 20%. Busiest process: Web Content (50.0%)"));
}

TEST(AlarmText, OneProcesssShareHasNoOtherCulprit)
{
    Alarm alarm = busyAlarm();
    alarm.rule.subject = AlertSubject::ProcessShare;
    alarm.rule.part = s("cc1plus");
    EXPECT_EQ(alarmNotification(alarm, false).body, s("95.2% now, above 90% for 21 seconds"));
}

TEST(AlarmText, ACableHasNoValue)
{
    Alarm alarm;
    alarm.rule.subject = AlertSubject::CableUnplugged;
    const Notification told = alarmNotification(alarm, false);
    EXPECT_EQ(told.summary, s("Power cable unplugged"));
    EXPECT_EQ(told.body, QString());
    alarm.rule.name = s("Who pulled it?");
    EXPECT_EQ(alarmNotification(alarm, false).summary, s("Who pulled it?"));
    EXPECT_EQ(alarmNotification(alarm, false).body, s("Power cable unplugged"));
}

TEST(AlarmText, TemperaturesAreInTheScaleThatIsShown)
{
    Alarm alarm;
    alarm.rule.subject = AlertSubject::Temperature;
    alarm.rule.part = s("CPU Die");
    alarm.rule.threshold = 176;
    alarm.value = 180;
    EXPECT_TRUE(alarmNotification(alarm, true).body.contains(s("180.0\u2109")));
}

TEST(AlertGraph, IsTheSeriesThatIsWatched)
{
    const auto keyOf = [](AlertSubject subject, const char *part = "", qint64 culprit = 0) {
        Alarm alarm;
        alarm.rule.subject = subject;
        alarm.rule.part = s(part);
        alarm.culprit = Culprit{s("its name, cut\u2026"), culprit, 0.5};
        return alertGraphKey(alarm);
    };
    EXPECT_EQ(keyOf(AlertSubject::CpuLoad), s("CPUTotalUsage"));
    EXPECT_EQ(keyOf(AlertSubject::NetworkIn), s("Network__NetworkInMinuteStats"));
    EXPECT_EQ(keyOf(AlertSubject::NetworkOut), s("Network__NetworkOutMinuteStats"));
    EXPECT_EQ(keyOf(AlertSubject::Temperature, "CPU Die"), s("Temperature__CPU Die"));
    EXPECT_EQ(keyOf(AlertSubject::ProcessShare, "412//cc1"), s("CPUUsage__412//cc1"));
    EXPECT_EQ(keyOf(AlertSubject::ProcessShare, "412//cc1", 412), s("CPUUsage__412//cc1"));
    EXPECT_EQ(keyOf(AlertSubject::ProcessShare, "cc1", 412), s("CPUUsage__412//cc1"));
    EXPECT_EQ(keyOf(AlertSubject::ProcessShare, "cc1"), s("CPUUsage__cc1"));
    EXPECT_EQ(keyOf(AlertSubject::Fans), s("FanMove__FanAverage"));
    EXPECT_EQ(keyOf(AlertSubject::BatteryPercent), QString());
    EXPECT_EQ(keyOf(AlertSubject::CableUnplugged), QString());
}

class AlertTellerTest : public testing::Test
{
protected:
    AlertTellerTest() { processes.known.insert(412, culprit); }

    AlertTellerParts parts()
    {
        AlertTellerParts parts;
        parts.notifications = &notifications;
        parts.hold = [this](qint64 number) { return processes.hold(QString::number(number), 0); };
        parts.openMenu = [this] { ++menus; };
        parts.showGraph = [this](const QString &key) {
            graphs += key;
            return graphsThere;
        };
        parts.quit = [](const std::shared_ptr<HeldProcess> &process) { process->askToEnd(); };
        return parts;
    }
    void choose(const char *action)
    {
        notifications.listener->notificationActionChosen(kId, s(action));
    }

    FakeStatusItem item;
    FakeNotifications notifications;
    FakeProcesses processes;
    std::shared_ptr<FakeHeldProcess> culprit = std::make_shared<FakeHeldProcess>(412);
    int menus = 0;
    QStringList graphs;
    bool graphsThere = true;
    std::unique_ptr<AlertTeller> teller = std::make_unique<AlertTeller>(item, parts());
};

TEST_F(AlertTellerTest, TellsByANotificationAndTakesItBack)
{
    teller->tell(busyAlarm());
    EXPECT_EQ(notifications.visible.value(kId).summary, s("CPU above 90% for 20 seconds"));
    EXPECT_EQ(notifications.actions(kId),
              (QStringList{s("default:Show"), s("show:Show"), s("quit:Quit")}));
    EXPECT_FALSE(item.needsAttention);
    teller->end(kId);
    EXPECT_TRUE(notifications.visible.isEmpty());
}

TEST_F(AlertTellerTest, ShowsTheGraphOfWhatIsWatched)
{
    teller->tell(busyAlarm());
    choose("show");
    choose("default");
    EXPECT_EQ(graphs, (QStringList{s("CPUTotalUsage"), s("CPUTotalUsage")}));
    EXPECT_EQ(menus, 0);
}

TEST_F(AlertTellerTest, ShowsTheMenuWhereThereIsNoGraph)
{
    graphsThere = false;
    teller->tell(busyAlarm());
    choose("show");
    EXPECT_EQ(menus, 1);
    Alarm cable = busyAlarm();
    cable.rule.subject = AlertSubject::CableUnplugged;
    graphs.clear();
    teller->tell(cable);
    choose("show");
    EXPECT_TRUE(graphs.isEmpty());
    EXPECT_EQ(menus, 2);
}

TEST_F(AlertTellerTest, QuitsTheProcessThatWasTold)
{
    teller->tell(busyAlarm());
    // Another process has the number by now.
    const auto successor = std::make_shared<FakeHeldProcess>(412);
    processes.known.insert(412, successor);
    choose("quit");
    EXPECT_EQ(culprit->askedToEnd, 1);
    EXPECT_EQ(successor->askedToEnd, 0);
    EXPECT_EQ(menus, 0);
}

TEST_F(AlertTellerTest, OffersToQuitNobodyWhereTheProcessIsNotKnown)
{
    Alarm alarm = busyAlarm();
    alarm.culprit->number = 0;
    teller->tell(alarm);
    EXPECT_FALSE(notifications.actions(kId).contains(s("quit:Quit")));
    alarm.culprit->number = 413; // has ended
    teller->tell(alarm);
    EXPECT_FALSE(notifications.actions(kId).contains(s("quit:Quit")));
    choose("quit");
    alarm.culprit.reset();
    teller->tell(alarm);
    EXPECT_EQ(notifications.actions(kId).size(), 2);
    choose("quit");
    EXPECT_EQ(culprit->askedToEnd, 0);
}

TEST_F(AlertTellerTest, ActionsOfAnAlarmThatHasEndedDoNothing)
{
    teller->tell(busyAlarm());
    teller->end(kId);
    for (const char *action : {"show", "default", "quit"})
        choose(action);
    EXPECT_EQ(culprit->askedToEnd, 0);
    EXPECT_TRUE(graphs.isEmpty());
    EXPECT_EQ(menus, 0);
}

TEST_F(AlertTellerTest, WithoutAServerTheItemDrawsAttentionUntilTheConditionEnds)
{
    teller->tell(busyAlarm());
    Alarm other = busyAlarm();
    other.id = s("alert-2");
    teller->tell(other);
    notifications.listener->notificationNotShown(kId);
    notifications.listener->notificationNotShown(other.id);
    EXPECT_TRUE(item.needsAttention);
    teller->end(kId);
    EXPECT_TRUE(item.needsAttention) << "the other one holds still";
    teller->end(other.id);
    EXPECT_FALSE(item.needsAttention);
}

TEST_F(AlertTellerTest, OpeningTheMenuIsHavingNoticed)
{
    teller->tell(busyAlarm());
    notifications.listener->notificationNotShown(kId);
    Q_EMIT item.menuOpened();
    EXPECT_FALSE(item.needsAttention);
    // The refusal of an alarm that has ended meanwhile is no news.
    teller->end(kId);
    notifications.listener->notificationNotShown(kId);
    EXPECT_FALSE(item.needsAttention);
}

TEST_F(AlertTellerTest, WithoutNotificationsAtAllTheItemIsWhatThereIs)
{
    AlertTeller lonely(item, {});
    lonely.tell(busyAlarm());
    EXPECT_TRUE(item.needsAttention);
    lonely.end(kId);
    EXPECT_FALSE(item.needsAttention);
}

TEST_F(AlertTellerTest, IsNotCalledAfterItsEnd)
{
    teller.reset();
    EXPECT_EQ(notifications.listener, nullptr);
}

} // namespace
} // namespace pulsebar
