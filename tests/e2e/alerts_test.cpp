// What the user is told, from a machine that changes while the program runs.
#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "e2e/SensorMachine.h"
#include "e2e/TickingMachine.h"
#include "support/NotificationServer.h"
#include "support/Text.h"

#include <QDBusArgument>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace pulsebar::e2e {
namespace {

using testing::NotificationServer;
using testing::ShownNotification;

constexpr QLatin1String kControl = RunningProgram::kControl;
constexpr int kPackage = 0; ///< the number of the processor's chip
const QString kInput = QStringLiteral("temp1_input");
const QString kFan = QStringLiteral("fan1_input");

QVariantMap entry(int type, int falling, double threshold)
{
    return {{s("type"), type}, {s("observeType"), falling}, {s("threshold"), threshold}};
}

QVariantMap with(QVariantMap map, const char *key, const QVariant &value)
{
    map.insert(s(key), value);
    return map;
}

QVariantMap heatEntry(const char *name)
{
    return with(with(entry(17, 0, 80), "temperaturePart", s("CPU Die")), "name", s(name));
}

class AlertsTest : public ::testing::Test
{
protected:
    AlertsTest()
    {
        machine.addChip(kPackage, "coretemp");
        machine.setChip(kPackage, s("temp1_label"), "Package id 0");
        machine.setChip(kPackage, kInput, "45000");
        machine.setChip(kPackage, kFan, "01000");
        desktop.writeSettings("[General]\nrefreshSec=1\n");
    }

    void startServer() { server = std::make_unique<NotificationServer>(desktop.bus()); }

    /// Waits for so many notifications. @return the last of them
    ShownNotification told(int count = 1)
    {
        EXPECT_TRUE(waitFor([&] { return server->all.size() >= count; }));
        return server->all.isEmpty() ? ShownNotification() : server->all.constLast();
    }
    bool waitUntilWithdrawn()
    {
        return waitFor([this] { return server->visible.isEmpty(); });
    }

    static void observe(const RunningProgram &program, const QList<QVariantMap> &entries)
    {
        ASSERT_EQ(program.set(kControl, "observeArray", QVariant::fromValue(entries)), QString());
    }
    static QList<QVariantMap> observed(const RunningProgram &program)
    {
        return qdbus_cast<QList<QVariantMap>>(program.get(kControl, "observeArray").value);
    }

    QString status()
    {
        QDBusMessage get =
            QDBusMessage::createMethodCall(panel.items.constLast(), s("/StatusNotifierItem"),
                                           s("org.freedesktop.DBus.Properties"), s("Get"));
        get.setArguments({s("org.kde.StatusNotifierItem"), s("Status")});
        const QDBusMessage answer = desktop.bus().call(get);
        return answer.arguments().value(0).value<QDBusVariant>().variant().toString();
    }

