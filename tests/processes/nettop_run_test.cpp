#include "processes/NettopRun.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/SamplerScript.h"
#include "support/WaitFor.h"

#include <QElapsedTimer>
#include <QFile>

#include <sys/wait.h>

#include <csignal>
#include <fcntl.h>
#include <malloc.h>

namespace pulsebar {
namespace {

bool isGone(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) != 0;
}

/// Children that nobody has waited for, running ones included.
bool hasChildren()
{
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
        count += ::fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

/// What the heap holds. Under the address sanitizer 0: there its search for leaks stands in.
std::size_t heldBytes()
{
    const auto info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// A sampler's runs, together with what they gave.
class Runs
{
public:
    explicit Runs(SamplerCommand command)
        : run(std::move(command))
    {
        QObject::connect(&run, &NettopRun::reportReady, &run,
                         [this](const QByteArray &report) { reports.append(report); });
    }
    bool waitForReports(qsizetype count)
    {
        return waitFor([&] { return reports.size() >= count; });
    }
    bool waitForIdle()
    {
        return waitFor([&] { return run.processId() == 0; });
    }
    QList<QByteArray> reports;
    NettopRun run;
};

SamplerScript script(const char *line)
{
    return SamplerScript(QString::fromLatin1(line));
}

TEST(NettopRun, HandsOverWhatOneRunWrote)
{
    const SamplerScript sampler = script("printf '%s|' \"$@\"; sleep 0.05; printf more");
    Runs runs(sampler.command());
    runs.run.start();
    EXPECT_GT(runs.run.processId(), 0);
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports[0], "-L1|-m|tcp|-c|more");
    ASSERT_TRUE(runs.waitForIdle());
    EXPECT_EQ(runs.reports.size(), 1);
    EXPECT_FALSE(hasChildren());
}

TEST(NettopRun, NoSignalIsBlockedInTheChild)
{
    const SamplerScript sampler = script("exec fake_sampler masked");
    sigset_t terminate;
    ::sigemptyset(&terminate);
    ::sigaddset(&terminate, SIGTERM);
    Runs runs(sampler.command());
    ::sigprocmask(SIG_BLOCK, &terminate, nullptr);
    runs.run.start();
    ::sigprocmask(SIG_UNBLOCK, &terminate, nullptr);
    QElapsedTimer clock;
    clock.start();
    runs.run.end();
    ASSERT_TRUE(runs.waitForIdle());
    EXPECT_LT(clock.elapsed(), 1500) << "it had to be killed";
}

TEST(NettopRun, TwoHundredRunsLeaveNothingBehind)
{
    const SamplerScript sampler = script("head -c 200000 /dev/zero");
    Runs runs(sampler.command());
    QObject::connect(&runs.run, &NettopRun::reportReady, &runs.run,
                     [&](const QByteArray &report) { EXPECT_EQ(report.size(), 200000); });
    const auto runOnce = [&] {
        runs.reports.clear();
        runs.run.start();
        return runs.waitForReports(1) && runs.waitForIdle();
    };
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(runOnce());
    const int descriptors = openDescriptors();
    const std::size_t held = heldBytes();
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(runOnce());
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_FALSE(hasChildren());
    EXPECT_TRUE(runs.run.findChildren<QProcess *>().size() <= 1);
    EXPECT_LT(heldBytes(), held + 100'000);
}

TEST(NettopRun, AChildThatIsStillThereIsEndedFirst)
{
    const LogCapture log;
    const SamplerScript sampler =
        script("if mkdir \"$0.once\" 2>/dev/null; then exec fake_sampler arguments a half report; "
               "fi; echo whole");
    Runs runs(sampler.command());
    runs.run.start();
    const qint64 first = runs.run.processId();
    ASSERT_TRUE(waitFor([&] { return QFile::exists(sampler.path() + QStringLiteral(".once")); }));
    runs.run.start();
    EXPECT_EQ(runs.run.processId(), first) << "the next waits until it is gone";
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports, (QList<QByteArray>{"whole\n"}));
    EXPECT_TRUE(isGone(first));
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("still running")));
}

