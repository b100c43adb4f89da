#include "FakeStatusItem.h"
#include "controller/ApplicationUtility.h"
#include "controller/Controller.h"
#include "controller/Settings.h"
#include "engine/NetworkMonitor.h"
#include "engine/TopMonitor.h"
#include "platform/LoginItems.h"
#include "platform/UrlOpener.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Notes what it is told, in order.
class FakeNetworkMonitor : public NetworkMonitor
{
public:
    bool runNettop() const override { return running; }
    void setRunNettop(bool on) override
    {
        running = on;
        orders.push_back(on ? "run" : "stop");
    }
    void setRefreshSec(int seconds) override
    {
        orders.push_back("refresh " + std::to_string(seconds));
    }
    std::optional<QVariantMap> topDict() const override { return std::nullopt; }

    bool running = false;
    std::vector<std::string> orders;
};

class FakeLoginItems : public LoginItems
{
public:
    std::optional<QVariantList> items(const QString & /*ownPath*/) override { return list; }
    bool setItems(const QVariantList &items) override
    {
        list = items;
        return true;
    }
    QVariantList list;
};

class FakeOpener : public UrlOpener
{
public:
    bool open(const QUrl & /*url*/) override
    {
        ++opened;
        if (atOpen)
            atOpen();
        return true;
    }
    int opened = 0;
    std::function<void()> atOpen;
};

class PreferenceActionsTest : public testing::Test
{
protected:
    PreferenceActionsTest()
        : application(&opener, {QCoreApplication::applicationFilePath()})
    {
    }

    ~PreferenceActionsTest() override
    {
        controller.reset();
        monitor.reset();
    }

    void start(const QByteArray &settingsText = {}, bool withParts = true)
    {
        QFile file(fileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + settingsText);
        file.close();
        settings = std::make_unique<Settings>(fileName());
        monitor = std::make_unique<TopMonitor>(MonitorSources{},
                                               SamplerCommand{[] { return QString(); }});
        ControllerParts parts{*monitor, item, *settings, QStringLiteral("program"), [] {}};
        if (withParts) {
            parts.networkMonitor = &network;
            parts.loginItems = &loginItems;
            parts.application = &application;
            parts.applicationPath = [] { return QStringLiteral("/usr/bin/pulsebar"); };
        }
        controller = std::make_unique<Controller>(parts);
        controller->awakeFromNib();
    }

    void perform(const char *action, int tag = 0)
    {
        MenuItem row;
        row.action = QString::fromLatin1(action);
        row.tag = tag;
        controller->performAction(Menu(), row, Qt::NoModifier);
    }

    QString fileName() const { return m_folder.filePath(QStringLiteral("Pulsebar.conf")); }

