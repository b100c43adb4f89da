#include "FakeGraphWindow.h"
#include "controller/GraphWindowRegistry.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class GraphWindowRegistryTest : public testing::Test
{
protected:
    void open(const QStringList &keys)
    {
        for (const QString &key : keys)
            EXPECT_TRUE(registry.showGraphViewForKey(key));
    }

    const QString cpu = s("CPUTotalUsage");
    const QString in = s("Network__NetworkInMinuteStats");
    const QString process = s("CPUUsage__412//a \"b\", c");
    FakeGraphs graphs;
    QHash<QString, UsageCache> caches;
    GraphWindowRegistry registry{graphs.factory(), [this](const QString &key) {
                                     return caches.contains(key)
                                                ? std::optional<UsageCache>(caches.value(key))
                                                : std::nullopt;
                                 }};
};

TEST_F(GraphWindowRegistryTest, OneWindowForEachKey)
{
    open({cpu, cpu, cpu});
    EXPECT_EQ(graphs.made, QStringList{cpu});
    EXPECT_EQ(registry.graphWindowKeys(), QStringList{cpu});
    EXPECT_EQ(graphs.of(cpu).calls, (QStringList{s("window"), s("setUsageCacheArray"), s("window"),
                                                 s("orderFront"), s("window"), s("orderFront")}));
}

TEST_F(GraphWindowRegistryTest, KeysAreInTheOrderOfOpening)
{
    open({process, in, cpu});
    registry.closeGraphViewForKey(in);
    open({in, process});
    EXPECT_EQ(registry.graphWindowKeys(), (QStringList{process, cpu, in}));
}

TEST_F(GraphWindowRegistryTest, KeysThatDifferInCaseAreTwo)
{
    open({s("CPUUsage__1//a"), s("CPUUsage__1//A")});
    EXPECT_EQ(registry.graphWindowKeys().size(), 2);
}

TEST_F(GraphWindowRegistryTest, ANewWindowHasItsSamplesAtOnce)
{
    caches.insert(cpu, {0.1, 0.2});
    open({cpu, in});
    ASSERT_EQ(graphs.of(cpu).arrays.size(), 1);
    EXPECT_EQ(graphs.of(cpu).arrays[0], (UsageCache{0.1, 0.2}));
    EXPECT_EQ(graphs.of(in).arrays[0], std::nullopt);
}

TEST_F(GraphWindowRegistryTest, EveryWindowIsFedItsOwnSamples)
{
    open({cpu, in, process});
    registry.hideAllGraphWindow();
    caches.insert(cpu, {0.5});
    caches.insert(in, {quint64(7)});
    registry.feed();
    EXPECT_EQ(graphs.of(cpu).arrays.constLast(), UsageCache{0.5});
    EXPECT_EQ(graphs.of(in).arrays.constLast(), UsageCache{quint64(7)});
    EXPECT_EQ(graphs.of(process).arrays.constLast(), std::nullopt);
    EXPECT_EQ(graphs.of(process).arrays.size(), 2);
}

