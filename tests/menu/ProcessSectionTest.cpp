#include "menu/ProcessSection.h"

#include "MenuReading.h"
#include "MenuSamples.h"
#include "platform/Processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using reading::deeds;
using reading::titlesBelow;
using samples::process;
using testing::ElementsAre;

class FakeHeld : public HeldProcess
{
public:
    explicit FakeHeld(qint64 pid)
        : m_pid(pid)
    {
    }
    qint64 pid() const override { return m_pid; }
    quint64 startTime() const override { return 1; }
    bool isRunning() const override { return true; }
    bool askToEnd() override { return false; }
    int endDescriptor() const override { return -1; }

private:
    qint64 m_pid;
};

MenuItem rowOf(const QVariantMap &entry, const ProcessMenuState &state = {})
{
    return processMenuItemForDictionary(entry, state);
}

QVariantMap with(QVariantMap entry, const char *key, const QVariant &value)
{
    entry.insert(QString::fromLatin1(key), value);
    return entry;
}

TEST(ProcessSection, TellsShareAndName)
{
    const MenuItem row = rowOf(process(QStringLiteral("412"), QStringLiteral("Finder")));
    EXPECT_EQ(row.title, QStringLiteral("12.5% : Finder"));
    EXPECT_EQ(reading::deed(row), "chooseProcess > controller");
    EXPECT_EQ(row.submenu->title(), QStringLiteral("CPUUsage__412//Finder"));
    EXPECT_TRUE(row.image.isEmpty());
    EXPECT_EQ(row.process, nullptr);
}

TEST(ProcessSection, AShortShareKeepsItsNumber)
{
    EXPECT_EQ(rowOf(process(QStringLiteral("5"), QStringLiteral("x"), QStringLiteral("0.5"))).title,
              QStringLiteral("50.0% : x"));
    EXPECT_EQ(
        rowOf(process(QStringLiteral("5"), QStringLiteral("x"), QStringLiteral("1.234567"))).title,
        QStringLiteral("123.5% : x"));
}

TEST(ProcessSection, DetailsOfALinuxProcess)
{
    QVariantMap entry = process(QStringLiteral("412"), QStringLiteral("Finder"));
    entry = with(entry, "CPUTime", QStringLiteral("01:23.45"));
    entry = with(entry, "Thread", QStringLiteral("20/1"));
    entry = with(entry, "UNIXSystemCall", QStringLiteral("8910"));
    entry = with(entry, "EnergyUsage", QStringLiteral("3.26"));
    const MenuItem row = rowOf(entry);
    EXPECT_THAT(titlesBelow(row),
                ElementsAre("PID: 412", "User: somebody", "-", "CPU Time: 01:23.45",
                            "Threads: 20/1", "UNIX System Calls: 8910", "Energy Usage: 3.3%", "-",
                            "Quit", "Force Quit"));
    EXPECT_THAT(deeds(*row.submenu),
                ElementsAre("dummy > controller", "dummy > controller", "-", "dummy > controller",
                            "dummy > controller", "dummy > controller", "dummy > controller", "-",
                            "quitProcess > controller", "killProcess > controller"));
}

TEST(ProcessSection, EveryDetailInItsOrder)
{
    QVariantMap entry = process(QStringLiteral("412"), QStringLiteral("Finder"));
    for (const char *key :
         {"EnergyUsage", "MachSystemCall", "UNIXSystemCall", "MachMessageRecieve",
          "MachMessageSent", "PageIns", "TotalMemorySize", "RealMemorySize", "Thread", "CPUTime"})
        entry = with(entry, key, QStringLiteral("1"));
    EXPECT_THAT(titlesBelow(rowOf(entry)),
                ElementsAre("PID: 412", "User: somebody", "-", "CPU Time: 1", "Threads: 1", "-",
                            "Real Memory: 1", "Total Memory: 1", "Page Ins: 1", "-",
                            "Mach Messages Sent: 1", "Mach Messages Received: 1",
                            "UNIX System Calls: 1", "Mach System Calls: 1", "-",
                            "Energy Usage: 1.0%", "-", "Quit", "Force Quit"));
}

TEST(ProcessSection, NoLineBelowThreadsWithoutMessages)
{
    QVariantMap entry =
        with(process(QStringLiteral("4"), QStringLiteral("x")), "Thread", QStringLiteral("1"));
    entry = with(entry, "RealMemorySize", QStringLiteral("9M"));
    EXPECT_THAT(titlesBelow(rowOf(entry)),
                ElementsAre("PID: 4", "User: somebody", "-", "Threads: 1", "Real Memory: 9M", "-",
                            "Quit", "Force Quit"));
}

