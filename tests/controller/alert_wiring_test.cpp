// Alerts from the sample to the notification, and from their menu to the list.
#include "FakeCollectors.h"
#include "FakeGraphWindow.h"
#include "FakeNotifications.h"
#include "FakeProcesses.h"
#include "FakeStatusItem.h"
#include "controller/Controller.h"
#include "controller/GraphWindowRegistry.h"
#include "controller/Settings.h"
#include "engine/TopMonitor.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace pulsebar {
namespace {

AlertRule shareAbove(double percent)
{
    AlertRule rule;
    rule.subject = AlertSubject::ProcessShare;
    rule.part = s("Web Content");
    rule.threshold = percent;
    return rule;
}

class AlertWiringTest : public testing::Test
{
protected:
    AlertWiringTest()
        : settings(folder.filePath(s("Pulsebar.conf")))
        , monitor(sources(), SamplerCommand{[] { return QString(); }})
        , controller(parts())
    {
        processes.known.insert(412, culprit);
        controller.awakeFromNib();
        sample("12.5");
    }

    MonitorSources sources()
    {
        MonitorSources sources;
        sources.temperatures = &temperatures;
        sources.pathQuery.program = s("/nonexistent/ps");
        return sources;
    }

    ControllerParts parts()
    {
        ControllerParts parts{monitor, item, settings, s("program"), [] {}};
        parts.graphWindows = &graphs;
        parts.processes = &processes;
        parts.notifications = &notifications;
        parts.editAlert = [this](const AlertEdit &edit,
                                 std::function<void(const AlertRule &)> accepted) {
            edits += edit;
            accept = std::move(accepted);
        };
        return parts;
    }

    void sample(const char *percent)
    {
        monitor.loadTopInfo(QByteArray("PID COMMAND %CPU TIME #TH USER\n412 Web Content ") +
                            percent + " 01:23.45 20/1 somebody\n");
    }

    /// The rows of "Alerts" in the menu as it is built now.
    QVector<MenuItem> alertRows()
    {
        Menu menu;
        controller.menuNeedsUpdate(menu);
        for (const MenuItem &row : menu.items()) {
            if (row.title == u"Preference")
                return row.submenu->items().constLast().submenu->items();
        }
        return {};
    }
    void choose(const MenuItem &row) { controller.performAction({}, row, Qt::NoModifier); }

