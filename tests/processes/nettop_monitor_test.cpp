#include "menu/NetworkSection.h"
#include "processes/NettopMonitor.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/SamplerScript.h"
#include "support/WaitFor.h"

#include <QElapsedTimer>
#include <QFile>

#include <limits>

namespace pulsebar {
namespace {

/// Counts its runs, and gives a process a kilobyte more with each.
SamplerScript growing()
{
    return SamplerScript(
        QStringLiteral("echo x >> \"$0.log\"; n=$(wc -l < \"$0.log\"); "
                       "echo 9,a.1,,,$((n * 1024)),0,0; echo \"9,tcp4 x:1<->y:2,lo,Listen,0,0,\""));
}

QVariant of(const NettopMonitor &monitor, const char *key)
{
    return monitor.topDict()
        .value_or(QVariantMap())
        .value(QStringLiteral("a.1"))
        .toMap()
        .value(QString::fromLatin1(key));
}

class Monitored
{
public:
    explicit Monitored(SamplerCommand command)
        : monitor(std::move(command))
    {
        QObject::connect(&monitor, &NettopMonitor::topDictChanged, &monitor,
                         [this] { ++published; });
    }
    bool waitForRuns(int count)
    {
        return waitFor([&] { return published >= count; });
    }
    int published = 0;
    NettopMonitor monitor;
};

SamplerCommand missing()
{
    return {[] { return QString(); }};
}

TEST(NettopMonitor, IsOffAndKnowsNothingAtFirst)
{
    const SamplerScript sampler = growing();
    Monitored monitored(sampler.command());
    EXPECT_FALSE(monitored.monitor.runNettop());
    monitored.monitor.setRefreshSec(1);
    EXPECT_EQ(monitored.monitor.refreshSec(), 1);
    monitored.monitor.setRunNettop(false);
    EXPECT_EQ(monitored.monitor.processId(), 0);
    EXPECT_FALSE(monitored.monitor.topDict());
    EXPECT_FALSE(QFile::exists(sampler.path() + QStringLiteral(".log")));
}

TEST(NettopMonitor, RunsAtOnceAndThenAtThePace)
{
    const SamplerScript sampler = growing();
    Monitored monitored(sampler.command());
    NettopMonitor &monitor = monitored.monitor;
    monitor.setRefreshSec(1);
    QElapsedTimer clock;
    clock.start();
    monitor.setRunNettop(true);
    EXPECT_TRUE(monitor.runNettop());
    EXPECT_GT(monitor.processId(), 0);
    EXPECT_FALSE(monitor.topDict()) << "before the first run has ended";
    ASSERT_TRUE(monitored.waitForRuns(1));
    EXPECT_LT(clock.elapsed(), 900);
    EXPECT_EQ(of(monitor, "bytes_in"), QVariant(qint64(1024)));
    EXPECT_EQ(of(monitor, "bytes_in_delta"), QVariant(0));
    ASSERT_TRUE(monitored.waitForRuns(3));
    EXPECT_GE(clock.elapsed(), 1800);
    EXPECT_EQ(of(monitor, "bytes_in"), QVariant(qint64(3072)));
    EXPECT_EQ(of(monitor, "bytes_in_delta"), QVariant(1024.0));
}

TEST(NettopMonitor, SwitchingItOnTwiceIsSwitchingItOn)
{
    const SamplerScript sampler = growing();
    Monitored monitored(sampler.command());
    monitored.monitor.setRunNettop(true);
    const qint64 child = monitored.monitor.processId();
    monitored.monitor.setRunNettop(true);
    EXPECT_EQ(monitored.monitor.processId(), child);
    ASSERT_TRUE(monitored.waitForRuns(1));
    EXPECT_EQ(of(monitored.monitor, "bytes_in"), QVariant(qint64(1024)));
}

TEST(NettopMonitor, StoppingEndsTheRunAndKeepsWhatIsKnown)
{
    const SamplerScript sampler(
        QStringLiteral("if mkdir \"$0.once\" 2>/dev/null; then echo 9,a.1,,,5,6,0; exit; fi; "
                       "echo 9,b.2,,,5,6,0; exec fake_sampler arguments"));
    Monitored monitored(sampler.command());
    NettopMonitor &monitor = monitored.monitor;
    monitor.setRunNettop(true);
    ASSERT_TRUE(monitored.waitForRuns(1));
    ASSERT_TRUE(waitFor([&] { return monitor.processId() == 0; }));
    monitor.reloadNettop();
    EXPECT_GT(monitor.processId(), 0);
    monitor.setRunNettop(false);
    EXPECT_FALSE(monitor.runNettop());
    ASSERT_TRUE(waitFor([&] { return monitor.processId() == 0; }));
    EXPECT_EQ(monitored.published, 1);
    EXPECT_EQ(of(monitor, "bytes_in"), QVariant(qint64(5)));
}

TEST(NettopMonitor, AfterAPauseTheGrowthIsThatOfThePause)
{
    const SamplerScript sampler = growing();
    Monitored monitored(sampler.command());
    for (int run = 1; run <= 2; ++run) {
        monitored.monitor.setRunNettop(true);
        ASSERT_TRUE(monitored.waitForRuns(run));
        monitored.monitor.setRunNettop(false);
    }
    EXPECT_EQ(of(monitored.monitor, "bytes_in_delta"), QVariant(1024.0));
}

TEST(NettopMonitor, ANewPaceHoldsAtOnce)
{
    const SamplerScript sampler = growing();
    Monitored monitored(sampler.command());
    monitored.monitor.setRefreshSec(60);
    monitored.monitor.setRunNettop(true);
    ASSERT_TRUE(monitored.waitForRuns(1));
    monitored.monitor.setRefreshSec(1);
    ASSERT_TRUE(monitored.waitForRuns(3));
    EXPECT_EQ(monitored.monitor.refreshSec(), 1);
}

TEST(NettopMonitor, ADamagedPaceDoesNotMakeItSpin)
{
    for (const int seconds : {0, -1, std::numeric_limits<int>::min()}) {
        Monitored monitored(missing());
        monitored.monitor.setRefreshSec(seconds);
        EXPECT_EQ(monitored.monitor.refreshSec(), seconds);
        QElapsedTimer clock;
        clock.start();
        monitored.monitor.setRunNettop(true);
        ASSERT_TRUE(monitored.waitForRuns(2));
        EXPECT_GE(clock.elapsed(), 900);
    }
    Monitored monitored(missing());
    monitored.monitor.setRefreshSec(std::numeric_limits<int>::max());
    monitored.monitor.setRunNettop(true);
    EXPECT_EQ(monitored.published, 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(monitored.published, 1);
}

TEST(NettopMonitor, AMissingSamplerIsAnEmptyDictionaryAndSaidOnce)
{
    const LogCapture log;
    Monitored monitored(missing());
    monitored.monitor.setRefreshSec(1);
    monitored.monitor.setRunNettop(true);
    ASSERT_TRUE(monitored.waitForRuns(2));
    ASSERT_TRUE(monitored.monitor.topDict());
    EXPECT_TRUE(monitored.monitor.topDict()->isEmpty());
    EXPECT_EQ(LogCapture::lines().size(), 1);
}

TEST(NettopMonitor, ADictionaryOnceTakenStaysAsItIs)
{
    Monitored monitored(missing());
    monitored.monitor.readNettopData("9,a.1,,,1000,200,0");
    const QVariantMap first = *monitored.monitor.topDict();
    monitored.monitor.readNettopData("9,a.1,,,1600,200,0");
    EXPECT_EQ(of(monitored.monitor, "bytes_in_delta"), QVariant(600.0));
    EXPECT_EQ(first.value(QStringLiteral("a.1")).toMap().value(QStringLiteral("bytes_in")),
              QVariant(qint64(1000)));
    monitored.monitor.readNettopData("garbage\n\xff,,");
    EXPECT_TRUE(monitored.monitor.topDict()->isEmpty());
    monitored.monitor.readNettopData("9,a.1,,,1700,200,0");
    EXPECT_EQ(of(monitored.monitor, "bytes_in_delta"), QVariant(0)) << "it was not in the last";
    EXPECT_EQ(monitored.published, 4);
}

TEST(NettopMonitor, WhoeverHearsOfItMaySwitchItOff)
{
    Monitored monitored(missing());
    QObject::connect(&monitored.monitor, &NettopMonitor::topDictChanged, &monitored.monitor,
                     [&] { monitored.monitor.setRunNettop(false); });
    monitored.monitor.setRefreshSec(1);
    monitored.monitor.setRunNettop(true);
    EXPECT_FALSE(monitored.monitor.runNettop());
    EXPECT_FALSE(waitFor([&] { return monitored.published > 1; }, 1300));
}

TEST(NettopMonitor, ItsRecordsMakeTheMenusRows)
{
    Monitored monitored(missing());
    monitored.monitor.readNettopData("9,quiet.1,,,0,0,0\n9,a.2,,,1536,10,0");
    monitored.monitor.readNettopData("9,quiet.1,,,0,0,0\n9,a.2,,,3072,11,0\n"
                                     "9,tcp4 x:1<->y:2,lo,Established,2048,5,0\n"
                                     "9,tcpdump.9,,,1,1,0\n");
    Menu menu(QStringLiteral("menu"));
    addNetworkProcesses(menu, *monitored.monitor.topDict(), 5);
    ASSERT_EQ(menu.items().size(), 3);
    const MenuItem &busy = menu.items()[0];
    EXPECT_EQ(busy.title, QStringLiteral("\u21933.0KB(+1.5KB)/\u219111B(+1.0B):a.2"));
    ASSERT_EQ(busy.submenu->items().size(), 2);
    EXPECT_EQ(busy.submenu->items()[0].title,
              QStringLiteral("\u21932.0KB/\u21915.0B:tcp4(Established) x:1<->y:2"));
    EXPECT_EQ(busy.submenu->items()[1].title, QStringLiteral("\u21931.0B/\u21911.0B:() "));
    EXPECT_EQ(menu.items()[1].title, QStringLiteral("\u21930.0B(+0.0B)/\u21910.0B(+0.0B):quiet.1"));
    EXPECT_TRUE(menu.items()[1].submenu->isEmpty());
}

} // namespace
} // namespace pulsebar
