// Graph windows, as the X server has them and as somebody with a mouse uses them.
#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/WindowManager.h"
#include "e2e/graph/GraphProgram.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QLineF>
#include <QPolygonF>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <optional>

QT_BEGIN_NAMESPACE
void PrintTo(const QRect &rect, std::ostream *out)
{
    *out << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}
QT_END_NAMESPACE

namespace pulsebar::e2e {
namespace {

constexpr const char *kTotal = "CPUTotalUsage";
constexpr const char *kTotalTitle = "CPU Total";
/// 200 upward from the bottom of a screen of 800 by 600.
constexpr QRect kDefaultFrame{200, 330, 200, 70};
constexpr QPoint kCloseButton{18, 30};
constexpr QPoint kSettingButton{182, 30};
constexpr quint32 kEscape = 0xff1b;

class GraphTest : public testing::Test
{
protected:
    int client(const QStringList &arguments)
    {
        const std::unique_ptr<Process> process = desktop().startClient(arguments);
        const int status = process->waitForEnd();
        clientOutput = process->output();
        return status;
    }

    Desktop &desktop() { return on.desktop; }
    const XDisplay &display() { return on.display; }
    bool isStored(const char *line) { return desktop().settings().contains(line); }

    /// Drags from a place in the window. @return whether the window then has the frame
    static testing::AssertionResult dragTo(const GraphProgram &program, const XDisplay &display,
                                           QPoint inWindow, QPoint by, const QRect &expected)
    {
        const QPoint from = display.frame(s(kTotalTitle)).topLeft() + inWindow;
        display.drag(from, from + by);
        if (program.waitForFrame(kTotalTitle, expected))
            return testing::AssertionSuccess();
        const QRect is = display.frame(s(kTotalTitle));
        return testing::AssertionFailure()
               << testing::PrintToString(is) << " instead of " << testing::PrintToString(expected);
    }

    /// Clicks until the panel is there: a window manager may still be at work on the graph's
    /// window.
    bool openPanel(const QRect &graph, const char *title)
    {
        const auto isOpen = [&] { return !display().frame(s(title)).isNull(); };
        return waitFor([&] {
            display().point(graph.center());
            display().click(graph.topLeft() + kSettingButton);
            return waitFor(isOpen, 2000);
        });
    }

    GraphDesktop on;
    Panel panel{on.desktop};
    QString clientOutput;
};

TEST_F(GraphTest, OpensAtItsDefaultPlace)
{
    GraphProgram program(on);
    ASSERT_EQ(client({s("graph"), s("show"), s(kTotal)}), 0);
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, kDefaultFrame));
    EXPECT_EQ(client({s("graph"), s("list")}), 0);
    EXPECT_EQ(clientOutput, s("CPUTotalUsage\n"));
    // A second request does not open a second one.
    EXPECT_EQ(client({s("graph"), s("show"), s(kTotal)}), 0);
    EXPECT_EQ(program.openKeys(), QStringList(s(kTotal)));
    EXPECT_EQ(display().shownTitles(), QStringList(s(kTotalTitle)));
    EXPECT_EQ(client({s("graph"), s("close"), s(kTotal)}), 0);
    EXPECT_TRUE(program.waitUntilGone(kTotalTitle));
    EXPECT_EQ(program.openKeys(), QStringList());
}

TEST_F(GraphTest, EveryKindOfSeriesHasItsTitle)
{
    GraphProgram program(on);
    const std::vector<std::pair<const char *, const char *>> all{
        {"CPUTotalUsage", "CPU Total"},
        {"CPUUsage__CPU0", "CPU0"},
        {"CPU0", "CPU0"},
        {"Network__NetworkInMinuteStats", "Network In"},
        {"Network__NetworkOutMinuteStats", "Network Out"},
        {"Temperature__CPU Die", "CPU Die"},
        {"FanMove__FanAverage", "Fan Average"},
        {"FanMove__Fan1", "Fan1"},
        {"CPUUsage__412//Web Content", "Web Content"},
        {"CPUUsage__413//free", "free"},
        {"CPUUsage__414//<b>a[*]</b>\n", "<b>a[*]</b> "},
    };
    QStringList titles;
    for (const auto &[key, title] : all) {
        program.control("showGraphViewForKey", {s(key)});
        titles += s(title);
    }
    titles.sort();
    EXPECT_TRUE(waitFor([&] { return display().shownTitles() == titles; }))
        << display().shownTitles().join(u'|').toStdString();
    EXPECT_EQ(program.quit(), 0);
}

