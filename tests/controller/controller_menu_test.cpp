#include "FakeCollectors.h"
#include "FakeGraphWindow.h"
#include "FakeStatusItem.h"
#include "controller/Controller.h"
#include "controller/GraphWindowRegistry.h"
#include "controller/Settings.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"
#include "menu/FanSection.h"
#include "menu/TitleTypes.h"
#include "platform/Processes.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace pulsebar {
namespace {

struct FakeNetworkMonitor : NetworkMonitor
{
    bool running = true;
    bool runNettop() const override { return running; }
    void setRunNettop(bool on) override { running = on; }
    void setRefreshSec(int /*seconds*/) override {}
    std::optional<QVariantMap> topDict() const override { return dictionary; }
    std::optional<QVariantMap> dictionary = QVariantMap{
        {QStringLiteral("a"), QVariantMap{{QStringLiteral("name"), QStringLiteral("a")}}},
        {QStringLiteral("b"), QVariantMap{{QStringLiteral("name"), QStringLiteral("b")}}}};
};

struct FakeProcesses : Processes
{
    quint64 clock = 100;
    QStringList held;
    QVector<quint64> listedAt;
    quint64 now() const override { return clock; }
    std::shared_ptr<HeldProcess> hold(const QString &pid, quint64 at) override
    {
        held += pid;
        listedAt += at;
        return nullptr;
    }
};

class ControllerMenuTest : public testing::Test
{
protected:
    ControllerMenuTest()
        : settings(folder.filePath(QStringLiteral("Pulsebar.conf")))
        , monitor(sources(), SamplerCommand{[] { return QString(); }})
    {
    }

    MonitorSources sources()
    {
        MonitorSources sources;
        sources.icons = &icons;
        sources.temperatures = &temperatures;
        sources.fans = &fans;
        sources.pathQuery.program = QStringLiteral("/nonexistent/ps");
        return sources;
    }

    Controller &started(bool alone = false)
    {
        controller.emplace(ControllerParts{
            monitor, item, settings, QStringLiteral("program"), [] {}, alone ? nullptr : &network,
            alone ? nullptr : &graphs, alone ? nullptr : &processes});
        controller->awakeFromNib();
        monitor.loadTopInfo("CPU usage: 1.00% user, 1.00% sys, 98.00% idle\n"
                            "PID COMMAND %CPU TIME #TH USER\n"
                            "412 Web Content 12.5 01:23.45 20/1 somebody\n");
        return *controller;
    }

    Menu built()
    {
        Menu menu(QStringLiteral("Pulsebar"));
        controller->menuNeedsUpdate(menu);
        return menu;
    }

    static const MenuItem &rowTitled(const Menu &menu, const QString &title)
    {
        static const MenuItem none;
        for (const MenuItem &row : menu.items()) {
            if (row.title == title)
                return row;
        }
        ADD_FAILURE() << "no row " << title.toStdString();
        return none;
    }

    void choose(const Menu &menu, const MenuItem &row)
    {
        controller->performAction(menu, row, Qt::NoModifier);
    }

