#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "support/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace pulsebar::e2e {
namespace {

constexpr QLatin1String kControl = RunningProgram::kControl;
constexpr QLatin1String kScripting = RunningProgram::kScripting;

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The program in a panel, and its menu as that panel reads it.
class PreferencesTest : public testing::Test
{
protected:
    PreferencesTest() { desktop.writeSettings("[General]\nNotFirstLaunch=true\nrefreshSec=1\n"); }

    void start()
    {
        program = std::make_unique<RunningProgram>(desktop);
        menu = std::make_unique<MenuClient>(desktop, program->process().pid());
        ASSERT_TRUE(program->waitForSamples(1));
    }

    /// Chooses a row of the "Preference" submenu.
    bool choose(const QStringList &path)
    {
        return menu->choose(QStringList{s("Preference")} + path);
    }
    MenuRow look(const QStringList &path)
    {
        return menu->look(QStringList{s("Preference")} + path);
    }

    /// The words with which the sampler was started that runs now, each followed by a blank.
    QString samplerCommand() const
    {
        const QString pid = QString::number(program->process().pid());
        const QByteArrayList children =
            contentOf(s("/proc/%1/task/%1/children").arg(pid)).simplified().split(' ');
        for (const QByteArray &child : children) {
            const QByteArray command =
                contentOf(s("/proc/%1/cmdline").arg(QString::fromLatin1(child)));
            if (command.contains("pulsebar-top"))
                return QString::fromUtf8(command).replace(QChar(u'\0'), u' ');
        }
        return {};
    }

    /// Whether the running sampler comes to have been started with these words.
    bool samplerGets(const char *words) const
    {
        return waitFor([this, words] { return samplerCommand().contains(s(words)); });
    }

    bool becomes(const char *property, const QVariant &value, QLatin1String interface = kControl)
    {
        return waitFor([&] { return program->get(interface, property).value == value; });
    }

    QString autostartFile() const
    {
        return desktop.folder() + s("/config_home/autostart/org.pulsebar.Pulsebar.desktop");
    }