TEST_F(GraphWindowRegistryTest, ClosedWindowsAreGone)
{
    open({cpu, in});
    registry.closeGraphViewForKey(cpu);
    EXPECT_EQ(registry.graphWindowKeys(), QStringList{in});
    EXPECT_EQ(graphs.of(cpu).calls.constLast(), s("close"));
    registry.feed();
    registry.hideAllGraphWindow();
    registry.storeSettings();
    EXPECT_EQ(graphs.of(cpu).calls.constLast(), s("close"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(graphs.of(cpu).alive, 0);
    EXPECT_EQ(graphs.of(in).alive, 1);
}

TEST_F(GraphWindowRegistryTest, ClosingWhatIsNotOpenDoesNothing)
{
    open({cpu});
    registry.closeGraphViewForKey(in);
    registry.closeGraphViewForKey(QString());
    EXPECT_EQ(registry.graphWindowKeys(), QStringList{cpu});
    EXPECT_EQ(graphs.made, QStringList{cpu});
}

TEST_F(GraphWindowRegistryTest, AClosedKeyOpensANewWindow)
{
    open({cpu});
    registry.closeGraphViewForKey(cpu);
    open({cpu});
    EXPECT_EQ(graphs.made, (QStringList{cpu, cpu}));
    EXPECT_EQ(graphs.of(cpu).alive, 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(graphs.of(cpu).alive, 1);
    EXPECT_EQ(registry.graphWindowKeys(), QStringList{cpu});
}

TEST_F(GraphWindowRegistryTest, AWindowOutlivesTheHandlerThatClosesIt)
{
    open({cpu});
    QEventLoop outer;
    int aliveInHandler = 0;
    QTimer::singleShot(0, &outer, [&] {
        // A window's handler may wait in a loop of its own, for a colour to be chosen.
        registry.closeGraphViewForKey(cpu);
        QEventLoop inner;
        QTimer::singleShot(0, &inner, [&] { QTimer::singleShot(0, &inner, &QEventLoop::quit); });
        inner.exec();
        aliveInHandler = graphs.of(cpu).alive;
        QTimer::singleShot(0, &outer, [&] { QTimer::singleShot(0, &outer, &QEventLoop::quit); });
    });
    outer.exec();
    EXPECT_EQ(aliveInHandler, 1);
    EXPECT_EQ(graphs.of(cpu).alive, 0);
}

TEST_F(GraphWindowRegistryTest, AWindowMayAskAgainWhileItCloses)
{
    open({cpu});
    graphs.of(cpu).onCall = [this](const QString &call) {
        if (call == s("close"))
            registry.closeGraphViewForKey(cpu);
    };
    registry.closeGraphViewForKey(cpu);
    EXPECT_EQ(graphs.of(cpu).calls.count(s("close")), 1);
}

TEST_F(GraphWindowRegistryTest, WindowsMayComeAndGoWhileTheyAreFed)
{
    open({cpu, in, process});
    graphs.of(cpu).onCall = [this](const QString & /*call*/) {
        registry.closeGraphViewForKey(cpu);
        registry.closeGraphViewForKey(in);
        registry.showGraphViewForKey(s("CPUUsage__CPU1"));
    };
    registry.feed();
    EXPECT_EQ(registry.graphWindowKeys(), (QStringList{process, s("CPUUsage__CPU1")}));
    EXPECT_EQ(graphs.of(in).arrays.size(), 1);
    EXPECT_EQ(graphs.of(process).arrays.size(), 2);
}

TEST_F(GraphWindowRegistryTest, AllAreHiddenAndShown)
{
    open({cpu, process});
    EXPECT_FALSE(registry.hideGraphWindow());
    registry.switchGraphWindow();
    EXPECT_TRUE(registry.hideGraphWindow());
    EXPECT_EQ(graphs.of(cpu).calls.constLast(), s("orderOut"));
    EXPECT_EQ(graphs.of(process).calls.constLast(), s("orderOut"));
    registry.switchGraphWindow();
    EXPECT_FALSE(registry.hideGraphWindow());
    EXPECT_EQ(graphs.of(cpu).calls.constLast(), s("orderFront"));
    EXPECT_EQ(graphs.of(process).calls.constLast(), s("orderFront"));
}

TEST_F(GraphWindowRegistryTest, HidingWorksWithoutWindows)
{
    registry.switchGraphWindow();
    EXPECT_TRUE(registry.hideGraphWindow());
    registry.switchGraphWindow();
    EXPECT_FALSE(registry.hideGraphWindow());
}

TEST_F(GraphWindowRegistryTest, AWindowOpenedWhileAllAreHiddenShows)
{
    open({cpu});
    registry.hideAllGraphWindow();
    open({in, cpu});
    EXPECT_TRUE(registry.hideGraphWindow());
    EXPECT_FALSE(graphs.of(in).calls.contains(s("orderOut")));
    EXPECT_EQ(graphs.of(cpu).calls.constLast(), s("orderFront"));
}

TEST_F(GraphWindowRegistryTest, SettingsOfAllAreStored)
{
    open({cpu, in});
    registry.hideAllGraphWindow();
    registry.storeSettings();
    for (const QString &key : {cpu, in})
        EXPECT_EQ(graphs.of(key).calls.count(s("storeSetting")), 1);
    EXPECT_EQ(registry.graphWindowKeys().size(), 2);
}

TEST_F(GraphWindowRegistryTest, TooManyAreRefusedAndSaidOnce)
{
    for (qsizetype i = 0; i < GraphWindows::kMostOpen; ++i)
        EXPECT_TRUE(registry.showGraphViewForKey(QString::number(i)));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(registry.showGraphViewForKey(s("one more")));
    EXPECT_FALSE(registry.showGraphViewForKey(s("and another")));
    EXPECT_TRUE(registry.showGraphViewForKey(s("7")));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(graphs.made.size(), GraphWindows::kMostOpen);
    registry.closeGraphViewForKey(s("7"));
    EXPECT_TRUE(registry.showGraphViewForKey(s("one more")));
}

TEST_F(GraphWindowRegistryTest, WhatIsNoKeyOpensNothing)
{
    EXPECT_FALSE(registry.showGraphViewForKey(QString()));
    EXPECT_FALSE(registry.showGraphViewForKey(QString(GraphWindows::kLongestKey + 1, u'x')));
    EXPECT_TRUE(graphs.made.isEmpty());
    EXPECT_TRUE(registry.showGraphViewForKey(QString(GraphWindows::kLongestKey, u'x')));
}

TEST_F(GraphWindowRegistryTest, TakesItsWindowsWithIt)
{
    {
        GraphWindowRegistry other(graphs.factory(), [](const QString &) { return std::nullopt; });
        other.showGraphViewForKey(cpu);
        other.showGraphViewForKey(in);
        other.closeGraphViewForKey(in);
    }
    EXPECT_EQ(graphs.of(cpu).alive, 0);
    EXPECT_EQ(graphs.of(in).alive, 0);
    EXPECT_FALSE(graphs.of(cpu).calls.contains(s("close")));
}

} // namespace
} // namespace pulsebar