/// Each zone in turn: the side that is dragged moves, the others stay.
void resizeByEveryZone(const std::function<testing::AssertionResult(QPoint, QPoint, QRect)> &drag)
{
    EXPECT_TRUE(drag({196, 66}, {30, 20}, {200, 330, 230, 90})) << "right bottom";
    EXPECT_TRUE(drag({226, 4}, {10, -30}, {200, 300, 240, 120})) << "right top";
    EXPECT_TRUE(drag({197, 117}, {0, 0}, {200, 300, 240, 120})) << "no movement";
    EXPECT_TRUE(drag({100, 3}, {50, 40}, {200, 340, 240, 80})) << "top edge";
    EXPECT_TRUE(drag({100, 77}, {50, -10}, {200, 340, 240, 70})) << "bottom edge";
    EXPECT_TRUE(drag({237, 35}, {-40, 50}, {200, 340, 200, 70})) << "right edge";
    // On the left the distance of the press from the edge counts twice, and against the width.
    EXPECT_TRUE(drag({3, 35}, {-36, 50}, {170, 340, 230, 70})) << "left edge";
    EXPECT_TRUE(drag({4, 66}, {-12, 20}, {166, 340, 234, 90})) << "left bottom";
    EXPECT_TRUE(drag({4, 4}, {26, 20}, {200, 360, 200, 70})) << "left top";
}

TEST_F(GraphTest, IsResizedByEachOfItsEightZones)
{
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    resizeByEveryZone([&](QPoint inWindow, QPoint by, const QRect &expected) {
        return dragTo(program, display(), inWindow, by, expected);
    });
}

TEST_F(GraphTest, IsMovedAndResizedUnderAWindowManager)
{
    const WindowManager manager(desktop());
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    resizeByEveryZone([&](QPoint inWindow, QPoint by, const QRect &expected) {
        return dragTo(program, display(), inWindow, by, expected);
    });
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {150, 60}, {350, 420, 200, 70}));
}

TEST_F(GraphTest, IsMovedAnywhereButNotAboveTheScreen)
{
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {33, -44}, {233, 286, 200, 70}));
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {0, -330}, {233, 0, 200, 70}));
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {-300, 0}, {-67, 0, 200, 70}));
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {700, 545}, {633, 545, 200, 70}));
}

TEST_F(GraphTest, IsNotMadeTooSmall)
{
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    EXPECT_TRUE(dragTo(program, display(), {196, 66}, {-300, -200}, {200, 330, 120, 42}));
    // Past the right edge the left one counts its distance the other way round.
    EXPECT_TRUE(dragTo(program, display(), {4, 21}, {300, 0}, {132, 330, 188, 42}));
}

TEST_F(GraphTest, ItsButtonClosesAndForgetsIt)
{
    GraphProgram program(on);
    const QRect frame = program.show(kTotal, kTotalTitle);
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {10, -20}, frame.translated(10, -20)));
    display().point(frame.center() + QPoint(10, -20));
    display().click(frame.topLeft() + QPoint(10, -20) + kCloseButton);
    EXPECT_TRUE(program.waitUntilGone(kTotalTitle));
    EXPECT_EQ(program.openKeys(), QStringList());
    EXPECT_TRUE(waitFor([this] { return isStored("GraphWindowSetting_CPUTotalUsage="); }));
    EXPECT_TRUE(isStored(R"(\"positionX\":210,\"positionY\":220)"));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_FALSE(isStored("graphWindowKeys"));
}

TEST_F(GraphTest, ABlockedOneIsClosedByTheWindowManagersRequest)
{
    const WindowManager manager(desktop());
    GraphProgram program(on);
    program.show(kTotal, kTotalTitle);
    display().requestClose(display().window(s(kTotalTitle))->id);
    EXPECT_TRUE(program.waitUntilGone(kTotalTitle));
    EXPECT_TRUE(waitFor([&] { return program.openKeys().isEmpty(); }));
    EXPECT_TRUE(program.waitForSamples(1)) << "the program goes on";
}