    QTemporaryDir folder;
    Settings settings;
    FakeIcons icons;
    FakeTemperatures temperatures;
    FakeFans fans;
    TopMonitor monitor;
    FakeStatusItem item;
    FakeNetworkMonitor network;
    FakeGraphs fakes;
    GraphWindowRegistry graphs{fakes.factory(),
                               [this](const QString &key) { return monitor.cacheDataForKey(key); }};
    FakeProcesses processes;
    std::optional<Controller> controller;
};

TEST_F(ControllerMenuTest, IsBuiltFromTheNewestSampleEachTime)
{
    started();
    Menu menu = built();
    EXPECT_EQ(menu.items().constFirst().title, QStringLiteral("12.5% : Web Content"));
    monitor.loadTopInfo("PID COMMAND %CPU TIME #TH USER\n7 x 50.0 01:23.45 20/1 root\n");
    const auto rows = menu.items().size();
    controller->menuNeedsUpdate(menu);
    EXPECT_EQ(menu.items().size(), rows);
    EXPECT_EQ(menu.items().constFirst().title, QStringLiteral("50.0% : x"));
}

TEST_F(ControllerMenuTest, ProcessesAreHeldAsOfTheSample)
{
    started();
    processes.clock = 200;
    EXPECT_TRUE(processes.held.isEmpty());
    built();
    built();
    EXPECT_EQ(processes.held, (QStringList{QStringLiteral("412"), QStringLiteral("412")}));
    EXPECT_EQ(processes.listedAt, (QVector<quint64>{100, 100}));
    monitor.loadTopInfo("PID COMMAND %CPU TIME #TH USER\n7 x 50.0 01:23.45 20/1 root\n");
    built();
    EXPECT_EQ(processes.listedAt.constLast(), 200U);
}

TEST_F(ControllerMenuTest, HasTheProcessesRecord)
{
    started();
    const Menu menu = built();
    const MenuItem &average =
        rowTitled(*menu.items().constFirst().submenu, QStringLiteral("Average: 12.5%"));
    EXPECT_EQ(average.action, QStringLiteral("showGraphView"));
}

TEST_F(ControllerMenuTest, IconsAreThereWhenTheyAreWanted)
{
    started();
    monitor.readProcessPath("PID COMMAND\n412 /opt/browser");
    EXPECT_TRUE(built().items().constFirst().image.isEmpty());
    settings.setValue(preferences::kShowIcon, true);
    started();
    EXPECT_EQ(built().items().constFirst().image, QStringLiteral("browser"));
}

TEST_F(ControllerMenuTest, AProcessCanBeShownOnceItsPathIsKnown)
{
    started();
    const auto rows = built().items().constFirst().submenu->items().size();
    EXPECT_TRUE(monitor.processPathDict().contains(QStringLiteral("412")));
    monitor.readProcessPath("PID COMMAND\n412 /opt/browser");
    const Menu menu = built();
    const Menu &process = *menu.items().constFirst().submenu;
    EXPECT_EQ(process.items().size(), rows + 2);
    rowTitled(process, QStringLiteral("Show in Finder"));
}

TEST_F(ControllerMenuTest, TrafficIsThereWhileItIsMonitored)
{
    settings.setValue(preferences::kNetworkMax, qint64(1));
    started();
    Menu menu = built();
    EXPECT_EQ(rowTitled(menu, QStringLiteral("Other Network Activities")).submenu->items().size(),
              1);
    network.running = false;
    menu = built();
    for (const MenuItem &row : menu.items())
        EXPECT_FALSE(row.title.startsWith(QChar(0x2193)));
}

TEST_F(ControllerMenuTest, HasTheSensorsAndTheFans)
{
    started();
    Menu menu = built();
    const MenuItem &die = rowTitled(menu, QStringLiteral("CPU Die: 50.0\u2103"));
    rowTitled(*die.submenu, QStringLiteral("CPU Die:50.0\u2103"));
    const MenuItem &fan = rowTitled(menu, QStringLiteral("Fan: 1200RPM"));
    rowTitled(*fan.submenu, QStringLiteral("Actual: 1200RPM"));
    choose(menu, die);
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{titles::kTemperature});
    choose(menu, fan);
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{titles::kFanSpeed});
    monitor.setFahrenheit(true);
    monitor.loadTopInfo("PID COMMAND\n");
    menu = built();
    rowTitled(menu, QStringLiteral("CPU Die: 122.0\u2109"));
}

TEST_F(ControllerMenuTest, AFansRowEmptiesTheTitle)
{
    started();
    Menu holder(QStringLiteral("FanMove__FanAverage"));
    choose(holder, makeFanMoveMenuForFanDict({}, 0, {}));
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{0});
}

TEST_F(ControllerMenuTest, GraphsOpenByTheTitleOfTheMenu)
{
    started();
    const Menu menu = built();
    const Menu &process = *menu.items().constFirst().submenu;
    choose(process, rowTitled(process, QStringLiteral("Show Graph")));
    choose(process, rowTitled(process, QStringLiteral("Maximum: 12.5%")));
    const QString key = QStringLiteral("CPUUsage__412//Web Content");
    EXPECT_EQ(graphs.graphWindowKeys(), QStringList{key});
    EXPECT_EQ(fakes.of(key).fronted, 1);
}

TEST_F(ControllerMenuTest, GraphsAreHiddenAndShown)
{
    started();
    Menu menu = built();
    EXPECT_EQ(rowTitled(menu, QStringLiteral("Hide Graph")).state, ItemState::Off);
    choose(menu, rowTitled(menu, QStringLiteral("Hide Graph")));
    EXPECT_TRUE(graphs.hideGraphWindow());
    menu = built();
    EXPECT_EQ(rowTitled(menu, QStringLiteral("Hide Graph")).state, ItemState::On);
}

TEST_F(ControllerMenuTest, OnlyCoresAreDummiesWithAGraph)
{
    started();
    for (const char *title : {"Core #3: 45.0%", "CPU Average: 30.0%", "core #4: 1.0%", "Core #5",
                              "Core #", " Core #1: x", "PID: 412", ""}) {
        Menu holder(QStringLiteral("CPUTotalUsage"));
        choose(holder,
               holder.addDummyItemWithTitle(QString::fromLatin1(title), ItemTarget::Controller));
    }
    EXPECT_EQ(graphs.graphWindowKeys(), QStringList{QStringLiteral("CPU3")});
}

TEST_F(ControllerMenuTest, TheProcessorsRowEmptiesTheTitle)
{
    started();
    const Menu menu = built();
    choose(menu, rowTitled(menu, QStringLiteral("CPU Average: 0.0%")));
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{0});
}

TEST_F(ControllerMenuTest, WorksWithNothingBesideTheMonitor)
{
    started(true);
    const Menu menu = built();
    EXPECT_EQ(menu.items().constFirst().process, nullptr);
    choose(menu, rowTitled(menu, QStringLiteral("Hide Graph")));
    EXPECT_EQ(rowTitled(built(), QStringLiteral("Hide Graph")).state, ItemState::Off);
    const Menu &process = *menu.items().constFirst().submenu;
    choose(process, rowTitled(process, QStringLiteral("Show Graph")));
    EXPECT_TRUE(graphs.graphWindowKeys().isEmpty());
    EXPECT_FALSE(graphs.hideGraphWindow());
}

} // namespace
} // namespace pulsebar
