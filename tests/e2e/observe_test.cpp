// Alerts as scripts see them: the list, what fires, and who was busy.
#include "e2e/RunningProgram.h"
#include "support/Text.h"

#include <QDBusArgument>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#ifdef PULSEBAR_HAS_SYSROOT
#include "e2e/SensorMachine.h"
#include "platform/TestNetwork.h"
#endif

namespace pulsebar::e2e {
namespace {

constexpr QLatin1String kControl = RunningProgram::kControl;

QVariantMap entry(int type, const QVariant &threshold, const QVariantMap &more = {})
{
    QVariantMap made{{s("type"), type}, {s("observeType"), 0}, {s("threshold"), threshold}};
    made.insert(more);
    return made;
}

class ObserveTest : public testing::Test
{
protected:
    ObserveTest() { desktop.writeSettings("[General]\nrefreshSec=1\n"); }

    static QString setList(const RunningProgram &program, const QList<QVariantMap> &entries)
    {
        return program.set(kControl, "observeArray", QVariant::fromValue(entries));
    }
    static QList<QVariantMap> list(const RunningProgram &program)
    {
        return qdbus_cast<QList<QVariantMap>>(program.get(kControl, "observeArray").value);
    }
    int client(const QStringList &arguments)
    {
        const std::unique_ptr<Process> process = desktop.startClient(arguments);
        const int status = process->waitForEnd();
        clientOutput = process->output();
        return status;
    }

