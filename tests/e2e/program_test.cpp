#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "e2e/TickingMachine.h"
#include "support/Text.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

namespace pulsebar::e2e {
namespace {

constexpr QLatin1String kScripting = RunningProgram::kScripting;
constexpr QLatin1String kControl = RunningProgram::kControl;
const QString kInvalidArgs = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
const QString kNoValue = QStringLiteral("org.pulsebar.Error.NoValue");
const QString kUndefinedKey = QStringLiteral("org.pulsebar.Error.UndefinedKey");

QStringList lines(const QString &log)
{
    return log.split(u'\n', Qt::SkipEmptyParts);
}

const QString kNoSampler =
    s("pulsebar.sampler: the sampler is missing; samples go on without processes");
const QString kNoNetworkSampler = s("pulsebar.nettop: the network sampler is missing; nothing is "
                                    "known of the traffic of processes");

/// The lines of a log that nobody expects. On a platform that offers nothing the program says so,
/// once for every setting with which it is tried.
QStringList unexpectedLines(const QString &log, const QStringList &expected = {})
{
    QStringList left = lines(log);
    for (const QString &line : expected)
        left.removeOne(line);
#ifndef PULSEBAR_HAS_SYSROOT
    left.removeAll(kNoSampler);
    left.removeAll(kNoNetworkSampler);
    left.removeAll(s("pulsebar.engine: the previous sample has no \"CPUUsage\""));
#endif
    return left;
}

class ProgramTest : public testing::Test
{
protected:
    int client(const QStringList &arguments)
    {
        const std::unique_ptr<Process> process = desktop.startClient(arguments);
        const int status = process->waitForEnd();
        clientOutput = process->output();
        clientLog = process->log();
        return status;
    }

    Desktop desktop;
    QString clientOutput;
    QString clientLog;
};

TEST_F(ProgramTest, ShowsALiveTitle)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_TRUE(QRegularExpression(s("^\\d+\\.\\d%$")).match(program.title()).hasMatch())
        << program.title().toStdString();
    EXPECT_FALSE(program.get(kScripting, "processes").value.isNull());
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(unexpectedLines(program.process().log()), QStringList());
}

#ifdef PULSEBAR_HAS_SYSROOT
TEST_F(ProgramTest, TitleFollowsTheMachine)
{
    TickingMachine machine(desktop.useMachine(s("vm")));
    machine.work = 10;
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    EXPECT_TRUE(waitFor([&program] { return program.title() == s("50.0%"); }))
        << program.title().toStdString();
    EXPECT_TRUE(waitFor(
        [&program] { return program.get(kScripting, "CPUTotalUsage").value == QVariant(0.5); }));
    const Reply history = program.control("cacheDataForKey", {s("CPUTotalUsage")});
    EXPECT_EQ(qdbus_cast<QList<double>>(history.value).constLast(), 0.5);
    machine.work = 0;
    EXPECT_TRUE(waitFor([&program] { return program.title() == s("0.0%"); }))
        << program.title().toStdString();
}

TEST_F(ProgramTest, EventsFireWithTheirEntry)
{
    TickingMachine machine(desktop.useMachine(s("vm")));
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    const QVariantMap entry{{s("type"), 10},
                            {s("observeType"), 0},
                            {s("threshold"), 20.0},
                            {s("note"), s("mine")},
                            {s("words"), QStringList{s("a"), s("b")}},
                            {s("bytes"), QByteArray("\x01\x02")},
                            {s("small"), QVariant::fromValue(uchar(5))},
                            {s("object"), QVariant::fromValue(QDBusObjectPath(s("/a/b")))},
                            {s("signature"), QVariant::fromValue(QDBusSignature(s("a{sv}")))}};
    EXPECT_EQ(program.set(kControl, "observeArray", QVariant::fromValue(QList<QVariantMap>{entry})),
              QString());
    EXPECT_EQ(qdbus_cast<QList<QVariantMap>>(program.get(kControl, "observeArray").value),
              QList<QVariantMap>{entry});
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_TRUE(program.events.isEmpty());
    machine.work = 1000;
    ASSERT_TRUE(waitFor([&program] { return !program.events.isEmpty(); }));
    EXPECT_EQ(program.events.constFirst(), entry);
    // The collectors stay on, and the samples go on.
    EXPECT_TRUE(program.waitForSamples(1));
}
#endif

TEST_F(ProgramTest, TellsOfItsTitleWhenItChanges)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(1));
    program.changes.clear();
    const QVariant types = QVariant::fromValue(QList<int>{2, 3, 5});
    EXPECT_EQ(program.set(kControl, "titleTypesToDisplay", types), QString());
    EXPECT_EQ(qdbus_cast<QList<int>>(program.get(kControl, "titleTypesToDisplay").value),
              (QList<int>{2, 3, 5}));
    const auto told = [&program](const char *name) {
        for (const QVariantMap &change : program.changes) {
            if (change.contains(s(name)))
                return true;
        }
        return false;
    };
    EXPECT_TRUE(waitFor([&told] { return told("title") && told("itemWidth"); }));
    EXPECT_EQ(program.get(kControl, "itemWidth").value.toDouble(), 120.0);
    EXPECT_TRUE(waitFor([&program] { return program.title().startsWith(s("In ")); }));
    EXPECT_EQ(program.title().count(s(" | ")), 2);
}