TEST_F(GraphTest, QuitStoresAProcessUnderItsNameAlone)
{
    GraphProgram program(on);
    program.show("CPUUsage__412//bash", "bash");
    program.show(kTotal, kTotalTitle);
    EXPECT_EQ(program.quit(), 0);
    EXPECT_TRUE(isStored("\nGraphWindowSetting_bash="));
    EXPECT_TRUE(isStored("\nGraphWindowSetting_CPUTotalUsage="));
    EXPECT_FALSE(isStored("GraphWindowSetting_412"));
    EXPECT_TRUE(isStored("\ngraphWindowKeys=CPUUsage__412//bash, CPUTotalUsage\n"))
        << desktop().settings().constData();
}

TEST_F(GraphTest, TheTerminationSignalStoresToo)
{
    GraphProgram program(on);
    program.show(kTotal, kTotalTitle);
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {7, 8}, kDefaultFrame.translated(7, 8)));
    program.process().signal(SIGTERM);
    EXPECT_EQ(program.process().waitForEnd(), 0);
    EXPECT_TRUE(isStored(R"(\"positionX\":207,\"positionY\":192)"));
    EXPECT_TRUE(isStored("\ngraphWindowKeys=CPUTotalUsage\n"));
}

TEST_F(GraphTest, ARestartBringsAllBackWhereTheyWere)
{
    const QRect moved(250, 200, 260, 100);
    const QRect cpu(40, 480, 200, 70);
    {
        GraphProgram program(on);
        program.show(kTotal, kTotalTitle);
        EXPECT_TRUE(dragTo(program, display(), {196, 66}, {60, 30}, {200, 330, 260, 100}));
        EXPECT_TRUE(dragTo(program, display(), {100, 50}, {50, -130}, moved));
        const QPoint at = program.show("CPUUsage__CPU0", "CPU0").topLeft() + QPoint(100, 50);
        display().drag(at, at + QPoint(-160, 150));
        EXPECT_TRUE(program.waitForFrame("CPU0", cpu));
        program.show("CPUUsage__412//bash", "bash");
        EXPECT_EQ(program.quit(), 0);
    }
    GraphProgram program(on);
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, moved));
    EXPECT_TRUE(program.waitForFrame("CPU0", cpu));
    EXPECT_TRUE(program.waitForFrame("bash", kDefaultFrame)) << "a process starts afresh";
    EXPECT_EQ(program.openKeys(),
              QStringList({s(kTotal), s("CPUUsage__CPU0"), s("CPUUsage__412//bash")}));
}

TEST_F(GraphTest, AreHiddenTogetherAndShownAgain)
{
    GraphProgram program(on);
    program.show(kTotal, kTotalTitle);
    program.show("CPUUsage__CPU0", "CPU0");
    ASSERT_TRUE(waitFor([this] { return !panel.items.isEmpty(); }));
    MenuClient menu(desktop(), program.process().pid());
    const QStringList hideGraph(s("Hide Graph"));
    ASSERT_TRUE(menu.choose(hideGraph));
    EXPECT_TRUE(waitFor([this] { return display().shownTitles().isEmpty(); }));
    EXPECT_EQ(program.openKeys().size(), 2);
    EXPECT_TRUE(menu.look(hideGraph).isOn());
    // One that is asked for is shown all the same.
    program.show("CPUUsage__CPU0", "CPU0");
    EXPECT_EQ(display().shownTitles(), QStringList(s("CPU0")));
    ASSERT_TRUE(menu.choose(hideGraph));
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, kDefaultFrame));
    EXPECT_FALSE(menu.look(hideGraph).isOn());
}

TEST_F(GraphTest, AnEntryOfNoUseGivesAFreshWindow)
{
    desktop().writeSettings("[General]\nrefreshSec=1\nNotFirstLaunch=true\n"
                            "graphWindowKeys=CPUTotalUsage, CPUUsage__CPU0, CPUUsage__CPU1\n"
                            "GraphWindowSetting_CPUTotalUsage=\"{\\\"positionX\\\":30,\\\"line\"\n"
                            "GraphWindowSetting_CPU0=\"{\\\"sizeWidth\\\":1e300}\"\n"
                            "GraphWindowSetting_CPU1=\"[[[[\"\n");
    GraphProgram program(on);
    for (const char *title : {kTotalTitle, "CPU0", "CPU1"})
        EXPECT_TRUE(program.waitForFrame(title, kDefaultFrame)) << title;
    EXPECT_TRUE(waitFor([&] {
        return program.process().log().count(s("GraphWindowSetting_")) == 3;
    })) << program.process().log().toStdString();
}

