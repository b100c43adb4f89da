#include "engine/SamplerProcess.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/SamplerScript.h"
#include "support/WaitFor.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace pulsebar {
namespace {

bool isGone(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) != 0;
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
        count += ::fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

/// A sampler together with the samples it gave.
class SampledRun
{
public:
    explicit SampledRun(SamplerCommand command)
        : sampler(std::move(command))
    {
        QObject::connect(&sampler, &SamplerProcess::sampleReady, &sampler,
                         [this](const QByteArray &data) { samples.append(data); });
    }
    bool waitForSamples(qsizetype count)
    {
        return waitFor([&] { return samples.size() >= count; });
    }
    QList<QByteArray> samples;
    SamplerProcess sampler;
};

TEST(SamplerProcess, HandsTheArgumentsOverAndTheOutputBack)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler arguments \"$@\""));
    SampledRun run(script.command());
    run.sampler.start({QStringLiteral("-l"), QStringLiteral("a b"), QString()}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_EQ(run.samples[0], "-l a b ");
    EXPECT_TRUE(run.sampler.isActive());
    EXPECT_GT(run.sampler.processId(), 0);
}

TEST(SamplerProcess, AMegabyteWrittenAtOnceIsOneSample)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler flood 1000000"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_EQ(run.samples.size(), 1);
    EXPECT_EQ(run.samples[0].size(), 1000000);
}

TEST(SamplerProcess, MoreThanThePipeHoldsComesInPiecesAndCompletely)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler flood 9000000"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    const auto received = [&] {
        qsizetype sum = 0;
        for (const QByteArray &sample : run.samples)
            sum += sample.size();
        return sum;
    };
    EXPECT_TRUE(waitFor([&] { return received() == 9000000; }));
    for (const QByteArray &sample : run.samples)
        EXPECT_LT(sample.size(), 5 << 20);
}

/// Spends that long with each sample, as an application does that has a lot to parse.
void makeSamplesDear(SampledRun &run, int milliseconds)
{
    QObject::connect(&run.sampler, &SamplerProcess::sampleReady, &run.sampler, [milliseconds] {
        QElapsedTimer busy;
        busy.start();
        while (busy.elapsed() < milliseconds)
            ;
    });
}

TEST(SamplerProcess, ASamplerThatNeverStopsWritingLeavesUsMostOfOurTime)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler endless"));
    SampledRun run(script.command());
    makeSamplesDear(run, 20);
    run.sampler.start({}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(run.waitForSamples(4));
    EXPECT_GE(clock.elapsed(), 3 * 9 * 20);
    for (const QByteArray &sample : run.samples)
        EXPECT_LT(sample.size(), 5 << 20);
}

TEST(SamplerProcess, ANewRunNeedNotWaitForThePauseOfTheOld)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler arguments \"$@\""));
    SampledRun run(script.command());
    makeSamplesDear(run, 20);
    const auto restart = [&] { run.sampler.start({QString::number(run.samples.size())}, 1); };
    QObject::connect(&run.sampler, &SamplerProcess::sampleReady, &run.sampler, [&] {
        if (run.samples.size() < 20)
            QTimer::singleShot(0, &run.sampler, restart);
    });
    QElapsedTimer clock;
    clock.start();
    restart();
    ASSERT_TRUE(run.waitForSamples(20));
    EXPECT_EQ(run.samples[19], "19");
    EXPECT_LT(clock.elapsed(), 19 * 9 * 20);
}

TEST(SamplerProcess, ASamplerThatEndsIsFollowedByEmptySamplesAtThePace)
{
    const LogCapture log;
    const SamplerScript script(
        QStringLiteral("echo start >> \"$0.log\"; exec fake_sampler exit 3 words"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    ASSERT_TRUE(run.waitForSamples(2));
    EXPECT_EQ(run.samples, (QList<QByteArray>{"words", ""}));
    QElapsedTimer pause;
    pause.start();
    ASSERT_TRUE(run.waitForSamples(4));
    EXPECT_GE(pause.elapsed(), 1500);
    EXPECT_EQ(run.samples[3], "");
    EXPECT_TRUE(run.sampler.isActive());

    EXPECT_EQ(QFileInfo(script.path() + QStringLiteral(".log")).size(), 6) << "started once";
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("exit status 3")));
}

