#include "FakeCollectors.h"
#include "FakeGraphWindow.h"
#include "FakeStatusItem.h"
#include "controller/Controller.h"
#include "controller/GraphSettings.h"
#include "controller/GraphWindowRegistry.h"
#include "controller/Settings.h"
#include "engine/TopMonitor.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace pulsebar {
namespace {

const char *const kSample = "CPU usage: 1.00% user, 1.00% sys, 98.00% idle\n"
                            "PID COMMAND %CPU TIME #TH USER\n"
                            "412 Web Content 12.5 01:23.45 20/1 somebody\n";

/// A run of the program, as far as its graphs go; what it stores the next run finds.
struct ProgramRun
{
    explicit ProgramRun(const QString &fileName)
        : settings(fileName)
    {
    }

    void start()
    {
        controller.emplace(
            ControllerParts{monitor, item, settings, s("program"), [] {}, nullptr, &registry});
        controller->awakeFromNib();
    }

    MonitorSources sources()
    {
        MonitorSources sources;
        cores.answer = {{0, 100, 0, 50, 850}, {1, 200, 0, 50, 750}};
        interfaces.answer = {InterfaceCounters{"eth0", true, false, true, 5, 0, 5000}};
        const QVariantMap fan{{s("ActualSpeed"), 1200.0F}};
        fans.answer = {{s("DataArray"), QVariantList{fan, fan}}, {s("AverageSpeed"), 1200.0F}};
        sources.coreTicks = &cores;
        sources.interfaces = &interfaces;
        sources.icons = &icons;
        sources.temperatures = &temperatures;
        sources.fans = &fans;
        sources.pathQuery.program = s("/nonexistent/ps");
        return sources;
    }

    Settings settings;
    fakes::CoreTicksAnswer cores;
    fakes::InterfacesAnswer interfaces;
    FakeIcons icons;
    FakeTemperatures temperatures;
    fakes::FansAnswer fans;
    TopMonitor monitor{sources(), SamplerCommand{[] { return QString(); }}};
    FakeStatusItem item;
    FakeGraphs graphs;
    GraphWindowRegistry registry{
        graphs.factory(), [this](const QString &key) { return monitor.cacheDataForKey(key); }};
    std::optional<Controller> controller;
};

class ControllerGraphsTest : public testing::Test
{
protected:
    void write(const QByteArray &text) const
    {
        QFile file(fileName);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + text);
    }

