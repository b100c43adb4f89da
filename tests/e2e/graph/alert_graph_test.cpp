// "Show" in a notification opens the graph of what is watched, or the menu.
#include "e2e/Panel.h"
#include "e2e/TickingMachine.h"
#include "e2e/graph/GraphProgram.h"
#include "support/NotificationServer.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

namespace pulsebar::e2e {
namespace {

QVariantMap entry(int type, int falling, double threshold)
{
    return {{s("type"), type}, {s("observeType"), falling}, {s("threshold"), threshold}};
}

class AlertGraphTest : public ::testing::Test
{
protected:
    AlertGraphTest() { on.machine.setChip(0, s("fan1_input"), "01000"); }

    /// Has one alert watched from now on.
    static void watch(GraphProgram &program, const QVariantMap &entry)
    {
        ASSERT_EQ(program.set(RunningProgram::kControl, "observeArray",
                              QVariant::fromValue(QList<QVariantMap>{entry})),
                  QString());
        ASSERT_TRUE(program.waitForSamples(2));
    }
    /// Chooses "Show" in the notification that comes next.
    void chooseShow()
    {
        const qsizetype before = m_shown;
        ASSERT_TRUE(waitFor([&] { return server.all.size() > before; }));
        m_shown = server.all.size();
        server.choose(server.all.constLast().id, s("show"));
    }
    static bool opens(const GraphProgram &program, const QStringList &keys)
    {
        return waitFor([&] { return program.openKeys() == keys; });
    }

    GraphDesktop on;
    Panel panel{on.desktop};
    TickingMachine ticks{on.machine.path(QString())};
    testing::NotificationServer server{on.desktop.bus()};

private:
    qsizetype m_shown = 0;
};

TEST_F(AlertGraphTest, ShowOpensTheGraphOfWhatIsWatched)
{
    const TickingProcess compiler(on.machine, 412, "cc1plus");
    GraphProgram program(on);
    QStringList keys{s("Temperature__CPU Die")};
    QVariantMap heat = entry(17, 0, 80);
    heat.insert(s("temperaturePart"), s("CPU Die"));
    watch(program, heat);
    on.setTemperature(90);
    chooseShow();
    EXPECT_TRUE(opens(program, keys)) << program.openKeys().join(u'|').toStdString();
    EXPECT_TRUE(waitFor([this] { return !on.display.frame(s("CPU Die")).isNull(); }));

    watch(program, entry(18, 0, 3000));
    on.machine.setChip(0, s("fan1_input"), "03200");
    chooseShow();
    keys += s("FanMove__FanAverage");
    EXPECT_TRUE(opens(program, keys)) << program.openKeys().join(u'|').toStdString();

    watch(program, entry(10, 0, 50));
    ticks.work = 1000;
    chooseShow();
    keys += s("CPUTotalUsage");
    EXPECT_TRUE(opens(program, keys)) << program.openKeys().join(u'|').toStdString();
}

TEST_F(AlertGraphTest, ShowOpensTheGraphOfTheVeryProcess)
{
    GraphProgram program(on);
    QVariantMap share = entry(15, 0, 1);
    share.insert(s("processName"), s("cc1plus"));
    watch(program, share);
    const TickingProcess compiler(on.machine, 412, "cc1plus");
    chooseShow();
    EXPECT_TRUE(opens(program, {s("CPUUsage__412//cc1plus")}))
        << program.openKeys().join(u'|').toStdString();
}

TEST_F(AlertGraphTest, ShowOpensTheMenuWhereThereIsNoGraph)
{
    on.machine.addBattery(50, true);
    GraphProgram program(on);
    QVariantMap low = entry(12, 1, 20);
    low.insert(s("batteryTriggerEventType"), 0);
    watch(program, low);
    on.machine.setCharge(19, false);
    EXPECT_EQ(on.display.shownTitles(), QStringList());
    chooseShow();
    // The toolkit gives menus the program's name.
    EXPECT_TRUE(waitFor([&] { return on.display.shownTitles() == QStringList(s("Pulsebar")); }))
        << on.display.shownTitles().join(u'|').toStdString();
    EXPECT_EQ(program.openKeys(), QStringList());
}

} // namespace
} // namespace pulsebar::e2e