TEST_F(GraphTest, APlaceOutsideTheScreenIsLeftFor200)
{
    desktop().writeSettings(
        "[General]\nrefreshSec=1\nNotFirstLaunch=true\n"
        "graphWindowKeys=CPUTotalUsage, CPUUsage__CPU0\n"
        "GraphWindowSetting_CPUTotalUsage=\"{\\\"positionX\\\":700,"
        "\\\"positionY\\\":500,\\\"sizeWidth\\\":150,\\\"sizeHeight\\\":50}\"\n"
        "GraphWindowSetting_CPU0=\"{\\\"positionX\\\":650,"
        "\\\"positionY\\\":550,\\\"sizeWidth\\\":150,\\\"sizeHeight\\\":50}\"\n");
    GraphProgram program(on);
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, {200, 350, 150, 50}));
    EXPECT_TRUE(program.waitForFrame("CPU0", {650, 0, 150, 50})) << "wholly inside";
}

TEST_F(GraphTest, FollowsTheScreensSizeAndComesBack)
{
    const QRect moved(560, 10, 200, 70);
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    EXPECT_TRUE(dragTo(program, display(), {100, 50}, {360, -320}, moved));
    ASSERT_EQ(program.show("CPUUsage__CPU0", "CPU0"), kDefaultFrame);
    display().resizeScreen({640, 480});
    // 200 upward from where the bottom is now; what does not fit goes there, too.
    const QRect lower(200, 210, 200, 70);
    EXPECT_TRUE(program.waitForFrame("CPU0", lower));
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, lower));
    display().resizeScreen({800, 600});
    EXPECT_TRUE(program.waitForFrame("CPU0", kDefaultFrame));
    EXPECT_TRUE(program.waitForFrame(kTotalTitle, moved)) << "as it was on a screen of this size";
}

TEST_F(GraphTest, TakesNoFocusAndStaysOutOfTheWay)
{
    const WindowManager manager(desktop());
    const quint32 others = display().openWindow({50, 50, 300, 200});
    const auto isActive = [&] {
        return display().number(display().root(), "_NET_ACTIVE_WINDOW") == others;
    };
    ASSERT_TRUE(waitFor(isActive));
    GraphProgram program(on);
    ASSERT_EQ(program.show(kTotal, kTotalTitle), kDefaultFrame);
    const quint32 window = display().window(s(kTotalTitle))->id;
    EXPECT_TRUE(waitFor([&] { return display().number(window, "_NET_WM_DESKTOP") == 0xffffffffU; }))
        << "on all workspaces";
    EXPECT_TRUE(program.waitForSamples(6));
    EXPECT_TRUE(isActive());
    const QStringList states = display().atoms(window, "_NET_WM_STATE");
    for (const char *state :
         {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
        EXPECT_TRUE(states.contains(s(state))) << states.join(u' ').toStdString();
    EXPECT_TRUE(waitFor([&] {
        return display().number(display().topLevel(window), "_COMPTON_SHADOW") == 0U;
    })) << "compositors look at the window manager's frame";
}

/// The line as it is specified, in points from the window's top left corner.
QPolygonF specifiedLine(const QList<double> &samples, QSize window)
{
    const double width = window.width() - 4.0;
    const double height = window.height() - 4.0;
    const double most = std::trunc(*std::max_element(samples.begin(), samples.end()) + 1.0);
    QPolygonF line;
    for (qsizetype i = 0; i < samples.size(); ++i) {
        const double x = 1.0 + double(i) * width / double(samples.size() - 1);
        const double y = samples.at(i) / most * height + 1.0;
        line += QPointF(x, window.height() - y);
    }
    return line;
}

double distance(QPointF point, const QLineF &segment)
{
    const QPointF along = segment.p2() - segment.p1();
    const double square = QPointF::dotProduct(along, along);
    const double at = QPointF::dotProduct(point - segment.p1(), along) / square;
    return QLineF(point, segment.pointAt(std::clamp(at, 0.0, 1.0))).length();
}

double distance(QPointF point, const QPolygonF &line)
{
    double least = 1e9;
    for (qsizetype i = 1; i < line.size(); ++i)
        least = std::min(least, distance(point, QLineF(line.at(i - 1), line.at(i))));
    return least;
}

bool isRed(QRgb pixel)
{
    return qRed(pixel) - std::max(qGreen(pixel), qBlue(pixel)) > 128;
}

TEST_F(GraphTest, DrawsTheSamplesAsALine)
{
    GraphProgram program(on);
    // Without a compositor the window is opaque, and its colours are those of its settings.
    const QRect frame = program.show("Temperature__CPU Die", "CPU Die");
    for (const int degrees : {20, 45, 12, 60, 33, 25}) {
        on.setTemperature(degrees);
        ASSERT_TRUE(program.waitForSamples(2));
    }
    on.hold(true);
    // One may be on its way.
    waitFor(
        [&] { return !waitFor([&, n = program.samples] { return program.samples > n; }, 200); });
    const QList<double> samples = program.history("Temperature__CPU Die");
    ASSERT_GE(samples.size(), 10);
    const QPolygonF line = specifiedLine(samples, frame.size());
    const QImage picture = display().look(frame);
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const double apart = distance(QPointF(x + 0.5, y + 0.5), line);
            const bool text = y < 22; // drawn over the line
            if (isRed(picture.pixel(x, y))) {
                ++red;
                EXPECT_LT(apart, 1.6) << x << ',' << y;
            } else if (!text) {
                EXPECT_GT(apart, 0.4) << x << ',' << y;
                EXPECT_TRUE(apart < 2.0 || qRed(picture.pixel(x, y)) == 0) << x << ',' << y;
            }
        }
    }
    EXPECT_GT(red, frame.width());
}