    Desktop desktop;
    Panel panel{desktop};
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<MenuClient> menu;
};

#ifdef PULSEBAR_HAS_SYSROOT
TEST_F(PreferencesTest, TheSamplerFollows)
{
    start();
    EXPECT_TRUE(samplerGets(" -n 10 -s 1 -R ")) << samplerCommand().toStdString();
    EXPECT_FALSE(look({s("Check Memory")}).isOn());

    EXPECT_TRUE(choose({s("Check Memory")}));
    EXPECT_TRUE(samplerGets(",power,pageins,rsize,vsize ")) << samplerCommand().toStdString();
    EXPECT_FALSE(samplerCommand().contains(s(" -R ")));
    EXPECT_TRUE(look({s("Check Memory")}).isOn());

    EXPECT_TRUE(choose({s("Sort by Memory")}));
    EXPECT_TRUE(samplerGets(" -o rsize ")) << samplerCommand().toStdString();
    EXPECT_TRUE(look({s("Sort by Memory")}).isOn());

    EXPECT_TRUE(choose({s("Max of List"), s("3")}));
    EXPECT_TRUE(samplerGets(" -n 3 ")) << samplerCommand().toStdString();
    EXPECT_EQ(look({s("Max of List")}).labelsThatAreOn(), QStringList{s("3")});

    EXPECT_TRUE(choose({s("Check Memory")}));
    EXPECT_TRUE(choose({s("Sort by Memory")}));
    EXPECT_TRUE(samplerGets(" -n 3 -s 1 -R ")) << samplerCommand().toStdString();
}

TEST_F(PreferencesTest, TheSamplerTakesEveryRefreshTime)
{
    start();
    const QStringList times{s("1 Second"), s("2 Seconds"), s("3 Seconds"), s("4 Seconds"),
                            s("5 Seconds")};
    EXPECT_EQ(look({s("Refresh Time")}).labels(), times);
    for (const int seconds : {2, 3, 4, 5, 1}) {
        const QString &title = times.at(seconds - 1);
        EXPECT_TRUE(choose({s("Refresh Time"), title}));
        EXPECT_TRUE(samplerGets(qPrintable(s(" -s %1 ").arg(seconds))))
            << samplerCommand().toStdString();
        EXPECT_EQ(look({s("Refresh Time")}).labelsThatAreOn(), QStringList{title});
    }
}
#endif

TEST_F(PreferencesTest, ListsOfCountsOfferAllOfThem)
{
    start();
    QStringList counts;
    for (int i = 1; i <= 20; ++i)
        counts += QString::number(i);
    EXPECT_EQ(look({s("Max of List")}).labels(), counts);
    EXPECT_EQ(look({s("Max of List")}).labelsThatAreOn(), QStringList{s("10")});
    EXPECT_EQ(look({s("Max of Network")}).labels(), QStringList{s("0")} + counts);
    EXPECT_EQ(look({s("Max of Network")}).labelsThatAreOn(), QStringList{s("5")});
    for (const char *count : {"0", "20", "3"}) {
        EXPECT_TRUE(choose({s("Max of Network"), s(count)}));
        EXPECT_TRUE(waitFor([&] {
            return look({s("Max of Network")}).labelsThatAreOn() == QStringList{s(count)};
        })) << count;
    }
    for (const char *count : {"1", "20"}) {
        EXPECT_TRUE(choose({s("Max of List"), s(count)}));
        EXPECT_TRUE(becomes("listMax", s(count).toInt(), kScripting)) << count;
    }
}

TEST_F(PreferencesTest, SwitchesAreSeenInTheNextMenu)
{
    start();
    for (const char *title : {"Show Icon", "In Fahrenheit"}) {
        EXPECT_FALSE(look({s(title)}).isOn()) << title;
        EXPECT_TRUE(choose({s(title)})) << title;
        EXPECT_TRUE(waitFor([&] { return look({s(title)}).isOn(); })) << title;
        EXPECT_TRUE(choose({s(title)})) << title;
        EXPECT_TRUE(waitFor([&] { return !look({s(title)}).isOn(); })) << title;
    }
}

TEST_F(PreferencesTest, AWidthTakesEffectAtOnce)
{
    start();
    const QString widths = s("Width on menubar");
    const MenuRow offered = look({widths});
    EXPECT_EQ(offered.labelsThatAreOn(), QStringList{offered.labels().value(3)});
    ASSERT_EQ(offered.children.size(), 18);
    const double before = program->get(kControl, "itemWidth").value.toDouble();
    EXPECT_EQ(before, 60.0);
    program->changes.clear();
    EXPECT_TRUE(choose({widths, offered.labels().constLast()}));
    EXPECT_TRUE(becomes("itemWidth", 200.0));
    EXPECT_TRUE(waitFor([this] {
        return std::any_of(program->changes.cbegin(), program->changes.cend(),
                           [](const QVariantMap &change) {
                               return change.value(QStringLiteral("itemWidth")) == QVariant(200.0);
                           });
    }));
    EXPECT_EQ(look({widths}).labelsThatAreOn(), QStringList{offered.labels().constLast()});
    EXPECT_TRUE(choose({widths, offered.labels().constFirst()}));
    EXPECT_TRUE(becomes("itemWidth", 30.0));
}

TEST_F(PreferencesTest, TheTitleIsShownAsChosen)
{
    start();
    const QStringList path{s("Title on Panel")};
    EXPECT_EQ(look(path).labelsThatAreOn(), QStringList{s("Automatic")});
    for (const char *way : {"Icon", "Text", "Automatic"}) {
        EXPECT_TRUE(choose(path + QStringList{s(way)})) << way;
        EXPECT_TRUE(becomes("titleOnPanel", s(way).toLower())) << way;
        EXPECT_EQ(look(path).labelsThatAreOn(), QStringList{s(way)});
    }
    EXPECT_TRUE(choose(path + QStringList{s("Strip")}));
    EXPECT_TRUE(becomes("titleOnPanel", s("strip")));
}

TEST_F(PreferencesTest, TheTitleShowsWhatIsChosen)
{
    start();
    EXPECT_EQ(look({s("Top Title")}).labelsThatAreOn(), QStringList{s("CPU Usage")});
    EXPECT_TRUE(choose({s("Top Title"), s("Network In")}));
    EXPECT_TRUE(waitFor([this] { return program->title().startsWith(s("In ")); }))
        << program->title().toStdString();
    EXPECT_EQ(look({s("Top Title")}).labelsThatAreOn(), QStringList{s("Network In")});
}

// The empty platform has no login list and opens no manual.
#ifdef PULSEBAR_HAS_SYSROOT
TEST_F(PreferencesTest, TheProgramIsStartedAtLoginWhenChosen)
{
    start();
    const QStringList row{s("Auto Launch When Mac Starts up")};
    EXPECT_FALSE(look(row).isOn());
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(autostartFile()).path()));
    EXPECT_TRUE(choose(row));
    EXPECT_TRUE(waitFor([this] { return QFileInfo::exists(autostartFile()); }));
    EXPECT_TRUE(look(row).isOn());
    // It is stored at once, and only this.
    EXPECT_TRUE(desktop.settings().contains("\nautoLaunch=true\n"));
    EXPECT_FALSE(desktop.settings().contains("listMax"));
    const Process validator(s("desktop-file-validate"), {autostartFile()}, desktop.environment());
    EXPECT_TRUE(waitFor([&validator] { return !validator.isRunning(); }));
    EXPECT_EQ(validator.output() + validator.log(), QString());
    EXPECT_TRUE(contentOf(autostartFile()).contains("\nExec=" PULSEBAR_PROGRAMS "/pulsebar\n"))
        << contentOf(autostartFile()).constData();
    EXPECT_TRUE(choose(row));
    EXPECT_TRUE(waitFor([this] { return !QFileInfo::exists(autostartFile()); }));
    EXPECT_FALSE(look(row).isOn());
    EXPECT_EQ(program->quit(), 0);
    EXPECT_TRUE(desktop.settings().contains("\nautoLaunch=false\n"));
}