    QByteArray fileText() const
    {
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// Chooses every row below a menu that has an action; tells the key of the menu that holds it.
    static QStringList chooseGraphRows(Controller &controller, const Menu &menu)
    {
        QStringList keys;
        for (const MenuItem &row : menu.items()) {
            if (row.action == QLatin1String("showGraphView")) {
                controller.performAction(menu, row, Qt::NoModifier);
                if (!keys.contains(menu.title()))
                    keys += menu.title();
            }
            if (row.submenu)
                keys += chooseGraphRows(controller, *row.submenu);
        }
        return keys;
    }

    QTemporaryDir folder;
    QString fileName = folder.filePath(s("Pulsebar.conf"));
    const QString cpu = s("CPUTotalUsage");
    const QString process = s("CPUUsage__412//a, \"b\"\nc");
};

TEST_F(ControllerGraphsTest, OpenOnesComeBackInTheirOrder)
{
    {
        ProgramRun first(fileName);
        first.start();
        for (const QString &key : {process, cpu, s("FanMove__FanAverage")})
            first.registry.showGraphViewForKey(key);
        first.registry.closeGraphViewForKey(s("FanMove__FanAverage"));
        first.controller->save();
    }
    ProgramRun second(fileName);
    second.start();
    EXPECT_EQ(second.graphs.made, (QStringList{process, cpu}));
    EXPECT_EQ(second.registry.graphWindowKeys(), (QStringList{process, cpu}));
}

TEST_F(ControllerGraphsTest, WhileTheyAreFedTheNewestSampleIsKnown)
{
    ProgramRun run(fileName);
    run.start();
    run.monitor.loadTopInfo(kSample);
    run.registry.showGraphViewForKey(cpu);
    QStringList texts;
    run.graphs.of(cpu).onCall = [&](const QString & /*call*/) {
        texts += run.controller->sampleText(cpu, 0).mid(s("14:03:12").size());
    };
    run.cores.answer = {{0, 200, 0, 50, 850}, {1, 300, 0, 50, 750}};
    run.monitor.loadTopInfo(kSample);
    EXPECT_EQ(texts, QStringList{s(" 100.0%: Web Content")});
}

TEST_F(ControllerGraphsTest, AreShownAgainAfterTheyWereHidden)
{
    {
        ProgramRun first(fileName);
        first.start();
        first.registry.showGraphViewForKey(cpu);
        first.registry.hideAllGraphWindow();
        first.controller->save();
    }
    ProgramRun second(fileName);
    second.start();
    EXPECT_FALSE(second.registry.hideGraphWindow());
    EXPECT_FALSE(second.graphs.of(cpu).calls.contains(s("orderOut")));
}

TEST_F(ControllerGraphsTest, WithoutOneTheKeyIsRemoved)
{
    write("graphWindowKeys=CPUTotalUsage\n");
    ProgramRun run(fileName);
    run.start();
    run.registry.closeGraphViewForKey(cpu);
    run.controller->save();
    EXPECT_FALSE(fileText().contains("graphWindowKeys"));
}

TEST_F(ControllerGraphsTest, ListsOfPeopleAreRead)
{
    write("graphWindowKeys=CPUTotalUsage, , CPUTotalUsage,CPUUsage__CPU1\n");
    ProgramRun run(fileName);
    run.start();
    EXPECT_EQ(run.registry.graphWindowKeys(), (QStringList{cpu, s("CPUUsage__CPU1")}));
}

TEST_F(ControllerGraphsTest, AFileCannotOpenThousands)
{
    QByteArray keys;
    for (int i = 0; i < 5000; ++i)
        keys += QByteArray::number(i) + ", ";
    write("graphWindowKeys=" + keys + "last\n");
    ProgramRun run(fileName);
    testing::internal::CaptureStderr();
    run.start();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(run.registry.graphWindowKeys().size(), GraphWindows::kMostOpen);
    EXPECT_EQ(log.find("256 graph windows"), log.rfind("256 graph windows"));
    EXPECT_NE(log.find("256 graph windows"), std::string::npos);
}

TEST_F(ControllerGraphsTest, AreFedAfterEverySampleAndAfterTheTitle)
{
    write("graphWindowKeys=CPUTotalUsage\n");
    ProgramRun run(fileName);
    run.start();
    QStringList titles;
    run.graphs.of(cpu).onCall = [&](const QString & /*call*/) { titles += run.item.title(); };
    QVector<qsizetype> fedWhenShown;
    QObject::connect(&*run.controller, &Controller::sampleShown,
                     [&] { fedWhenShown += run.graphs.of(cpu).arrays.size(); });
    run.monitor.loadTopInfo(kSample);
    EXPECT_EQ(fedWhenShown, QVector<qsizetype>{2});
    EXPECT_EQ(titles, QStringList{s("2.0%")});
    EXPECT_EQ(run.graphs.of(cpu).arrays.constLast(), run.monitor.cacheDataForKey(cpu));
    run.registry.hideAllGraphWindow();
    run.monitor.loadTopInfo(kSample);
    EXPECT_EQ(run.graphs.of(cpu).arrays.size(), 3);
}

TEST_F(ControllerGraphsTest, AnOpenedOneHasThePresentSamples)
{
    ProgramRun run(fileName);
    run.start();
    run.monitor.loadTopInfo(kSample);
    const QString key = s("CPUUsage__412//Web Content");
    run.registry.showGraphViewForKey(key);
    ASSERT_EQ(run.graphs.of(key).arrays.size(), 1);
    ASSERT_TRUE(run.graphs.of(key).arrays[0]);
    EXPECT_EQ(run.graphs.of(key).arrays[0]->size(), 1);
}

TEST_F(ControllerGraphsTest, EveryRowThatOffersOneOpensIt)
{
    ProgramRun run(fileName);
    run.start();
    run.monitor.loadTopInfo(kSample);
    run.cores.answer->front().user += 10;
    run.interfaces.answer->front().inBytes += 30000;
    run.monitor.loadTopInfo(kSample);
    Menu menu(s("Pulsebar"));
    run.controller->menuNeedsUpdate(menu);
    const QStringList keys = chooseGraphRows(*run.controller, menu);
    EXPECT_EQ(run.registry.graphWindowKeys(), keys);
    for (const QString &key :
         {s("CPUUsage__412//Web Content"), s("CPUTotalUsage"), s("CPUUsage__CPU1"),
          s("CPUUsage__CPU2"), s("Network__NetworkInMinuteStats"),
          s("Network__NetworkOutMinuteStats"), s("Temperature__CPU Die"), s("FanMove__FanAverage"),
          s("FanMove__Fan0")})
        EXPECT_TRUE(keys.contains(key)) << key.toStdString();
    for (const QString &key : keys)
        EXPECT_TRUE(run.monitor.cacheDataForKey(key)) << key.toStdString();
}

TEST_F(ControllerGraphsTest, ACoresRowOpensItsGraph)
{
    ProgramRun run(fileName);
    run.start();
    MenuItem row;
    row.action = s("dummy");
    row.title = s("Core #12: 45.0%");
    run.controller->performAction(Menu(cpu), row, Qt::NoModifier);
    EXPECT_EQ(run.registry.graphWindowKeys(), QStringList{s("CPU12")});
}

TEST_F(ControllerGraphsTest, SavingStoresTheirSettingsAndWritesOnce)
{
    write("graphWindowKeys=CPUTotalUsage, CPUUsage__CPU1\n");
    ProgramRun run(fileName);
    run.start();
    GraphSettings store(run.settings);
    int written = 0;
    for (const QString &key : run.registry.graphWindowKeys()) {
        run.graphs.of(key).onCall = [&, key](const QString &call) {
            if (call != s("storeSetting"))
                return;
            store.setGraphSetting(s("GraphWindowSetting_") + key, s("{}"));
            store.flush();
            written += fileText().contains("GraphWindowSetting_") ? 1 : 0;
        };
    }
    run.controller->save();
    EXPECT_EQ(written, 0);
    EXPECT_TRUE(fileText().contains("GraphWindowSetting_CPUTotalUsage="));
    EXPECT_TRUE(fileText().contains("GraphWindowSetting_CPUUsage__CPU1="));

    // The end of the session and the end of the program both save.
    const QByteArray before = fileText();
    ASSERT_TRUE(QFile::setPermissions(fileName, QFile::ReadOwner | QFile::WriteOwner));
    QFile touched(fileName);
    ASSERT_TRUE(touched.open(QIODevice::ReadWrite));
    const QDateTime old = QDateTime::fromSecsSinceEpoch(1000000000);
    ASSERT_TRUE(touched.setFileTime(old, QFileDevice::FileModificationTime));
    touched.close();
    run.controller->save();
    EXPECT_EQ(QFileInfo(fileName).lastModified(), old);
    EXPECT_EQ(fileText(), before);
    EXPECT_EQ(run.graphs.of(cpu).calls.count(s("storeSetting")), 2);
}

} // namespace
} // namespace pulsebar
