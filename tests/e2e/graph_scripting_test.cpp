#include "e2e/RunningProgram.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <csignal>

namespace pulsebar::e2e {
namespace {

constexpr QLatin1String kControl = RunningProgram::kControl;

/// The floating graphs as scripts, the command line and the settings file have them.
class GraphScriptingTest : public testing::Test
{
protected:
    int client(const QStringList &arguments)
    {
        const std::unique_ptr<Process> process = desktop.startClient(arguments);
        const int status = process->waitForEnd();
        output = process->output();
        log = process->log();
        return status;
    }

    static QStringList keys(const RunningProgram &program)
    {
        return program.get(kControl, "graphWindowKeys").value.toStringList();
    }

    static QStringList manyKeys(int count)
    {
        QStringList many;
        for (int i = 0; i < count; ++i)
            many += s("CPUUsage__%1//process").arg(i);
        return many;
    }

    Desktop desktop;
    QString output;
    QString log;
    const QString cpu = s("CPUTotalUsage");
    const QString in = s("Network__NetworkInMinuteStats");
    const QString awkward = s("CPUUsage__412//a/b, \"c\"; 100% = {d}\n\xC3\xA4");
};

TEST_F(GraphScriptingTest, TheCommandLineOpensListsAndCloses)
{
    RunningProgram program(desktop);
    EXPECT_EQ(client({s("graph"), s("list")}), 0);
    EXPECT_EQ(output, QString());
    for (const QString &key : {in, awkward, cpu, in}) {
        EXPECT_EQ(client({s("graph"), s("show"), key}), 0);
        EXPECT_EQ(output + log, QString());
    }
    EXPECT_EQ(keys(program), (QStringList{in, awkward, cpu}));
    EXPECT_EQ(client({s("graph"), s("list")}), 0);
    EXPECT_EQ(output.section(u'\n', 0, 0), in);
    EXPECT_EQ(output.section(u'\n', 1, 1), QString(awkward).replace(u'\n', QChar(0xFFFD)));
    EXPECT_EQ(output.count(u'\n'), 3);
    EXPECT_EQ(client({s("get"), s("graphWindowKeys")}), 0);
    EXPECT_EQ(QJsonDocument::fromJson(output.toUtf8()).array(), (QJsonArray{in, awkward, cpu}));
    EXPECT_EQ(client({s("graph"), s("close"), awkward}), 0);
    EXPECT_EQ(client({s("graph"), s("close"), awkward}), 0);
    EXPECT_EQ(output + log, QString());
    EXPECT_EQ(keys(program), (QStringList{in, cpu}));
    EXPECT_EQ(client({s("graph"), s("show"), QString()}), 1);
    EXPECT_TRUE(log.contains(s("InvalidArgs"))) << log.toStdString();
    EXPECT_EQ(client({s("set"), s("graphWindowKeys"), s("x")}), 1);
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(client({s("graph"), s("list")}), 4);
}

TEST_F(GraphScriptingTest, OpenOnesComeBackUnderAnyName)
{
    for (const bool byMenu : {true, false}) {
        RunningProgram program(desktop);
        for (const QString &key : {awkward, cpu, in})
            program.control("showGraphViewForKey", {key});
        program.control("closeGraphViewForKey", {in});
        ASSERT_EQ(keys(program), (QStringList{awkward, cpu}));
        if (byMenu) {
            EXPECT_EQ(program.quit(), 0);
        } else {
            program.process().signal(SIGTERM);
            EXPECT_EQ(program.process().waitForEnd(), 0);
        }
        EXPECT_TRUE(desktop.settings().contains("\nGraphWindowSetting_CPUTotalUsage="));
    }
    RunningProgram program(desktop);
    EXPECT_EQ(keys(program), (QStringList{awkward, cpu}));
    program.control("closeGraphViewForKey", {awkward});
    program.control("closeGraphViewForKey", {cpu});
    EXPECT_EQ(program.quit(), 0);
    EXPECT_FALSE(desktop.settings().contains("graphWindowKeys"));
}

TEST_F(GraphScriptingTest, NobodyOpensThousands)
{
    desktop.writeSettings("[General]\ngraphWindowKeys=" + manyKeys(1000).join(u',').toUtf8() +
                          '\n');
    RunningProgram program(desktop);
    EXPECT_EQ(keys(program), manyKeys(256));
    EXPECT_EQ(program.control("showGraphViewForKey", {cpu}).error,
              s("org.freedesktop.DBus.Error.LimitsExceeded"));
    EXPECT_EQ(program.control("showGraphViewForKey", {manyKeys(1).constFirst()}).error, QString());
    EXPECT_EQ(program.control("showGraphViewForKey", {QString(1025, u'x')}).error,
              s("org.freedesktop.DBus.Error.InvalidArgs"));
    EXPECT_TRUE(program.waitForSamples());
    EXPECT_EQ(program.quit(), 0);
    EXPECT_EQ(program.process().log().count(s("graph windows")), 1);
}

TEST_F(GraphScriptingTest, ADamagedEntryIsAFreshOne)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n"
                          "graphWindowKeys=CPUTotalUsage, CPUUsage__CPU1, CPUUsage__CPU2\n"
                          "GraphWindowSetting_CPUTotalUsage={\"sizeWidth\": 1e300}\n"
                          "GraphWindowSetting_CPU1=@Variant(\\0\\0\\0\\x7f), \"x\n"
                          "GraphWindowSetting_CPU2={\"sizeWidth\": 300, \"sizeHeight\": 80}\n");
    RunningProgram program(desktop);
    EXPECT_EQ(keys(program).size(), 3);
    EXPECT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.quit(), 0);
    for (const char *name : {"CPUTotalUsage", "CPU1"})
        EXPECT_EQ(program.process().log().count(s("GraphWindowSetting_") + s(name)), 1)
            << program.process().log().toStdString();
    EXPECT_FALSE(program.process().log().contains(s("GraphWindowSetting_CPU2")));
    const QByteArray settings = desktop.settings();
    EXPECT_TRUE(settings.contains("GraphWindowSetting_CPUTotalUsage=\"{\\\"lineColor\\\":"))
        << settings.constData();
    EXPECT_TRUE(settings.contains("\\\"sizeWidth\\\":300,"));
}

} // namespace
} // namespace pulsebar::e2e