TEST_F(ProgramTest, RefusesWhatMakesNoSense)
{
    RunningProgram program(desktop);
    for (const int number : {0, 21, -1})
        EXPECT_EQ(program.set(kScripting, "listMax", number), kInvalidArgs) << number;
    for (const int number : {0, 61})
        EXPECT_EQ(program.set(kScripting, "refreshSec", number), kInvalidArgs) << number;
    EXPECT_EQ(program.set(kScripting, "listMax", s("5")), kInvalidArgs);
    EXPECT_EQ(program.get(kScripting, "listMax").value, QVariant(10));
    EXPECT_EQ(program.get(kScripting, "refreshSec").value, QVariant(3));
    for (const QList<int> &types : {QList<int>{}, QList<int>{12}, QList<int>{1, 0}})
        EXPECT_EQ(program.set(kControl, "titleTypesToDisplay", QVariant::fromValue(types)),
                  kInvalidArgs);
    EXPECT_EQ(program.set(kControl, "titleTypesToDisplay", 1), kInvalidArgs);
    EXPECT_EQ(program.set(kControl, "titleOnPanel", s("sideways")), kInvalidArgs);
    EXPECT_EQ(program.set(kControl, "observeArray", s("x")), kInvalidArgs);
    EXPECT_EQ(program.set(kControl, "title", s("x")),
              s("org.freedesktop.DBus.Error.PropertyReadOnly"));
    EXPECT_EQ(program.get(kControl, "nothing").error,
              s("org.freedesktop.DBus.Error.UnknownProperty"));
    EXPECT_EQ(program.control("nothing").error, s("org.freedesktop.DBus.Error.UnknownMethod"));
    EXPECT_EQ(program.control("quit", {s("x")}).error, kInvalidArgs);
    EXPECT_EQ(program.control("cacheDataForKey", {s("nothing")}).error, kNoValue);
    EXPECT_EQ(program.call(s("org.example.None"), s("x"), {}).error,
              s("org.freedesktop.DBus.Error.UnknownInterface"));
}

TEST_F(ProgramTest, AcceptsSettings)
{
    RunningProgram program(desktop);
    EXPECT_EQ(program.set(kScripting, "listMax", 3), QString());
    EXPECT_EQ(program.set(kScripting, "refreshSec", 1), QString());
    EXPECT_EQ(program.set(kControl, "titleOnPanel", s("strip")), QString());
    EXPECT_EQ(program.get(kScripting, "listMax").value, QVariant(3));
    EXPECT_EQ(program.get(kControl, "titleOnPanel").value, QVariant(s("strip")));
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_LE(qdbus_cast<QList<QVariantMap>>(program.get(kScripting, "processes").value).size(), 3);
}