    QTemporaryDir folder;
    Settings settings;
    FakeTemperatures temperatures;
    TopMonitor monitor;
    FakeStatusItem item;
    FakeNotifications notifications;
    FakeGraphs fakes;
    GraphWindowRegistry graphs{fakes.factory(),
                               [this](const QString &key) { return monitor.cacheDataForKey(key); }};
    FakeProcesses processes;
    std::shared_ptr<FakeHeldProcess> culprit = std::make_shared<FakeHeldProcess>(412);
    QVector<AlertEdit> edits;
    std::function<void(const AlertRule &)> accept;
    Controller controller;
};

TEST_F(AlertWiringTest, AProcesssShareIsToldAndItsActionsReachThatProcess)
{
    const QString id = controller.alerts().add(shareAbove(30));
    sample("20.0");
    EXPECT_TRUE(notifications.visible.isEmpty());
    sample("90.0"); // a mean of 40.8
    ASSERT_TRUE(notifications.visible.contains(id));
    EXPECT_EQ(notifications.visible.value(id).summary, s("CPU of Web Content above 30%"));
    EXPECT_TRUE(notifications.visible.value(id).body.startsWith(s("40.8% now")))
        << notifications.visible.value(id).body.toStdString();

    notifications.listener->notificationActionChosen(id, s("show"));
    EXPECT_EQ(graphs.graphWindowKeys(), QStringList{s("CPUUsage__412//Web Content")});
    EXPECT_EQ(item.menusOpened, 0);
    notifications.listener->notificationActionChosen(id, s("quit"));
    EXPECT_EQ(culprit->askedToEnd, 1);

    for (int i = 0; i < 4; ++i)
        sample("0.0");
    EXPECT_TRUE(notifications.visible.isEmpty());
    EXPECT_EQ(notifications.shown, 1);
}

TEST_F(AlertWiringTest, OneThatIsSwitchedOffOrRemovedIsTakenBack)
{
    const QString id = controller.alerts().add(shareAbove(30));
    sample("90.0");
    ASSERT_TRUE(notifications.visible.contains(id));
    choose(alertRows().at(0));
    EXPECT_FALSE(controller.alerts().find(id)->rule.enabled);
    EXPECT_TRUE(notifications.visible.isEmpty());
    EXPECT_TRUE(monitor.observeArray().isEmpty());
}

TEST_F(AlertWiringTest, WithoutAServerTheItemDrawsAttention)
{
    const QString id = controller.alerts().add(shareAbove(30));
    sample("90.0");
    notifications.listener->notificationNotShown(id);
    EXPECT_TRUE(item.needsAttention);
    controller.alerts().remove(id);
    EXPECT_FALSE(item.needsAttention);
}

TEST_F(AlertWiringTest, ANewOneIsEditedFromTheMenu)
{
    QVector<MenuItem> rows = alertRows();
    ASSERT_EQ(rows.at(0).title, s("Add Alert\u2026"));
    choose(rows.at(0));
    ASSERT_EQ(edits.size(), 1);
    EXPECT_EQ(edits.at(0).id, QString());
    EXPECT_EQ(alertProblem(edits.at(0).rule), QString());
    EXPECT_EQ(edits.at(0).sensors, QStringList{s("CPU Die")});
    EXPECT_EQ(edits.at(0).processes, QStringList{s("Web Content")});
    EXPECT_TRUE(controller.alerts().list().isEmpty()) << "not before it is accepted";
    accept(shareAbove(30));
    ASSERT_EQ(controller.alerts().list().size(), 1);
    EXPECT_EQ(monitor.observeArray().size(), 1);
    rows = alertRows();
    EXPECT_EQ(rows.at(0).title, s("CPU of Web Content above 30%"));
    EXPECT_EQ(rows.at(0).state, ItemState::On);
}

TEST_F(AlertWiringTest, EditingChangesTheRuleAndNotTheSwitch)
{
    const QString first = controller.alerts().add(shareAbove(30));
    const QString second = controller.alerts().add(shareAbove(60));
    const QVector<MenuItem> rows = alertRows();
    const MenuItem &edit = rows.at(rows.size() - 2);
    choose(edit.submenu->items().at(1));
    ASSERT_EQ(edits.size(), 1);
    EXPECT_EQ(edits.at(0).id, second);
    EXPECT_EQ(edits.at(0).rule, shareAbove(60));
    choose(rows.at(1)); // while the panel is open
    accept(shareAbove(70));
    EXPECT_EQ(controller.alerts().find(second)->rule.threshold, 70);
    EXPECT_FALSE(controller.alerts().find(second)->rule.enabled);
    EXPECT_EQ(controller.alerts().find(first)->rule, shareAbove(30));
}

TEST_F(AlertWiringTest, ThresholdsFollowTheScaleEvenWhileOneEditsThem)
{
    AlertRule hot;
    hot.subject = AlertSubject::Temperature;
    hot.part = s("CPU Die");
    hot.threshold = 80;
    const QString id = controller.alerts().add(hot);
    const QVector<MenuItem> rows = alertRows();
    choose(rows.at(rows.size() - 2).submenu->items().at(0));
    MenuItem scale;
    scale.action = s("switchFahrenheit");
    choose(scale);
    EXPECT_EQ(controller.alerts().find(id)->rule.threshold, 201.6);
    EXPECT_EQ(monitor.observeArray().at(0).toMap().value(s("threshold")), QVariant(201.6));
    accept(hot); // 80 degrees Celsius, as the panel shows
    EXPECT_EQ(controller.alerts().find(id)->rule.threshold, 201.6);
    choose(scale);
    EXPECT_EQ(controller.alerts().find(id)->rule, hot);
}

TEST_F(AlertWiringTest, WhatWasRemovedMeanwhileIsNotBroughtBack)
{
    const QString first = controller.alerts().add(shareAbove(30));
    const QString second = controller.alerts().add(shareAbove(60));
    const QVector<MenuItem> rows = alertRows();
    choose(rows.at(rows.size() - 2).submenu->items().at(0));
    // The row of an older menu means the alert that it named.
    choose(rows.constLast().submenu->items().at(0));
    choose(rows.constLast().submenu->items().at(0));
    accept(shareAbove(70));
    EXPECT_EQ(controller.alerts().find(first), nullptr);
    ASSERT_EQ(controller.alerts().list().size(), 1);
    EXPECT_EQ(controller.alerts().list().at(0).id, second);
}

} // namespace
} // namespace pulsebar