    Desktop desktop;
    Panel panel{desktop};
    QString folder = desktop.useMachine(s("vm"));
    SensorMachine machine{folder};
    std::unique_ptr<NotificationServer> server;
};

TEST_F(AlertsTest, HeatIsToldOnceAndWithdrawnWhenItIsOver)
{
    startServer();
    RunningProgram program(desktop);
    observe(program, {heatEntry("Hot")});
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(kPackage, kInput, "90500");
    const ShownNotification hot = told();
    EXPECT_EQ(hot.program, s("Pulsebar"));
    EXPECT_EQ(hot.summary, s("Hot"));
    EXPECT_TRUE(hot.body.contains(s("90.5\u2103"))) << hot.body.toStdString();
    EXPECT_TRUE(hot.body.contains(s("80\u2103"))) << hot.body.toStdString();
    EXPECT_EQ(hot.actions, (QStringList{s("default"), s("Show"), s("show"), s("Show")}));
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(server->all.size(), 1);
    EXPECT_EQ(server->visible.size(), 1);
    machine.setChip(kPackage, kInput, "45000");
    EXPECT_TRUE(waitUntilWithdrawn());
}

TEST_F(AlertsTest, AValueThatDancesAroundItsThresholdMakesNoStorm)
{
    startServer();
    RunningProgram program(desktop);
    observe(program, {heatEntry("Hot")});
    ASSERT_TRUE(program.waitForSamples(2));
    for (int round = 0; round < 3; ++round) {
        machine.setChip(kPackage, kInput, "81000");
        const auto events = program.events.size();
        ASSERT_TRUE(waitFor([&] { return program.events.size() > events; }));
        machine.setChip(kPackage, kInput, "79000");
        ASSERT_TRUE(program.waitForSamples(2));
    }
    EXPECT_EQ(program.events.size(), 3) << "the monitor has seen each crossing";
    EXPECT_EQ(server->all.size(), 1) << "the user was told of one";
    EXPECT_TRUE(waitUntilWithdrawn());
}

TEST_F(AlertsTest, AConditionMustHoldForItsDuration)
{
    startServer();
    RunningProgram program(desktop);
    observe(program, {with(heatEntry("Hot for long"), "duration", 5)});
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(kPackage, kInput, "90000");
    ASSERT_TRUE(waitFor([&] { return !program.events.isEmpty(); }));
    machine.setChip(kPackage, kInput, "45000");
    ASSERT_TRUE(program.waitForSamples(7));
    EXPECT_TRUE(server->all.isEmpty());
    machine.setChip(kPackage, kInput, "90000");
    // By the clock of the samples, of which there may be a later one on a busy machine.
    const QRegularExpression held(s(" for (\\d+) seconds$"));
    const QString body = told().body;
    EXPECT_GE(held.match(body).captured(1).toInt(), 5) << body.toStdString();
}

TEST_F(AlertsTest, BatteryCableAndFansAreTold)
{
    machine.addBattery(50, true);
    startServer();
    RunningProgram program(desktop);
    const QVariantMap low = with(entry(12, 1, 20), "batteryTriggerEventType", 0);
    const QVariantMap pulled = with(entry(12, 0, 0), "batteryTriggerEventType", 2);
    const QVariantMap plugged = with(entry(12, 0, 0), "batteryTriggerEventType", 1);
    const QVariantMap fast = entry(18, 0, 3000);
    observe(program, {low, pulled, plugged, fast});
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_TRUE(server->all.isEmpty());
    machine.setCharge(50, false);
    EXPECT_EQ(told(1).summary, s("Power cable unplugged"));
    machine.setCharge(19, false);
    EXPECT_EQ(told(2).summary, s("Battery below 20%"));
    EXPECT_TRUE(server->all.constLast().body.startsWith(s("19.0% now, below 20%")));
    machine.setCharge(19, true);
    EXPECT_EQ(told(3).summary, s("Power cable plugged in"));
    machine.setChip(kPackage, kFan, "03200");
    EXPECT_EQ(told(4).summary, s("Fan speed above 3000RPM"));
    EXPECT_EQ(server->all.constLast().body, s("3200RPM now, above 3000RPM"));
}

TEST_F(AlertsTest, LoadIsToldWithWhoCausedIt)
{
    TickingMachine ticks(folder);
    TickingProcess compiler(machine, 412, "cc1plus");
    startServer();
    RunningProgram program(desktop);
    observe(program, {entry(10, 0, 50)});
    ASSERT_TRUE(program.waitForSamples(2));
    ticks.work = 1000;
    const ShownNotification busy = told();
    EXPECT_EQ(busy.summary, s("CPU above 50%"));
    EXPECT_TRUE(busy.body.contains(s("% now, above 50%"))) << busy.body.toStdString();
    EXPECT_TRUE(busy.body.contains(s("Busiest process: cc1plus ("))) << busy.body.toStdString();
    ticks.work = 0;
    ticks.rest = 100000;
    EXPECT_TRUE(waitUntilWithdrawn());
}

TEST_F(AlertsTest, WithoutAServerTheItemDrawsAttentionUntilTheMenuIsOpened)
{
    RunningProgram program(desktop);
    observe(program, {heatEntry("Hot")});
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(status(), s("Active"));
    machine.setChip(kPackage, kInput, "90000");
    ASSERT_TRUE(waitFor([&] { return status() == u"NeedsAttention"; }));
    MenuClient menu(desktop, program.process().pid());
    menu.open();
    EXPECT_TRUE(waitFor([&] { return status() == u"Active"; }));
    menu.close();
}

TEST_F(AlertsTest, WithoutAServerAttentionEndsWithTheCondition)
{
    RunningProgram program(desktop);
    observe(program, {heatEntry("Hot")});
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(kPackage, kInput, "90000");
    ASSERT_TRUE(waitFor([&] { return status() == u"NeedsAttention"; }));
    machine.setChip(kPackage, kInput, "45000");
    EXPECT_TRUE(waitFor([&] { return status() == u"Active"; }));
}

TEST_F(AlertsTest, TheMenuSwitchesAndRemovesThem)
{
    startServer();
    RunningProgram program(desktop);
    observe(program, {heatEntry("Hot"), entry(10, 0, 50)});
    MenuClient menu(desktop, program.process().pid());
    const QStringList path{s("Preference"), s("Alerts")};
    MenuRow alerts = menu.look(path);
    EXPECT_EQ(alerts.labels(), (QStringList{s("Hot"), s("CPU above 50%"), s("-"),
                                            s("Add Alert\u2026"), s("Edit\u2026"), s("Remove")}));
    EXPECT_EQ(alerts.labelsThatAreOn(), (QStringList{s("Hot"), s("CPU above 50%")}));
    ASSERT_TRUE(menu.choose(path + QStringList{s("Hot")}));
    ASSERT_TRUE(
        waitFor([&] { return !observed(program).at(0).value(s("enabled"), true).toBool(); }));
    EXPECT_EQ(menu.look(path).labelsThatAreOn(), QStringList{s("CPU above 50%")});
    // What is switched off is not watched.
    ASSERT_TRUE(program.waitForSamples(1));
    machine.setChip(kPackage, kInput, "90000");
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_TRUE(program.events.isEmpty());
    EXPECT_TRUE(server->all.isEmpty());

    ASSERT_TRUE(menu.choose(path + QStringList{s("Remove"), s("Hot")}));
    ASSERT_TRUE(waitFor([&] { return observed(program).size() == 1; }));
    ASSERT_TRUE(menu.choose(path + QStringList{s("Remove"), s("CPU above 50%")}));
    ASSERT_TRUE(waitFor([&] { return observed(program).isEmpty(); }));
    alerts = menu.look(path);
    EXPECT_EQ(alerts.labels(), (QStringList{s("Add Alert\u2026"), s("Edit\u2026"), s("Remove")}));
    EXPECT_FALSE(alerts.child(s("Edit\u2026"))->isEnabled());
    EXPECT_FALSE(alerts.child(s("Remove"))->isEnabled());
}

TEST_F(AlertsTest, AStaleMenuActsOnTheAlertThatItShows)
{
    RunningProgram program(desktop);
    observe(program, {heatEntry("First"), heatEntry("Second")});
    MenuClient menu(desktop, program.process().pid());
    const MenuRow &root = menu.open();
    const MenuRow *first = root.at({s("Preference"), s("Alerts"), s("Remove"), s("First")});
    ASSERT_NE(first, nullptr);
    // Behind the open menu's back the list becomes another one.
    observe(program, {heatEntry("Third"), heatEntry("Second")});
    menu.click(first->id);
    menu.close();
    ASSERT_TRUE(program.waitForSamples(1));
    const QList<QVariantMap> left = observed(program);
    ASSERT_EQ(left.size(), 2);
    EXPECT_EQ(left.at(0).value(s("name")), QVariant(s("Third")));
}

TEST_F(AlertsTest, AreThereAgainAtTheNextStart)
{
    startServer();
    {
        RunningProgram program(desktop);
        observe(program, {heatEntry("Hot")});
        EXPECT_EQ(program.quit(), 0);
    }
    EXPECT_TRUE(desktop.settings().contains("observeArray="));
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(kPackage, kInput, "90000");
    EXPECT_EQ(told().summary, s("Hot"));
    // Nothing stays on the screen of a program that has ended.
    EXPECT_EQ(program.quit(), 0);
    EXPECT_TRUE(waitUntilWithdrawn());
}

/// On the machine that the test runs on.
class BusyProcessTest : public ::testing::Test
{
protected:
    BusyProcessTest()
    {
        QFile::copy(s("/bin/sh"), hogFile);
        desktop.writeSettings("[General]\nrefreshSec=1\nlistMax=20\n");
    }