TEST_F(ProgramTest, TitleTypeToDisplayIsUndefined)
{
    RunningProgram program(desktop);
    EXPECT_EQ(program.get(kScripting, "titleTypeToDisplay").error, kUndefinedKey);
    for (const int type : {1, 11, 0x6B547934, 0x6B543131})
        EXPECT_EQ(program.set(kScripting, "titleTypeToDisplay", type), kUndefinedKey) << type;
    for (const int other : {0, 12, 0x6B547930})
        EXPECT_EQ(program.set(kScripting, "titleTypeToDisplay", other), QString()) << other;
}

TEST_F(ProgramTest, ValuesThatAreNotThereAreLeftOut)
{
    desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), desktop.folder());
    // A recorded machine without a fan: the one that runs the test may have some.
    desktop.useMachine(s("vm"));
    desktop.writeSettings("[General]\nrefreshSec=60\n");
    RunningProgram program(desktop);
    EXPECT_EQ(program.get(kScripting, "fanMoves").error, kNoValue);
    const Reply all =
        program.call(s("org.freedesktop.DBus.Properties"), s("GetAll"), {QString(kScripting)});
    const QVariantMap values = qdbus_cast<QVariantMap>(all.value);
    EXPECT_EQ(values.value(s("listMax")), QVariant(10));
    EXPECT_FALSE(values.contains(s("fanMoves")));
    EXPECT_FALSE(values.contains(s("titleTypeToDisplay")));
    EXPECT_EQ(
        qdbus_cast<QVariantMap>(
            program.call(s("org.freedesktop.DBus.Properties"), s("GetAll"), {QString(kControl)})
                .value)
            .keys(),
        (QStringList{s("graphWindowKeys"), s("itemWidth"), s("observeArray"), s("title"),
                     s("titleOnPanel"), s("titleTypesToDisplay")}));
    EXPECT_TRUE(program.call(s("org.freedesktop.DBus.Introspectable"), s("Introspect"), {})
                    .value.toString()
                    .contains(s("<signal name=\"topDictChanged\"/>")));
    EXPECT_EQ(program.call(s("org.freedesktop.DBus.Peer"), s("Ping"), {}).error, QString());
}

TEST_F(ProgramTest, SamplesGoOnWithoutASampler)
{
    desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), desktop.folder());
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(3));
    EXPECT_EQ(program.title(), s("100.0%")); // what no report at all amounts to: nothing idle
    EXPECT_TRUE(
        qdbus_cast<QList<QVariantMap>>(program.get(kScripting, "processes").value).isEmpty());
    EXPECT_EQ(program.quit(), 0);
    const QString log = program.process().log();
    EXPECT_EQ(lines(log).count(kNoSampler), 1) << log.toStdString();
    EXPECT_EQ(unexpectedLines(log, {kNoSampler, kNoNetworkSampler}), QStringList());
}

TEST_F(ProgramTest, SavesAtQuit)
{
    desktop.writeSettings("[General]\ngraphWindowKeys=CPUTotalUsage, Temperature__CPU Die\n");
    RunningProgram program(desktop);
    program.set(kScripting, "listMax", 7);
    EXPECT_EQ(program.quit(), 0);
    EXPECT_TRUE(desktop.settings().contains("\nlistMax=7\n")) << desktop.settings().constData();
    EXPECT_TRUE(
        desktop.settings().contains("\ngraphWindowKeys=CPUTotalUsage, Temperature__CPU Die\n"));
}

class SignalTest : public ProgramTest, public testing::WithParamInterface<int>
{
};