    Desktop desktop;
    QString clientOutput;
};

TEST_F(ObserveTest, TheListSurvivesARestart)
{
    const QList<QVariantMap> entries{
        entry(10, 90, {{s("duration"), 20}, {s("name"), s("Busy, \"very\"")}}),
        entry(15, 62.5, {{s("processName"), s("a b")}, {s("enabled"), false}}),
        entry(18, 3000, {{s("note"), s("mine")}})};
    {
        RunningProgram program(desktop);
        EXPECT_EQ(list(program), QList<QVariantMap>());
        EXPECT_EQ(setList(program, entries), QString());
        // Stored at once: nothing is lost when the program is killed.
        EXPECT_TRUE(desktop.settings().contains("observeArray="));
        EXPECT_EQ(program.quit(), 0);
    }
    RunningProgram program(desktop);
    EXPECT_EQ(list(program), entries);
    EXPECT_EQ(setList(program, {}), QString());
    EXPECT_FALSE(desktop.settings().contains("observeArray"));
}

TEST_F(ObserveTest, BrokenEntriesAreLeftOutAndTooManyAreRefused)
{
    desktop.writeSettings("[General]\nobserveArray=[{\"type\": 10}, {\"type\": 99}, 7]\n");
    RunningProgram program(desktop);
    EXPECT_EQ(list(program), QList<QVariantMap>({{{s("type"), 10}}}));
    EXPECT_TRUE(waitFor([&] {
        return program.process().log().count(s("pulsebar.alerts: Alert ")) == 2;
    })) << program.process().log().toStdString();
    EXPECT_EQ(setList(program, {entry(10, 50), entry(15, 50), entry(10, 60)}), QString());
    EXPECT_EQ(list(program), (QList<QVariantMap>{entry(10, 50), entry(10, 60)}));
    EXPECT_EQ(setList(program, QList<QVariantMap>(65, entry(10, 1))),
              s("org.freedesktop.DBus.Error.LimitsExceeded"));
    EXPECT_EQ(list(program).size(), 2);
}

TEST_F(ObserveTest, WhatTheBusCouldNotCarryDoesNotTakeTheProgramOffIt)
{
    const auto nested = [](int levels) {
        return R"({"type": 10, "note": )" + QByteArray("{\"a\": ").repeated(levels) + "1" +
               QByteArray("}").repeated(levels) + "}";
    };
    desktop.writeSettings("[General]\nobserveArray=[" + nested(60) + ", " + nested(15) + "]\n");
    RunningProgram program(desktop);
    EXPECT_EQ(list(program).size(), 1);
    EXPECT_EQ(client({s("get"), s("observeArray")}), 0);
    EXPECT_EQ(clientOutput.count(s("\"a\"")), 15) << clientOutput.toStdString();
    EXPECT_EQ(program.quit(), 0);
}

TEST_F(ObserveTest, TheClientWritesAndReadsTheList)
{
    const QString json = s(R"([{"duration":20,"name":"Busy","note":{"a":[1,{"b":true}]},)"
                           R"("threshold":90,"type":10}])");
    {
        RunningProgram program(desktop);
        EXPECT_EQ(client({s("set"), s("observeArray"), json}), 0);
        EXPECT_EQ(client({s("get"), s("observeArray")}), 0);
        EXPECT_EQ(clientOutput.trimmed(), json);
        EXPECT_EQ(program.quit(), 0);
    }
    // Whatever stands in it, nothing is lost by a restart.
    RunningProgram program(desktop);
    EXPECT_EQ(client({s("get"), s("observeArray")}), 0);
    EXPECT_EQ(clientOutput.trimmed(), json);
}

#ifdef PULSEBAR_HAS_SYSROOT
TEST_F(ObserveTest, WhatIsSwitchedOffDoesNotFire)
{
    SensorMachine machine(desktop.useMachine(s("vm")));
    machine.addChip(0, "coretemp");
    machine.setChip(0, s("temp1_label"), "Package id 0");
    machine.setChip(0, s("temp1_input"), "45000");
    RunningProgram program(desktop);
    const QVariantMap hot = entry(17, 60, {{s("temperaturePart"), s("CPU Die")}});
    QVariantMap off = hot;
    off.insert(s("enabled"), false);
    off.insert(s("note"), s("off"));
    EXPECT_EQ(setList(program, {off, hot}), QString());
    EXPECT_EQ(list(program), (QList<QVariantMap>{off, hot}));
    ASSERT_TRUE(program.waitForSamples(2));
    machine.setChip(0, s("temp1_input"), "60000");
    ASSERT_TRUE(waitFor([&] { return !program.events.isEmpty(); }));
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.events, QVector<QVariantMap>{hot});
}

TEST_F(ObserveTest, RealTrafficFiresInItsDirection)
{
    TestNetwork network;
    TestNetwork peer;
    network.addPair("out0", peer, "in0");
    std::optional<RunningProgram> program;
    {
        const TestNetwork::Visit visit(network);
        program.emplace(desktop);
    }
    const QVariantMap out = entry(11, 2000, {{s("networkTriggerDataType"), 0}});
    const QVariantMap in = entry(11, 2000, {{s("networkTriggerDataType"), 1}});
    EXPECT_EQ(setList(*program, {in, out}), QString());
    ASSERT_TRUE(program->waitForSamples(2));
    EXPECT_EQ(program->events, QVector<QVariantMap>());
    network.send("out0", 1000, 1400);
    ASSERT_TRUE(waitFor([&] { return !program->events.isEmpty(); }));
    EXPECT_EQ(program->events, QVector<QVariantMap>{out});
    peer.send("in0", 1000, 1400);
    ASSERT_TRUE(waitFor([&] { return program->events.size() > 1; }));
    EXPECT_EQ(program->events, (QVector<QVariantMap>{out, in}));
}

TEST_F(ObserveTest, ABusyProcessFiresAndIsRemembered)
{
    RunningProgram program(desktop);
    EXPECT_EQ(setList(program, {entry(15, 3, {{s("processName"), s("pulsehog")}})}), QString());
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.events, QVector<QVariantMap>());
    const QString hogFile = desktop.folder() + s("/pulsehog");
    ASSERT_TRUE(QFile::copy(s("/bin/sh"), hogFile));
    const Process hog(hogFile, {s("-c"), s("while :; do :; done")}, desktop.environment());
    ASSERT_TRUE(waitFor([&] { return !program.events.isEmpty(); }));
    const auto isNamed = [&] {
        return client({s("culprits"), s("--since"), s("60")}) == 0 &&
               clientOutput.contains(s("pulsehog"));
    };
    ASSERT_TRUE(waitFor(isNamed)) << clientOutput.toStdString();
    static const QRegularExpression line(
        s("^\\d\\d:\\d\\d:\\d\\d \\d+\\.\\d%(: [^,]+(, [^,]+){0,2})?$"));
    for (const QString &one : clientOutput.split(u'\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(line.match(one).hasMatch()) << one.toStdString();

    const QVariant samples = program.control("culprits", {60U}).value;
    ASSERT_EQ(samples.metaType(), QMetaType::fromType<QDBusArgument>());
    EXPECT_EQ(qvariant_cast<QDBusArgument>(samples).currentSignature(), s("a(xda(sxd))"));
}
#endif

TEST_F(ObserveTest, CulpritsOfNoTimeAreNone)
{
    RunningProgram program(desktop);
    EXPECT_EQ(client({s("culprits"), s("--since=0")}), 0);
    EXPECT_EQ(clientOutput, QString());
    EXPECT_EQ(client({s("culprits"), s("--since"), s("ever")}), 2);
    EXPECT_EQ(program.control("culprits", {s("x")}).error,
              s("org.freedesktop.DBus.Error.InvalidArgs"));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(client({s("culprits")}), 4);
}

} // namespace
} // namespace pulsebar::e2e