TEST(NettopRun, WhatAnEndedRunWroteIsNeverHandedOver)
{
    const SamplerScript sampler = script("echo half; : > \"$0.wrote\"; exec fake_sampler close");
    Runs runs(sampler.command());
    runs.run.start();
    ASSERT_TRUE(waitFor([&] { return QFile::exists(sampler.path() + QStringLiteral(".wrote")); }));
    const qint64 child = runs.run.processId();
    runs.reports.clear();
    runs.run.end();
    ASSERT_TRUE(runs.waitForIdle());
    EXPECT_TRUE(isGone(child));
    EXPECT_TRUE(runs.reports.isEmpty());
}

TEST(NettopRun, AChildThatDoesNotGoWhenAskedIsMadeTo)
{
    const LogCapture log;
    const SamplerScript sampler =
        script("if mkdir \"$0.once\" 2>/dev/null; then exec fake_sampler stubborn; fi; echo whole");
    Runs runs(sampler.command());
    runs.run.start();
    const qint64 first = runs.run.processId();
    // Until then it could still be asked in vain.
    ASSERT_TRUE(waitFor([&] {
        QFile status(QStringLiteral("/proc/%1/comm").arg(first));
        return status.open(QIODevice::ReadOnly) && status.readAll() == "fake_sampler\n";
    }));
    QElapsedTimer clock;
    clock.start();
    runs.run.start();
    runs.run.start();
    runs.run.start();
    EXPECT_LT(clock.elapsed(), 500) << "nobody waits";
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports, (QList<QByteArray>{"whole\n"}));
    EXPECT_TRUE(isGone(first));
    EXPECT_EQ(LogCapture::lines().size(), 1);
    ASSERT_TRUE(runs.waitForIdle());
    EXPECT_FALSE(hasChildren());
}

TEST(NettopRun, AChildThatClosesItsOutputAndLivesOn)
{
    const SamplerScript sampler =
        script("if mkdir \"$0.once\" 2>/dev/null; then echo one; exec fake_sampler close; fi; "
               "echo two");
    Runs runs(sampler.command());
    runs.run.start();
    const qint64 first = runs.run.processId();
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports[0], "one\n");
    EXPECT_EQ(runs.run.processId(), first);
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(2));
    EXPECT_EQ(runs.reports[1], "two\n");
    EXPECT_TRUE(isGone(first));
}

TEST(NettopRun, AChildOfTheChildThatHoldsTheOutputOpen)
{
    const SamplerScript sampler = script("exec fake_sampler heir");
    Runs runs(sampler.command());
    QElapsedTimer clock;
    clock.start();
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports[0], "ready");
    EXPECT_LT(clock.elapsed(), 2500) << "it was waited for";
    EXPECT_EQ(runs.run.processId(), 0);
}

TEST(NettopRun, AReportOfManyMegabytesIsWhole)
{
    const SamplerScript sampler = script("head -c 8388608 /dev/zero");
    Runs runs(sampler.command());
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports[0].size(), NettopRun::kLongestReport);
}

TEST(NettopRun, TenMegabytesAreNoReport)
{
    const LogCapture log;
    const SamplerScript sampler =
        script("case $(cat \"$0.log\" 2>/dev/null | wc -c) in 4) echo well; exit;; esac; "
               "echo x >> \"$0.log\"; exec fake_sampler flood 10000000");
    Runs runs(sampler.command());
    for (int i = 0; i < 2; ++i) {
        runs.run.start();
        ASSERT_TRUE(waitFor([&] { return runs.run.processId() != 0; }));
        ASSERT_TRUE(runs.waitForIdle());
        EXPECT_TRUE(runs.reports.isEmpty());
    }
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(1));
    EXPECT_EQ(runs.reports[0], "well\n");
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("without an end")));
}

TEST(NettopRun, AChildThatNeverStopsWritingIsEnded)
{
    const LogCapture log;
    const SamplerScript sampler = script("exec fake_sampler endless");
    Runs runs(sampler.command());
    const std::size_t held = heldBytes();
    for (int i = 0; i < 5; ++i) {
        runs.run.start();
        ASSERT_TRUE(runs.waitForIdle());
    }
    EXPECT_TRUE(runs.reports.isEmpty());
    EXPECT_LT(heldBytes(), held + NettopRun::kLongestReport);
    EXPECT_EQ(LogCapture::lines().size(), 1);
}