TEST_P(SignalTest, SavesAtASignal)
{
    RunningProgram program(desktop);
    program.set(kScripting, "refreshSec", 5);
    ASSERT_TRUE(program.waitForSamples(1));
    program.process().signal(GetParam());
    EXPECT_EQ(program.process().waitForEnd(), 0);
    EXPECT_TRUE(desktop.settings().contains("\nrefreshSec=5\n")) << desktop.settings().constData();
    EXPECT_EQ(unexpectedLines(program.process().log()), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Program, SignalTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST_F(ProgramTest, SavesWhenTheDisplayIsTakenAway)
{
    RunningProgram program(desktop);
    program.set(kScripting, "listMax", 4);
    program.control("showGraphViewForKey", {s("CPUTotalUsage")});
    ASSERT_TRUE(program.waitForSamples(1));
    desktop.stopDisplay();
    EXPECT_TRUE(waitFor([&program] { return !program.process().isRunning(); }));
    for (const char *line :
         {"\nlistMax=4\n", "\ngraphWindowKeys=CPUTotalUsage\n",
          "\nGraphWindowSetting_CPUTotalUsage=\"{\\\"lineColor\\\":\\\"#ffff0000\\\""})
        EXPECT_TRUE(desktop.settings().contains(line)) << desktop.settings().constData();
}

TEST_F(ProgramTest, OutlivesItsBus)
{
    RunningProgram program(desktop);
    program.set(kScripting, "listMax", 4);
    ASSERT_TRUE(program.waitForSamples(1));
    desktop.stopBus();
    EXPECT_FALSE(waitFor([&program] { return !program.process().isRunning(); }, 1000));
    program.process().signal(SIGTERM);
    EXPECT_EQ(program.process().waitForEnd(), 0);
    EXPECT_TRUE(desktop.settings().contains("\nlistMax=4\n")) << desktop.settings().constData();
}

TEST_F(ProgramTest, RunsWithoutABus)
{
    desktop.environment().insert(s("DBUS_SESSION_BUS_ADDRESS"), s("unix:path=/nonexistent/bus"));
    desktop.environment().insert(s("QT_LOGGING_RULES"), s("pulsebar.panel.debug=true"));
    const std::unique_ptr<Process> program = desktop.startProgram();
    EXPECT_TRUE(waitFor([&program] { return program->log().contains(s("scripts cannot reach")); }))
        << program->log().toStdString();
    EXPECT_TRUE(waitFor([&program] {
        return program->log().contains(s("title is shown in a strip"));
    })) << program->log().toStdString();
    program->signal(SIGTERM);
    EXPECT_EQ(program->waitForEnd(), 0);
    EXPECT_EQ(program->log().count(s("scripts cannot reach")), 1);
}

TEST_F(ProgramTest, SurvivesDamagedSettings)
{
    const QByteArray damage =
        QByteArray("\0\xff[[[\n=\n", 9) +
        "[General]\nlistMax=many\nrefreshSec=0\nitemWidth=\"open\ntitleTypesToDisplay=-5, "
        "2147483647\ntoggleTitleOptionArray=@Variant(\\0\\0\\0\\x7f)\nshowIcon=true\nkept=\"a, "
        "b\"\n" +
        QByteArray(5000, 'x') + '\n';
    desktop.writeSettings(damage);
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.get(kScripting, "listMax").value, QVariant(10));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(program.process().log().count(s("setting listMax")), 1);
    EXPECT_EQ(program.process().log().count(s("setting toggleTitleOptionArray")), 1);
    const QByteArray saved = desktop.settings();
    EXPECT_TRUE(saved.contains("\nkept=\"a, b\"\n")) << saved.constData();
    EXPECT_TRUE(saved.contains("\nshowIcon=true\n"));
    EXPECT_TRUE(saved.contains("\nlistMax=10\n"));
}

/// Stands for a program that runs already.
class FirstProgram : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pulsebar.Pulsebar.Control1")

public:
    int menusOpened = 0;

public Q_SLOTS:
    Q_SCRIPTABLE void openMenu() { ++menusOpened; }
};

TEST_F(ProgramTest, SecondStartOpensTheFirstOnesMenu)
{
    FirstProgram first;
    ASSERT_TRUE(desktop.bus().registerObject(s("/org/pulsebar/Pulsebar"), &first,
                                             QDBusConnection::ExportScriptableSlots));
    ASSERT_TRUE(desktop.bus().registerService(s("org.pulsebar.Pulsebar")));
    const std::unique_ptr<Process> second = desktop.startProgram();
    EXPECT_EQ(second->waitForEnd(), 0);
    EXPECT_EQ(first.menusOpened, 1);
    EXPECT_EQ(second->log(), QString());
    EXPECT_FALSE(QFile::exists(desktop.settingsFile()));
}