TEST(SamplerProcess, AProgramThatIsMissingGivesAnEmptySampleAtOnce)
{
    for (const QString &path : {QString(), QStringLiteral("/nonexistent/sampler")}) {
        const LogCapture log;
        SampledRun run({[path] { return path; }});
        run.sampler.start({}, 3600);
        ASSERT_TRUE(run.waitForSamples(1));
        EXPECT_EQ(run.samples[0], "");
        EXPECT_TRUE(waitFor([] { return LogCapture::lines().size() == 1; }));
        EXPECT_TRUE(LogCapture::lines()[0].startsWith(QStringLiteral("pulsebar.sampler: ")));
        EXPECT_EQ(run.sampler.processId(), 0);
    }
}

TEST(SamplerProcess, ADeathBySignalIsSaid)
{
    const LogCapture log;
    const SamplerScript script(QStringLiteral("exec fake_sampler killed"));
    SampledRun run(script.command());
    run.sampler.start({}, 3600);
    ASSERT_TRUE(run.waitForSamples(1));
    ASSERT_TRUE(waitFor([] { return !LogCapture::lines().isEmpty(); }));
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("signal 9")));
}

TEST(SamplerProcess, ASamplerThatOnlyClosesItsOutputIsAskedToGo)
{
    const LogCapture log;
    const SamplerScript script(QStringLiteral("exec fake_sampler close"));
    SampledRun run(script.command());
    run.sampler.start({}, 3600);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_TRUE(waitFor([&] { return run.sampler.processId() == 0; }));
    ASSERT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(LogCapture::lines()[0].contains(QStringLiteral("signal 15")));
    EXPECT_EQ(run.samples, (QList<QByteArray>{""}));
}

TEST(SamplerProcess, ASamplerThatClosesItsOutputHasEnded)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler close"));
    SampledRun run(script.command());
    run.sampler.start({}, 3600);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_EQ(run.samples[0], "");
    const qint64 pid = run.sampler.processId();
    EXPECT_GT(pid, 0);
    run.sampler.stop();
    EXPECT_TRUE(waitFor([&] { return isGone(pid); }));
}

TEST(SamplerProcess, AnHeirThatHoldsThePipeDoesNotHoldTheSamples)
{
    const LogCapture log;
    const SamplerScript script(QStringLiteral("exec fake_sampler heir"));
    SampledRun run(script.command());
    run.sampler.start({}, 3600);
    ASSERT_TRUE(run.waitForSamples(2));
    EXPECT_EQ(run.samples, (QList<QByteArray>{"ready", ""}));
}

