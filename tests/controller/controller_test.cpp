#include "FakeCollectors.h"
#include "FakeStatusItem.h"
#include "controller/Controller.h"
#include "controller/Settings.h"
#include "engine/TopMonitor.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace pulsebar {
namespace {

class ControllerTest : public testing::Test
{
protected:
    void start(const QByteArray &settingsText = {})
    {
        if (!settingsText.isEmpty()) {
            QFile file(fileName());
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("[General]\n" + settingsText);
        }
        settings = std::make_unique<Settings>(fileName());
        monitor = std::make_unique<TopMonitor>(MonitorSources{},
                                               SamplerCommand{[] { return QString(); }});
        item = std::make_unique<FakeStatusItem>();
        controller = std::make_unique<Controller>(ControllerParts{
            *monitor, *item, *settings, QStringLiteral("program"), [this] { ++terminations; }});
        controller->awakeFromNib();
    }

    ~ControllerTest() override
    {
        controller.reset();
        monitor.reset();
    }

    QString fileName() const { return m_folder.filePath(QStringLiteral("Pulsebar.conf")); }

    QByteArray fileText() const
    {
        QFile file(fileName());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void perform(const char *action, int tag = 0, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                 const QVariant &represented = {})
    {
        MenuItem row;
        row.action = QString::fromLatin1(action);
        row.tag = tag;
        row.representedObject = represented;
        controller->performAction(Menu(), row, modifiers);
    }

    std::unique_ptr<Settings> settings;
    std::unique_ptr<TopMonitor> monitor;
    std::unique_ptr<FakeStatusItem> item;
    std::unique_ptr<Controller> controller;
    int terminations = 0;

private:
    QTemporaryDir m_folder;
};

TEST_F(ControllerTest, FirstLaunch)
{
    start();
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{1});
    EXPECT_EQ(
        controller->titles().toggleTitleOptionArray(),
        (QVector<bool>{true, true, true, true, true, true, false, false, true, true, true, true}));
    EXPECT_EQ(monitor->listMax(), 10);
    EXPECT_EQ(monitor->refreshSec(), 3);
    EXPECT_EQ(controller->networkMax(), 5);
    EXPECT_FALSE(controller->showIcon());
    EXPECT_EQ(item->length(), 60.0);
    EXPECT_EQ(item->title(), QStringLiteral("Usage"));
    EXPECT_EQ(controller->titleOnPanel(), QStringLiteral("automatic"));
    EXPECT_TRUE(monitor->runTop());
}

TEST_F(ControllerTest, SwitchesEveryCollectorOn)
{
    start();
    EXPECT_TRUE(monitor->monitorCPU() && monitor->monitorNetwork() && monitor->monitorBattery() &&
                monitor->monitorProcessUsage() && monitor->monitorTemperature() &&
                monitor->monitorFanMove());
}

TEST_F(ControllerTest, ObserveEntriesLeaveTheCollectorsOn)
{
    start();
    monitor->setObserveArray({QVariantMap{{QStringLiteral("type"), 18}}});
    EXPECT_TRUE(monitor->monitorCPU());
    EXPECT_TRUE(monitor->runTop());
}

TEST_F(ControllerTest, SingleTitleTypeIsTakenOver)
{
    start("titleTypeToDisplay=4\n");
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{4});
    EXPECT_FALSE(fileText().contains("titleTypeToDisplay"));
}

TEST_F(ControllerTest, IconOnlyStartsAsAnIcon)
{
    start("titleTypesToDisplay=8, 1\nitemWidth=90\n");
    EXPECT_EQ(item->length(), 30.0);
    EXPECT_EQ(item->image(), QStringLiteral("program"));
    EXPECT_EQ(item->title(), QString());
}

TEST_F(ControllerTest, StoredPreferencesTakeEffect)
{
    start("listMax=4\nrefreshSec=5\nnetworkMax=0\nshowIcon=true\ncheckMemory=true\nsortByMemory="
          "true\n"
          "fahrenheit=true\nitemWidth=72.5\ntitleOnPanel=strip\n");
    EXPECT_EQ(monitor->listMax(), 4);
    EXPECT_EQ(monitor->refreshSec(), 5);
    EXPECT_TRUE(monitor->checkMemory() && monitor->sortByMemory() && monitor->fahrenheit());
    EXPECT_EQ(controller->networkMax(), 0);
    EXPECT_TRUE(controller->showIcon());
    EXPECT_EQ(item->length(), 72.5);
    EXPECT_EQ(item->how, TitleOnPanel::Strip);
}