TEST_F(ProgramTest, SecondStartLeavesTheFirstRunning)
{
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(1));
    EXPECT_EQ(desktop.startProgram()->waitForEnd(), 0);
    EXPECT_TRUE(program.waitForSamples(1));
    // The menu is open now, and the program can still be ended.
    EXPECT_EQ(program.quit(), 0);
}

TEST_F(ProgramTest, CommandLine)
{
    desktop.environment().remove(s("DISPLAY"));
    const auto help = desktop.startProgram({s("--help")});
    EXPECT_EQ(help->waitForEnd(), 0);
    EXPECT_TRUE(help->output().startsWith(s("Usage: pulsebar\n")));
    const auto version = desktop.startProgram({s("--version")});
    EXPECT_EQ(version->waitForEnd(), 0);
    EXPECT_TRUE(QRegularExpression(s("^pulsebar \\d+\\.\\d+\\.\\d+\n$"))
                    .match(version->output())
                    .hasMatch());
    const auto unknown = desktop.startProgram({s("--nonsense")});
    EXPECT_EQ(unknown->waitForEnd(), 2);
    EXPECT_TRUE(unknown->log().contains(s("--nonsense")));
    EXPECT_EQ(unknown->output(), QString());
}

TEST_F(ProgramTest, WithoutADisplayItSaysSo)
{
    for (const char *display : {"", ":59999"}) {
        desktop.environment().insert(s("DISPLAY"), s(display));
        const auto program = desktop.startProgram();
        EXPECT_EQ(program->waitForEnd(), 1) << display;
        EXPECT_TRUE(program->log().endsWith(
            s("there is no display to show anything on (is DISPLAY set?)\n")))
            << display;
    }
}

TEST_F(ProgramTest, ClientAsksAndSteers)
{
    desktop.useMachine(s("vm")); // which has no fan
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(client({s("get"), s("listMax")}), 0);
    EXPECT_EQ(clientOutput, s("10\n"));
    EXPECT_EQ(client({s("set"), s("listMax"), s("5")}), 0);
    EXPECT_EQ(clientOutput + clientLog, QString());
    EXPECT_EQ(program.get(kScripting, "listMax").value, QVariant(5));
    EXPECT_EQ(client({s("set"), s("listMax"), s("50")}), 1);
    EXPECT_TRUE(clientLog.contains(kInvalidArgs));
    EXPECT_EQ(client({s("set"), s("titleTypesToDisplay"), s("2,3")}), 0);
    EXPECT_EQ(qdbus_cast<QList<int>>(program.get(kControl, "titleTypesToDisplay").value),
              (QList<int>{2, 3}));
    EXPECT_EQ(client({s("get"), s("titleTypeToDisplay")}), 1);
    EXPECT_EQ(client({s("get"), s("fanMoves")}), 3);
    EXPECT_EQ(client({s("history"), s("nothing")}), 3);
    EXPECT_EQ(client({s("get"), s("nothing")}), 1);
    EXPECT_EQ(client({s("dance")}), 2);
    EXPECT_EQ(client({s("get"), s("informationDictionary")}), 0);
    EXPECT_TRUE(
        QJsonDocument::fromJson(clientOutput.toUtf8()).object().contains(s("CPUTotalUsage")));
    EXPECT_EQ(client({s("title")}), 0);
    EXPECT_EQ(clientOutput.count(u'\n'), 1);
    EXPECT_EQ(client({s("menu")}), 0);
    EXPECT_EQ(client({s("quit")}), 0);
    EXPECT_EQ(program.process().waitForEnd(), 0);
    EXPECT_EQ(client({s("title")}), 4);
    EXPECT_EQ(clientLog, s("pulsebar is not running\n"));
    EXPECT_EQ(client({s("watch")}), 4);
}