TEST(SamplerProcess, SeveralStartsInOneTurnLaunchOneProcess)
{
    const SamplerScript script(
        QStringLiteral("echo start >> \"$0.log\"; exec fake_sampler arguments \"$@\""));
    SampledRun run(script.command());
    for (int i = 0; i < 5; ++i)
        run.sampler.start({QString::number(i)}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_EQ(run.samples[0], "4");
    EXPECT_EQ(QFileInfo(script.path() + QStringLiteral(".log")).size(), 6);
}

TEST(SamplerProcess, WhatTheOldOneWroteNeverReachesTheNewRun)
{
    const SamplerScript script(
        QStringLiteral("if [ \"$1\" = old ]; then echo old; : > \"$0.done\"; exec fake_sampler "
                       "close; fi; exec fake_sampler arguments \"$@\""));
    SampledRun run(script.command());
    run.sampler.start({QStringLiteral("old")}, 1);
    ASSERT_TRUE(waitFor([&] { return run.sampler.processId() > 0; }));
    // Its output is in the pipe before the event loop can look.
    while (!QFileInfo::exists(script.path() + QStringLiteral(".done")))
        QThread::msleep(1);
    run.samples.clear();
    run.sampler.start({QStringLiteral("new")}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    EXPECT_EQ(run.samples[0], "new");
}

TEST(SamplerProcess, StoppingEndsTheProcessAndTheSamples)
{
    const LogCapture log;
    const SamplerScript script(QStringLiteral("exec fake_sampler arguments ready"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    const qint64 pid = run.sampler.processId();
    run.sampler.stop();
    EXPECT_FALSE(run.sampler.isActive());
    EXPECT_TRUE(waitFor([&] { return isGone(pid); }));
    EXPECT_EQ(run.samples.size(), 1);
    EXPECT_TRUE(LogCapture::lines().isEmpty());
}

TEST(SamplerProcess, StoppingBeforeTheLaunchLaunchesNothing)
{
    bool asked = false;
    SampledRun run({[&] {
        asked = true;
        return QString();
    }});
    run.sampler.start({}, 1);
    run.sampler.stop();
    waitFor([] { return false; }, 20);
    EXPECT_FALSE(asked);
    EXPECT_TRUE(run.samples.isEmpty());
}

TEST(SamplerProcess, AStubbornSamplerIsKilledWithoutWaitingForIt)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler stubborn"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    ASSERT_TRUE(run.waitForSamples(1));
    const qint64 pid = run.sampler.processId();
    QElapsedTimer clock;
    clock.start();
    run.sampler.stop();
    EXPECT_LT(clock.elapsed(), 1000);
    EXPECT_TRUE(waitFor([&] { return isGone(pid); }));
    EXPECT_GE(clock.elapsed(), 1000);
}

TEST(SamplerProcess, NothingOutlivesTheMonitor)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler stubborn"));
    qint64 pid = 0;
    {
        SampledRun run(script.command());
        run.sampler.start({}, 1);
        ASSERT_TRUE(run.waitForSamples(1));
        pid = run.sampler.processId();
        ASSERT_GT(pid, 0);
    }
    EXPECT_TRUE(isGone(pid));
}

TEST(SamplerProcess, RestartsLeaveNoDescriptorsBehind)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler arguments \"$@\""));
    SampledRun run(script.command());
    int before = 0;
    for (int i = 0; i < 12; ++i) {
        run.samples.clear();
        run.sampler.start({QString::number(i)}, 1);
        ASSERT_TRUE(run.waitForSamples(1));
        if (i == 2) // by now everything that is made once is there
            before = openDescriptors();
    }
    EXPECT_TRUE(waitFor([&] { return openDescriptors() <= before; }));
}

TEST(SamplerProcess, TheSamplerDoesNotInheritBlockedSignals)
{
    sigset_t terminate;
    sigset_t before;
    ::sigemptyset(&terminate);
    ::sigaddset(&terminate, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &terminate, &before);
    const SamplerScript script(QStringLiteral("exec fake_sampler masked"));
    SampledRun run(script.command());
    run.sampler.start({}, 1);
    EXPECT_TRUE(run.waitForSamples(1));
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(run.samples.value(0), "open");
}

TEST(SamplerProcess, MayBeStoppedAndRestartedFromItsOwnSample)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler exit 0 \"$1\""));
    SampledRun run(script.command());
    QObject::connect(&run.sampler, &SamplerProcess::sampleReady, &run.sampler, [&] {
        if (run.samples.size() == 1)
            run.sampler.start({QStringLiteral("second")}, 3600);
        else if (run.samples.size() == 2)
            run.sampler.stop();
    });
    run.sampler.start({QStringLiteral("first")}, 3600);
    ASSERT_TRUE(run.waitForSamples(2));
    waitFor([] { return false; }, 50);
    EXPECT_EQ(run.samples, (QList<QByteArray>{"first", "second"}));
}

} // namespace
} // namespace pulsebar