TEST(NettopRun, AMissingSamplerGivesEmptyReportsAndIsSaidOnce)
{
    const LogCapture log;
    Runs runs({[] { return QString(); }});
    runs.run.start();
    runs.run.start();
    EXPECT_EQ(runs.reports, (QList<QByteArray>{"", ""}));
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].startsWith(QStringLiteral("pulsebar.nettop: ")));
    runs.run.resetTroubles();
    runs.run.start();
    EXPECT_EQ(LogCapture::lines().size(), 2);
}

TEST(NettopRun, ASamplerThatCannotBeStartedGivesEmptyReports)
{
    const LogCapture log;
    Runs runs({[] { return QStringLiteral("/dev/null"); }});
    for (int i = 1; i <= 3; ++i) {
        runs.run.start();
        ASSERT_TRUE(runs.waitForReports(i) && runs.waitForIdle());
        EXPECT_EQ(runs.reports.size(), i) << "one report of a run";
    }
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("cannot be started")));
    runs.run.start();
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(4) && runs.waitForIdle());
    EXPECT_EQ(runs.reports, (QList<QByteArray>{"", "", "", ""}));
    EXPECT_FALSE(hasChildren());
}

TEST(NettopRun, WhatAFailingSamplerWroteIsAReportAndItsFailureIsSaidOnce)
{
    const LogCapture log;
    const SamplerScript sampler =
        script("[ -s /proc/self/fd/2 ]; readlink /proc/self/fd/2 >> \"$0.log\"; "
               "exec fake_sampler exit 3 words");
    Runs runs(sampler.command());
    for (int i = 1; i <= 3; ++i) {
        runs.run.start();
        ASSERT_TRUE(runs.waitForReports(i) && runs.waitForIdle());
    }
    EXPECT_EQ(runs.reports, (QList<QByteArray>{"words", "words", "words"}));
    ASSERT_EQ(LogCapture::lines().size(), 1) << LogCapture::lines().join(u'\n').toStdString();
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("exit status 3")));
    QFile errorOutputs(sampler.path() + QStringLiteral(".log"));
    ASSERT_TRUE(errorOutputs.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = errorOutputs.readAll().split('\n');
    EXPECT_NE(lines.value(0), "/dev/null") << "its first complaint is heard";
    EXPECT_EQ(lines.mid(1), (QList<QByteArray>{"/dev/null", "/dev/null", ""}));
}

TEST(NettopRun, ASamplerThatIsKilledFromOutside)
{
    const LogCapture log;
    const SamplerScript sampler = script("exec fake_sampler killed");
    Runs runs(sampler.command());
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(1) && runs.waitForIdle());
    EXPECT_EQ(runs.reports[0], "");
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("by signal 9")));
}

TEST(NettopRun, WhoeverHearsOfAReportMayStartTheNext)
{
    const SamplerScript sampler = script("echo report");
    Runs runs(sampler.command());
    QObject::connect(&runs.run, &NettopRun::reportReady, &runs.run, [&] {
        if (runs.reports.size() < 10)
            runs.run.start();
    });
    runs.run.start();
    ASSERT_TRUE(runs.waitForReports(10));
    ASSERT_TRUE(runs.waitForIdle());
    EXPECT_EQ(runs.reports, QList<QByteArray>(10, "report\n"));
}

TEST(NettopRun, TheEndOfTheProgramIsTheEndOfTheChild)
{
    for (const char *line : {"exec fake_sampler arguments", "exec fake_sampler stubborn"}) {
        const SamplerScript sampler = script(line);
        qint64 child = 0;
        {
            Runs runs(sampler.command());
            runs.run.start();
            child = runs.run.processId();
            EXPECT_GT(child, 0);
        }
        EXPECT_TRUE(isGone(child));
    }
    EXPECT_FALSE(hasChildren());
}

} // namespace
} // namespace pulsebar