TEST_F(ProgramTest, ClientWithoutABus)
{
    desktop.environment().insert(s("DBUS_SESSION_BUS_ADDRESS"), s("unix:path=/nonexistent/bus"));
    EXPECT_EQ(client({s("title")}), 4);
    EXPECT_EQ(clientLog, s("pulsebar is not running\n"));
}

TEST_F(ProgramTest, ClientFollowsTheSamples)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    const auto plain = desktop.startClient({s("watch")});
    const auto bar = desktop.startClient({s("watch"), s("--format"), s("i3bar")});
    const Process cutShort(
        s("sh"), {s("-c"), s("\"$0\" watch | head -n 1"), s(PULSEBAR_PROGRAMS "/pulsebarctl")},
        desktop.environment());
    const auto waybar = desktop.startClient({s("watch"), s("--format=waybar")});
    ASSERT_TRUE(waitFor([&] {
        return plain->output().count(u'\n') >= 2 && bar->output().count(u'\n') >= 4 &&
               waybar->output().count(u'\n') >= 2;
    }));
    EXPECT_TRUE(plain->output().section(u'\n', 0, 0).endsWith(u'%'));
    EXPECT_TRUE(bar->output().startsWith(s("{\"version\":1}\n[\n[{")));
    EXPECT_FALSE(QJsonDocument::fromJson(bar->output().section(u'\n', 1).trimmed().toUtf8() + ']')
                     .array()
                     .isEmpty());
    const QJsonObject line =
        QJsonDocument::fromJson(waybar->output().section(u'\n', 0, 0).toUtf8()).object();
    EXPECT_EQ(line.keys(), (QStringList{s("class"), s("text"), s("tooltip")}));
    EXPECT_TRUE(line.value(s("text")).toString().endsWith(u'%'));
    // One of them is interrupted, one loses its reader, one loses the program.
    plain->signal(SIGINT);
    EXPECT_TRUE(waitFor([&plain] { return !plain->isRunning(); }));
    EXPECT_TRUE(waitFor([&cutShort] { return !cutShort.isRunning(); }));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(waybar->waitForEnd(), 4);
    EXPECT_TRUE(waybar->log().contains(s("pulsebar is not running")));
}

TEST_F(ProgramTest, PanelShowsTheItemBeforeTheFirstSample)
{
    const Panel panel(desktop);
    QFile sampler(desktop.folder() + s("/pulsebar-top"));
    ASSERT_TRUE(sampler.open(QIODevice::WriteOnly));
    sampler.write("#!/bin/sh\nexec sleep 60\n");
    sampler.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    sampler.close();
    desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), desktop.folder());
    RunningProgram program(desktop);
    ASSERT_TRUE(waitFor([&panel] { return !panel.items.isEmpty(); }));
    EXPECT_EQ(program.title(), s("Usage"));
}

TEST_F(ProgramTest, PanelGetsTheTitle)
{
    const Panel panel(desktop);
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(waitFor([&panel] { return !panel.items.isEmpty(); }));
    EXPECT_EQ(panel.items.constFirst(),
              s("org.kde.StatusNotifierItem-%1-1").arg(program.process().pid()));
    const auto itemProperty = [&](const char *name) {
        QDBusMessage get =
            QDBusMessage::createMethodCall(panel.items.constFirst(), s("/StatusNotifierItem"),
                                           s("org.freedesktop.DBus.Properties"), s("Get"));
        get.setArguments({s("org.kde.StatusNotifierItem"), s(name)});
        return qvariant_cast<QDBusVariant>(desktop.bus().call(get).arguments().value(0))
            .variant()
            .toString();
    };
    EXPECT_EQ(itemProperty("Id"), s("pulsebar"));
    EXPECT_TRUE(waitFor([&] { return itemProperty("XAyatanaLabel").endsWith(u'%'); }));
    EXPECT_EQ(itemProperty("XAyatanaLabelGuide"), s("100.0%"));
    EXPECT_TRUE(waitFor([&] { return itemProperty("Title") == program.title(); }));
}

} // namespace
} // namespace pulsebar::e2e

#include "program_test.moc"
