#include "FakeStatusItem.h"
#include "controller/Controller.h"
#include "controller/CulpritScripting.h"
#include "controller/Settings.h"
#include "engine/TopMonitor.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QDBusMetaType>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace pulsebar {
namespace {

/// The controller with a monitor whose only core is as busy as the test says.
class ControllerAlertsTest : public testing::Test
{
protected:
    void start(const QByteArray &settingsText = {})
    {
        QFile file(fileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + settingsText);
        file.close();
        settings = std::make_unique<Settings>(fileName());
        MonitorSources sources;
        sources.coreTicks = &cores;
        monitor = std::make_unique<TopMonitor>(sources, SamplerCommand{[] { return QString(); }});
        item = std::make_unique<FakeStatusItem>();
        controller = std::make_unique<Controller>(
            ControllerParts{*monitor, *item, *settings, s("program"), [] {}});
        QObject::connect(&controller->alertWatch(), &AlertWatch::alarmTold, controller.get(),
                         [this](const Alarm &alarm) { alarms += alarm; });
        controller->awakeFromNib();
    }
    ~ControllerAlertsTest() override
    {
        controller.reset();
        monitor.reset();
    }

    void sample(int percent, const QByteArray &report = "PID COMMAND %CPU\n")
    {
        m_work += static_cast<std::uint64_t>(percent);
        m_ticks += 100;
        cores.answer = {fakes::core(0, m_work, m_ticks)};
        monitor->loadTopInfo(report);
    }
    QString fileName() const { return m_folder.filePath(s("Pulsebar.conf")); }

    QTemporaryDir m_folder;
    std::uint64_t m_work = 0;
    std::uint64_t m_ticks = 0;
    fakes::CoreTicksAnswer cores;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<TopMonitor> monitor;
    std::unique_ptr<FakeStatusItem> item;
    std::unique_ptr<Controller> controller;
    QVector<Alarm> alarms;
};

TEST_F(ControllerAlertsTest, StoredAlertsAreWatchedAndTheCollectorsStayOn)
{
    start(R"(observeArray=[{"type": 10, "threshold": 50}, {"type": 18, "enabled": false}])"
          "\n");
    EXPECT_EQ(controller->alerts().list().size(), 2);
    ASSERT_EQ(monitor->observeArray().size(), 1);
    EXPECT_TRUE(monitor->monitorBattery());
    EXPECT_TRUE(monitor->runTop());
    sample(0);
    sample(10);
    EXPECT_TRUE(alarms.isEmpty());
    sample(100, "PID COMMAND %CPU\n412 hog 97.0\n");
    ASSERT_EQ(alarms.size(), 1);
    ASSERT_TRUE(alarms[0].culprit);
    EXPECT_EQ(alarms[0].culprit->name, s("hog"));
    EXPECT_EQ(alarms[0].culprit->number, 412);
    sample(100);
    EXPECT_EQ(alarms.size(), 1);
}

TEST_F(ControllerAlertsTest, TheMonitorFollowsTheList)
{
    start();
    EXPECT_TRUE(monitor->observeArray().isEmpty());
    const QString id = controller->alerts().add(AlertRule());
    EXPECT_EQ(monitor->observeArray(), controller->alerts().observeArray());
    EXPECT_EQ(monitor->observeArray().size(), 1);
    controller->alerts().setEnabled(id, false);
    EXPECT_TRUE(monitor->observeArray().isEmpty());
}

TEST_F(ControllerAlertsTest, AProcessIsWatchedByItsRecord)
{
    start(R"(observeArray=[{"type": 15, "threshold": 50, "processName": "hog"}])"
          "\n");
    sample(10, "PID COMMAND %CPU\n412 hog 10.0\n");
    EXPECT_TRUE(alarms.isEmpty());
    sample(90, "PID COMMAND %CPU\n412 hog 95.0\n");
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_NEAR(alarms[0].value, 52.5, 1e-4);
    EXPECT_EQ(alarms[0].culprit->number, 412);
}

TEST_F(ControllerAlertsTest, EverySampleIsKeptWithItsCulprits)
{
    start();
    sample(0);
    EXPECT_EQ(controller->culprits().size(), 0U);
    sample(50, "PID COMMAND %CPU\n412 hog 47.0\n");
    sample(20);
    ASSERT_EQ(controller->culprits().size(), 2U);
    EXPECT_EQ(controller->culprits().newest(1)->total, 0.5);
    EXPECT_EQ(controller->culprits().newest(1)->processes().value(0).name, s("hog"));
}

TEST_F(ControllerAlertsTest, TellsOfEachSampleThatTheLoadsGraphDraws)
{
    start();
    const auto textOf = [this](std::size_t back) {
        return controller->sampleText(s("CPUTotalUsage"), back).mid(s("14:03:12").size());
    };
    EXPECT_EQ(textOf(0), QString());
    sample(0);
    sample(50, "PID COMMAND %CPU\n412 hog 47.0\n");
    // The cores cannot be read: there is a sample, but no value in the series.
    cores.answer.reset();
    monitor->loadTopInfo("PID COMMAND %CPU\n413 unseen 99.0\n");
    EXPECT_EQ(textOf(0), s(" 50.0%: hog"));
    // Nor is one drawn of a sample that nobody published.
    sample(20, "PID COMMAND %CPU\n414 other 9.0\n");
    cores.answer = {fakes::core(0, m_work += 70, m_ticks += 100)};
    monitor->staticsDataDict();
    sample(30, "PID COMMAND %CPU\n415 newest 29.0\n415 <b> 1.0\n");
    const UsageCache drawn = monitor->cacheDataForKey(s("CPUTotalUsage")).value_or(UsageCache());
    EXPECT_EQ(drawn, (UsageCache{0.5, 0.2, 0.7, 0.3}));
    EXPECT_EQ(textOf(0), s(" 30.0%: newest, <b>"));
    EXPECT_EQ(textOf(1), QString());
    EXPECT_EQ(textOf(2), s(" 20.0%: other"));
    EXPECT_EQ(textOf(3), s(" 50.0%: hog"));
    EXPECT_EQ(textOf(4), QString());
    EXPECT_EQ(controller->sampleText(s("CPUUsage__CPU1"), 0), QString());
    EXPECT_EQ(controller->sampleText(s("CPUUsage__412//hog"), 0), QString());
}

TEST_F(ControllerAlertsTest, CulpritsInTheirWireForm)
{
    start();
    const BusMethod method = culpritsMethod(s("interface"), controller->culprits());
    EXPECT_EQ(method.signature, s("u"));
    sample(0);
    sample(50);
    const QVariant value = std::get<QVariant>(method.call({60U}));
    EXPECT_EQ(QString::fromLatin1(QDBusMetaType::typeToSignature(value.metaType())),
              s("a(xda(sxd))"));
}

} // namespace
} // namespace pulsebar