TEST_F(ControllerTest, ShortRotationsAreFilledUp)
{
    start("toggleTitleOptionArray=false, false, true, false, false, false, true, true, false, "
          "false\n");
    EXPECT_EQ(controller->titles().toggleTitleOptionArray(),
              (QVector<bool>{false, false, true, false, false, false, false, false, false, false,
                             true, true}));
}

TEST_F(ControllerTest, LongRotationsAreNotFilledUp)
{
    start("toggleTitleOptionArray=true, true, true, true, true, true, true, true, true, true, "
          "true\n");
    const QVector<bool> members = controller->titles().toggleTitleOptionArray();
    EXPECT_EQ(members.size(), 11);
    EXPECT_FALSE(members[6] || members[7]);
}

TEST_F(ControllerTest, DamagedSettingsCostOnlyThemselves)
{
    testing::internal::CaptureStderr();
    start("listMax=many\nrefreshSec=0\ntitleTypesToDisplay=@Variant(x)\ntitleOnPanel="
          "sideways\nnetworkMax=3\n");
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(monitor->listMax(), 10);
    EXPECT_EQ(monitor->refreshSec(), 0);
    EXPECT_EQ(controller->titles().titleTypesToDisplay(), QVector<int>{1});
    EXPECT_EQ(controller->titleOnPanel(), QStringLiteral("automatic"));
    EXPECT_EQ(controller->networkMax(), 3);
    for (const char *key : {"listMax", "titleTypesToDisplay", "titleOnPanel"}) {
        const auto first = log.find(key);
        ASSERT_NE(first, std::string::npos) << key;
        EXPECT_EQ(log.find(key, first + 1), std::string::npos) << key;
    }
}

TEST_F(ControllerTest, SaveStoresEverythingAndKeepsTheRest)
{
    start("graphWindowKeys=CPUTotalUsage, Network__NetworkInMinuteStats\nlater=x\n");
    perform("changeProcessListMax", 3);
    perform("changeRefreshTime", 2);
    perform("switchCheckMemory");
    perform("changeTitleToDisplayType", 2);
    perform("changeTitleToDisplayType", 3, Qt::ControlModifier);
    perform("changeTitleOnPanel", 0, Qt::NoModifier, QStringLiteral("text"));
    controller->save();
    EXPECT_EQ(
        fileText(),
        QByteArray("[General]\ncheckMemory=true\nfahrenheit=false\n"
                   "graphWindowKeys=CPUTotalUsage, Network__NetworkInMinuteStats\n"
                   "itemWidth=80\nlater=x\nlistMax=3\nnetworkMax=5\nrefreshSec=2\nshowIcon=false\n"
                   "sortByMemory=false\ntitleOnPanel=text\ntitleTypesToDisplay=2, 3\n"
                   "toggleTitleOptionArray=true, true, true, true, true, true, false, false, "
                   "true, true, true, true\n"));
}

TEST_F(ControllerTest, EverySampleShows)
{
    start();
    int shown = 0;
    QObject::connect(controller.get(), &Controller::sampleShown, [&shown] { ++shown; });
    EXPECT_FALSE(item->hasMenu());
    monitor->loadTopInfo("CPU usage: 1.00% user, 1.00% sys, 98.00% idle\n");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(item->title(), QStringLiteral("2.0%"));
    EXPECT_EQ(item->delegate, controller.get());
}

TEST_F(ControllerTest, QuitEndsTheProgram)
{
    start();
    Menu menu(QStringLiteral("Pulsebar"));
    controller->menuNeedsUpdate(menu);
    ASSERT_FALSE(menu.isEmpty());
    const MenuItem &last = menu.items().constLast();
    EXPECT_EQ(last.title, QStringLiteral("Quit"));
    controller->performAction(menu, last, Qt::NoModifier);
    EXPECT_EQ(terminations, 1);
}

TEST_F(ControllerTest, MenuSwitchesWork)
{
    start();
    perform("switchSortByMemory");
    EXPECT_TRUE(monitor->sortByMemory());
    perform("changeTitleToDisplayType", 7);
    perform("changeToggleTitleOption", 0);
    EXPECT_FALSE(controller->titles().toggleTitleOptionArray().constFirst());
    perform("noSuchAction");
    perform("");
    EXPECT_EQ(terminations, 0);
}

TEST_F(ControllerTest, OpensTheMenuBeforeTheFirstSample)
{
    start();
    controller->openMenu();
    EXPECT_EQ(item->menusOpened, 1);
    EXPECT_EQ(item->delegate, controller.get());
}

} // namespace
} // namespace pulsebar