TEST(ProcessSection, ProcessesOfTheSystemAreEndedAsRoot)
{
    const QVariantMap entry = process(QStringLiteral("4"), QStringLiteral("x"));
    for (const char *user : {"root", "daemon", "_spotlight", "_"}) {
        const MenuItem row = rowOf(with(entry, "User", QString::fromLatin1(user)));
        const MenuItem &force = row.submenu->items().constLast();
        EXPECT_EQ(force.title, QStringLiteral("Force Quit as root")) << user;
        EXPECT_EQ(reading::deed(force), "killProcessAsRoot > controller") << user;
    }
    for (const char *user : {"somebody", "", "rooty", "Root", "daemons", "a_b"}) {
        const MenuItem row = rowOf(with(entry, "User", QString::fromLatin1(user)));
        const MenuItem &force = row.submenu->items().constLast();
        EXPECT_EQ(force.title, QStringLiteral("Force Quit")) << user;
        EXPECT_EQ(reading::deed(force), "killProcess > controller") << user;
    }
}

TEST(ProcessSection, StatisticsAndGraph)
{
    ProcessMenuState state;
    state.monitorProcessUsage = true;
    QString asked;
    state.usageInfoDictForKey = [&asked](const QString &key) {
        asked = key;
        return QVariantMap{{QStringLiteral("usageInfo"), samples::record(0.045, 0.9, 0.0)}};
    };
    const MenuItem row = rowOf(process(QStringLiteral("4"), QStringLiteral("x")), state);
    EXPECT_EQ(asked, QStringLiteral("4//x"));
    EXPECT_THAT(titlesBelow(row),
                ElementsAre("PID: 4", "User: somebody", "-", "-", "Average: 4.5%", "Maximum: 90.0%",
                            "Minimum: 0.0%", "Show Graph", "-", "Quit", "Force Quit"));
    for (int i = 4; i < 8; ++i)
        EXPECT_EQ(reading::deed(row.submenu->items()[i]), "showGraphView > controller");
}

TEST(ProcessSection, WithoutARecordNoStatistics)
{
    ProcessMenuState state;
    state.monitorProcessUsage = true;
    const std::vector<std::string> bare{"PID: 4", "User: somebody", "-",         "-",
                                        "-",      "Quit",           "Force Quit"};
    const QVariantMap entry = process(QStringLiteral("4"), QStringLiteral("x"));
    EXPECT_EQ(titlesBelow(rowOf(entry, state)), bare);
    state.usageInfoDictForKey = [](const QString & /*key*/) { return std::nullopt; };
    EXPECT_EQ(titlesBelow(rowOf(entry, state)), bare);
    state.usageInfoDictForKey = [](const QString & /*key*/) {
        return QVariantMap{{QStringLiteral("usageInfo"), QStringLiteral("none")}};
    };
    EXPECT_EQ(titlesBelow(rowOf(entry, state)), bare);
    state.monitorProcessUsage = false;
    EXPECT_EQ(titlesBelow(rowOf(entry, state)).size(), bare.size() - 1);
}

TEST(ProcessSection, AKnownPathCanBeShown)
{
    ProcessMenuState state;
    state.pathForPID = [](const QString &pid) {
        return pid == QLatin1String("4") ? QStringLiteral("/usr/bin/x") : QString();
    };
    const MenuItem known = rowOf(process(QStringLiteral("4"), QStringLiteral("x")), state);
    EXPECT_THAT(titlesBelow(known), ElementsAre("PID: 4", "User: somebody", "-", "-",
                                                "Show in Finder", "-", "Quit", "Force Quit"));
    EXPECT_EQ(reading::deed(known.submenu->items()[4]), "showProcessInFinder > controller");
    const MenuItem unknown = rowOf(process(QStringLiteral("5"), QStringLiteral("x")), state);
    EXPECT_EQ(titlesBelow(unknown).size(), 6);
}

TEST(ProcessSection, IconOnlyWhenWanted)
{
    int asked = 0;
    ProcessMenuState state;
    state.iconForPID = [&asked](const QString &pid) {
        ++asked;
        return QStringLiteral("icon-") + pid;
    };
    const QVariantMap entry = process(QStringLiteral("4"), QStringLiteral("x"));
    EXPECT_TRUE(rowOf(entry, state).image.isEmpty());
    EXPECT_EQ(asked, 0);
    state.showIcon = true;
    EXPECT_EQ(rowOf(entry, state).image, QStringLiteral("icon-4"));
}