    QByteArray fileText() const
    {
        QFile file(fileName());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    FakeNetworkMonitor network;
    FakeLoginItems loginItems;
    FakeOpener opener;
    ApplicationUtility application;
    FakeStatusItem item;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<TopMonitor> monitor;
    std::unique_ptr<Controller> controller;

private:
    QTemporaryDir m_folder;
};

TEST_F(PreferenceActionsTest, TheNetworkMonitorStartsWithTheProgram)
{
    start();
    EXPECT_THAT(network.orders, ElementsAre("refresh 3", "run"));
}

TEST_F(PreferenceActionsTest, TheNetworkMonitorStaysOffWhenNothingOfItIsShown)
{
    start("networkMax=0\nrefreshSec=5\n");
    EXPECT_THAT(network.orders, ElementsAre("refresh 5"));
}

TEST_F(PreferenceActionsTest, NoNetworkEntriesMeansNoMonitor)
{
    start();
    network.orders.clear();
    perform("changeNetworkListMax", 0);
    EXPECT_EQ(controller->networkMax(), 0);
    perform("changeNetworkListMax", 0);
    EXPECT_THAT(network.orders, ElementsAre("stop"));
    perform("changeNetworkListMax", 3);
    EXPECT_EQ(controller->networkMax(), 3);
    EXPECT_THAT(network.orders, ElementsAre("stop", "run"));
}

TEST_F(PreferenceActionsTest, MoreNetworkEntriesOnlyChangeTheCount)
{
    start("networkMax=3\n");
    network.orders.clear();
    perform("changeNetworkListMax", 5);
    EXPECT_EQ(controller->networkMax(), 5);
    EXPECT_THAT(network.orders, IsEmpty());
}

TEST_F(PreferenceActionsTest, RefreshTimeReachesBothMonitors)
{
    start();
    network.orders.clear();
    perform("changeRefreshTime", 2);
    EXPECT_EQ(monitor->refreshSec(), 2);
    EXPECT_THAT(network.orders, ElementsAre("refresh 2"));
}

TEST_F(PreferenceActionsTest, SwitchesInvert)
{
    start();
    perform("switchShowIcon");
    perform("switchFahrenheit");
    EXPECT_TRUE(controller->showIcon());
    EXPECT_TRUE(monitor->fahrenheit());
    perform("switchShowIcon");
    perform("switchFahrenheit");
    EXPECT_FALSE(controller->showIcon());
    EXPECT_FALSE(monitor->fahrenheit());
}

TEST_F(PreferenceActionsTest, ChoicesReachTheDiskAtTheEnd)
{
    start();
    perform("switchShowIcon");
    perform("switchFahrenheit");
    perform("changeNetworkListMax", 12);
    perform("setItemWidth", 140);
    for (const char *line : {"showIcon=true", "fahrenheit=true", "networkMax=12", "itemWidth=140"})
        EXPECT_FALSE(fileText().contains(line)) << line;
    controller->save();
    for (const char *line :
         {"\nshowIcon=true\n", "\nfahrenheit=true\n", "\nnetworkMax=12\n", "\nitemWidth=140\n"})
        EXPECT_TRUE(fileText().contains(line)) << line << fileText().constData();
}

TEST_F(PreferenceActionsTest, AWidthTakesEffectAtOnce)
{
    start();
    std::vector<double> told;
    QObject::connect(controller.get(), &Controller::itemWidthChanged,
                     [&told](double width) { told.push_back(width); });
    perform("setItemWidth", 140);
    EXPECT_EQ(item.length(), 140.0);
    EXPECT_THAT(told, ElementsAre(140.0));
}

TEST_F(PreferenceActionsTest, AutoLaunchIsStoredAndListedAtOnce)
{
    start();
    perform("switchAutoLaunch");
    EXPECT_TRUE(controller->autoLaunch());
    EXPECT_TRUE(fileText().contains("\nautoLaunch=true\n")) << fileText().constData();
    ASSERT_EQ(loginItems.list.size(), 1);
    EXPECT_EQ(loginItems.list[0].toMap().value(QStringLiteral("Path")),
              QStringLiteral("/usr/bin/pulsebar"));
    perform("switchAutoLaunch");
    EXPECT_TRUE(fileText().contains("\nautoLaunch=false\n")) << fileText().constData();
    EXPECT_TRUE(loginItems.list.isEmpty());
}

TEST_F(PreferenceActionsTest, SavingLeavesAutoLaunchAlone)
{
    start("autoLaunch=true\n");
    controller->save();
    EXPECT_TRUE(fileText().contains("\nautoLaunch=true\n")) << fileText().constData();
    start();
    controller->save();
    EXPECT_FALSE(fileText().contains("autoLaunch"));
}

TEST_F(PreferenceActionsTest, TheManualIsShownAtTheFirstLaunchBeforeAnythingElse)
{
    bool sampling = true;
    opener.atOpen = [this, &sampling] { sampling = monitor->runTop(); };
    start();
    EXPECT_EQ(opener.opened, 1);
    EXPECT_FALSE(sampling);
    EXPECT_TRUE(fileText().contains("\nNotFirstLaunch=true\n")) << fileText().constData();
    start("NotFirstLaunch=true\n");
    EXPECT_EQ(opener.opened, 1);
    perform("showManual");
    EXPECT_EQ(opener.opened, 2);
}

TEST_F(PreferenceActionsTest, WorksWithoutAnyOfTheParts)
{
    start({}, false);
    perform("changeNetworkListMax", 0);
    perform("changeNetworkListMax", 4);
    perform("changeRefreshTime", 4);
    perform("showManual");
    perform("switchAutoLaunch");
    EXPECT_EQ(controller->networkMax(), 4);
    EXPECT_EQ(monitor->refreshSec(), 4);
    EXPECT_TRUE(fileText().contains("\nautoLaunch=true\n"));
    EXPECT_FALSE(fileText().contains("NotFirstLaunch"));
}

} // namespace
} // namespace pulsebar