    std::unique_ptr<Process> startHog()
    {
        // It ends by itself should the test be killed.
        return std::make_unique<Process>(
            hogFile, QStringList{s("-c"), s("ulimit -t 60; while :; do :; done")},
            desktop.environment());
    }

    Desktop desktop;
    Panel panel{desktop};
    NotificationServer server{desktop.bus()};
    QString hogFile = desktop.folder() + s("/pulsebar-hog");
};

TEST_F(BusyProcessTest, ARealHogIsToldAndQuitFromTheNotification)
{
    RunningProgram program(desktop);
    const QVariantMap share = with(entry(15, 0, 5), "processName", s("pulsebar-hog"));
    ASSERT_EQ(program.set(kControl, "observeArray", QVariant::fromValue(QList<QVariantMap>{share})),
              QString());
    ASSERT_TRUE(program.waitForSamples(2));
    const std::unique_ptr<Process> hog = startHog();
    ASSERT_TRUE(waitFor([&] { return !server.all.isEmpty(); }, 40000));
    const ShownNotification told = server.all.constFirst();
    EXPECT_EQ(told.summary, s("CPU of pulsebar-hog above 5%"));
    ASSERT_TRUE(told.actions.contains(s("quit"))) << told.actions.join(u' ').toStdString();
    EXPECT_EQ(told.actions.value(told.actions.indexOf(s("quit")) + 1), s("Quit"));
    const std::unique_ptr<Process> bystander = startHog();
    server.choose(told.id, s("quit"));
    EXPECT_TRUE(waitFor([&] { return !hog->isRunning(); }));
    EXPECT_TRUE(bystander->isRunning()) << "it has the same name, but was not told of";
}

} // namespace
} // namespace pulsebar::e2e