TEST_F(GraphTest, ShowsTheLineFromTheFifthSampleOn)
{
    on.hold(true);
    GraphProgram program(on);
    const QRect frame = program.show("Temperature__CPU Die", "CPU Die");
    const auto redPixels = [&] {
        const QImage picture = display().look(frame);
        int red = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                red += isRed(picture.pixel(x, y)) ? 1 : 0;
        }
        return red;
    };
    EXPECT_EQ(program.history("Temperature__CPU Die").size(), 0);
    EXPECT_EQ(redPixels(), 0);
    on.hold(false);
    on.setTemperature(90);
    ASSERT_TRUE(program.waitForSamples(8));
    EXPECT_TRUE(waitFor([&] { return redPixels() > 50; }));
}

TEST_F(GraphTest, ItsSettingPanelOpensAndRemembersItsPlace)
{
    const WindowManager manager(desktop());
    const char *title = "Graph Settings: CPU Total";
    GraphProgram program(on);
    const QRect frame = program.show(kTotal, kTotalTitle);
    ASSERT_TRUE(openPanel(frame, title));
    const quint32 id = display().window(s(title))->id;
    const auto isActive = [&] {
        return display().number(display().root(), "_NET_ACTIVE_WINDOW") == id;
    };
    EXPECT_TRUE(waitFor(isActive)) << "the user asked for it";
    // The window manager frames it after it is shown, and tells the program later still.
    EXPECT_TRUE(waitFor([&] { return display().number(id, "_NET_FRAME_EXTENTS").has_value(); }));
    ASSERT_TRUE(program.waitForSamples(3));
    const QRect place = display().frame(s(title));
    display().key(kEscape);
    EXPECT_TRUE(program.waitUntilGone(title));
    ASSERT_TRUE(openPanel(frame, title));
    EXPECT_TRUE(program.waitForFrame(title, place))
        << testing::PrintToString(display().frame(s(title))) << " instead of "
        << testing::PrintToString(place);
    // What it knows of the frame around the panel is what it stores.
    ASSERT_TRUE(program.waitForSamples(3));
    EXPECT_EQ(program.quit(), 0);
    EXPECT_TRUE(isStored("\nViewSettingWindow_CPUTotalUsage=")) << desktop().settings().constData();

    GraphProgram again(on);
    ASSERT_TRUE(again.waitForFrame(kTotalTitle, frame));
    ASSERT_TRUE(openPanel(frame, title));
    EXPECT_TRUE(again.waitForFrame(title, place)) << "in the next session, too";
    again.control("closeGraphViewForKey", {s(kTotal)});
    EXPECT_TRUE(again.waitUntilGone(title)) << "it goes with its graph";
}

} // namespace
} // namespace pulsebar::e2e