TEST(ProcessSection, RowsThatActHoldTheProcess)
{
    QStringList asked;
    ProcessMenuState state;
    state.pathForPID = [](const QString & /*pid*/) { return QStringLiteral("/usr/bin/x"); };
    state.hold = [&asked](const QString &pid) {
        asked += pid;
        return std::make_shared<FakeHeld>(pid.toLongLong());
    };
    const MenuItem row = rowOf(process(QStringLiteral("412"), QStringLiteral("x")), state);
    EXPECT_EQ(asked, QStringList{QStringLiteral("412")});
    ASSERT_NE(row.process, nullptr);
    EXPECT_EQ(row.process->pid(), 412);
    for (const MenuItem &below : row.submenu->items()) {
        const bool acts = below.action.endsWith(QLatin1String("Process")) ||
                          below.action == QLatin1String("showProcessInFinder");
        EXPECT_EQ(below.process, acts ? row.process : nullptr) << below.title.toStdString();
    }
}

TEST(ProcessSection, ANumbersSuffixIsNoPartOfIt)
{
    QString asked;
    ProcessMenuState state;
    state.hold = [&asked](const QString &pid) {
        asked = pid;
        return nullptr;
    };
    const MenuItem row = rowOf(process(QStringLiteral("412-2"), QStringLiteral("x")), state);
    EXPECT_EQ(asked, QStringLiteral("412"));
    EXPECT_EQ(row.submenu->items()[0].title, QStringLiteral("PID: 412-2"));
    rowOf(process(QStringLiteral("-1"), QStringLiteral("x")), state);
    EXPECT_TRUE(asked.isEmpty());
}

TEST(ProcessSection, AnEntryWithoutAnything)
{
    const MenuItem row = rowOf({});
    EXPECT_EQ(row.title, QStringLiteral("0.0% : "));
    EXPECT_EQ(row.submenu->title(), QStringLiteral("CPUUsage__"));
    EXPECT_THAT(titlesBelow(row), ElementsAre("-", "Quit", "Force Quit"));
}

TEST(ProcessSection, WithoutANumberTheNameIsTheKey)
{
    QVariantMap entry = process(QString(), QStringLiteral("x"));
    entry.remove(QStringLiteral("PID"));
    EXPECT_EQ(rowOf(entry).submenu->title(), QStringLiteral("CPUUsage__x"));
}

TEST(ProcessSection, ValuesOfOtherTypes)
{
    QVariantMap entry = process(QStringLiteral("4"), QStringLiteral("x"));
    entry = with(entry, "CPUUsage", QVariantList{1});
    entry = with(entry, "PID", 4);
    entry = with(entry, "User", QVariantMap());
    entry = with(entry, "EnergyUsage", 2.5);
    const MenuItem row = rowOf(entry);
    EXPECT_EQ(row.title, QStringLiteral("0.0% : x"));
    EXPECT_EQ(row.submenu->title(), QStringLiteral("CPUUsage__4//x"));
    EXPECT_THAT(titlesBelow(row), ElementsAre("PID: 4", "User: ", "-", "Energy Usage: 2.5%", "-",
                                              "Quit", "Force Quit"));
}

TEST(ProcessSection, NamesAreTextWhateverTheyHold)
{
    const QStringList names{
        QStringLiteral("a//b"),
        QStringLiteral("7//other"),
        QStringLiteral("CPUUsage__1//x"),
        QStringLiteral("50.0% : y"),
        QStringLiteral("100%"),
        QStringLiteral("%@%s%n%1$@%d"),
        QStringLiteral("%1"),
        QStringLiteral("a-b_c&d"),
        QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b"),
        QStringLiteral("a\nb\tc"),
        QStringLiteral("\u202Eevil\u2066"),
        QStringLiteral("\U0001F980 \u65E5\u672C"),
        QString(QChar(0xD800)),
        QString(100000, u'x'),
    };
    for (const QString &name : names) {
        QVariantMap entry = process(QStringLiteral("4"), name, QStringLiteral("0.5"));
        entry = with(entry, "User", name);
        const MenuItem row = rowOf(entry);
        EXPECT_EQ(row.title, QStringLiteral("50.0% : ") + name);
        EXPECT_EQ(row.submenu->title(), QStringLiteral("CPUUsage__4//") + name);
        EXPECT_EQ(row.submenu->items()[1].title, QStringLiteral("User: ") + name);
        EXPECT_EQ(row.submenu->items().size(), 6);
    }
}

} // namespace
} // namespace pulsebar