TEST_F(PreferencesTest, TheEntryOfTheLoginListStartsTheProgram)
{
    start();
    ASSERT_TRUE(choose({s("Auto Launch When Mac Starts up")}));
    ASSERT_TRUE(waitFor([this] { return QFileInfo::exists(autostartFile()); }));
    EXPECT_EQ(program->quit(), 0);
    const Process session(s("gio"), {s("launch"), autostartFile()}, desktop.environment());
    ASSERT_TRUE(waitFor([&session] { return !session.isRunning(); }));
    EXPECT_EQ(session.log(), QString());
    ASSERT_TRUE(waitFor([this] { return !program->get(kControl, "title").value.isNull(); }));
    EXPECT_TRUE(program->waitForSamples(1));
    program->control("quit");
    EXPECT_TRUE(waitFor([this] { return program->get(kControl, "title").value.isNull(); }));
}

TEST_F(PreferencesTest, TheManualIsShownAtTheFirstLaunchAndWhenAsked)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    start();
    ASSERT_TRUE(waitFor([this] { return desktop.openedUrls().size() == 1; }));
    const QUrl manual(desktop.openedUrls().constFirst());
    EXPECT_TRUE(contentOf(manual.toLocalFile()).startsWith("<!DOCTYPE html>"))
        << manual.toString().toStdString();
    EXPECT_TRUE(desktop.settings().contains("\nNotFirstLaunch=true\n"));
    EXPECT_FALSE(desktop.settings().contains("listMax"));
    EXPECT_TRUE(choose({s("Show Manual")}));
    EXPECT_TRUE(waitFor([this] { return desktop.openedUrls().size() == 2; }));
    EXPECT_EQ(program->quit(), 0);
    start();
    EXPECT_EQ(desktop.openedUrls().size(), 2);
    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(program->process().log(), QString());
}

TEST_F(PreferencesTest, WithoutAnythingToOpenTheManualWithItGoesOn)
{
    desktop.writeSettings("[General]\nrefreshSec=1\n");
    desktop.environment().insert(s("PATH"), desktop.folder());
    start();
    EXPECT_TRUE(choose({s("Show Manual")}));
    EXPECT_TRUE(program->waitForSamples(1));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(program->process().log().count(s("xdg-open")), 1)
        << program->process().log().toStdString();
}
#endif

/// How the program comes to its end.
enum class Ending { Quit, QuitRow, Terminated };

class EndingTest : public PreferencesTest, public testing::WithParamInterface<Ending>
{
protected:
    void end()
    {
        if (GetParam() == Ending::QuitRow)
            EXPECT_TRUE(menu->choose({s("Quit")}));
        else if (GetParam() == Ending::Terminated)
            program->process().signal(SIGTERM);
        else
            program->control("quit");
        EXPECT_EQ(program->process().waitForEnd(), 0);
    }
};

TEST_P(EndingTest, EveryChoiceIsStored)
{
    start();
    EXPECT_TRUE(choose({s("Check Memory")}));
    EXPECT_TRUE(choose({s("Sort by Memory")}));
    EXPECT_TRUE(choose({s("Top Title"), s("Disk Write")}));
    EXPECT_TRUE(choose({s("Refresh Time"), s("4 Seconds")}));
    EXPECT_TRUE(choose({s("Max of List"), s("17")}));
    EXPECT_TRUE(choose({s("Max of Network"), s("0")}));
    EXPECT_TRUE(choose({s("Show Icon")}));
    EXPECT_TRUE(choose({s("In Fahrenheit")}));
    EXPECT_TRUE(choose({s("Auto Launch When Mac Starts up")}));
    EXPECT_TRUE(choose({s("Title on Panel"), s("Text")}));
    EXPECT_TRUE(choose({s("Width on menubar"), s("110")}));
    EXPECT_TRUE(becomes("itemWidth", 110.0));
    end();
    for (const char *line :
         {"checkMemory=true", "sortByMemory=true", "titleTypesToDisplay=6", "refreshSec=4",
          "listMax=17", "networkMax=0", "showIcon=true", "fahrenheit=true", "autoLaunch=true",
          "titleOnPanel=text", "itemWidth=110", "NotFirstLaunch=true"})
        EXPECT_TRUE(desktop.settings().contains('\n' + QByteArray(line) + '\n')) << line;
    // The next run begins with them.
    start();
    EXPECT_EQ(program->get(kControl, "itemWidth").value, QVariant(110.0));
    EXPECT_EQ(look({s("Max of Network")}).labelsThatAreOn(), QStringList{s("0")});
    EXPECT_EQ(look({s("Max of List")}).labelsThatAreOn(), QStringList{s("17")});
    EXPECT_EQ(look({s("Refresh Time")}).labelsThatAreOn(), QStringList{s("4 Seconds")});
    for (const char *title : {"Check Memory", "Sort by Memory", "Show Icon", "In Fahrenheit",
                              "Auto Launch When Mac Starts up"})
        EXPECT_TRUE(look({s(title)}).isOn()) << title;
}

INSTANTIATE_TEST_SUITE_P(Preferences, EndingTest,
                         testing::Values(Ending::Quit, Ending::QuitRow, Ending::Terminated));

} // namespace
} // namespace pulsebar::e2e
