// Who used most, told by a tooltip over the graph of the load.
#include "e2e/TickingMachine.h"
#include "e2e/graph/GraphProgram.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <optional>

namespace pulsebar::e2e {
namespace {

class TooltipTest : public ::testing::Test
{
protected:
    std::optional<QRect> tooltip()
    {
        const QList<QRect> all = display().shownOfType("_NET_WM_WINDOW_TYPE_TOOLTIP");
        return all.size() == 1 ? std::optional(all.constFirst()) : std::nullopt;
    }
    /// Moves the pointer there as a hand does.
    void pointAt(QPoint place)
    {
        display().point(place - QPoint(1, 0));
        display().point(place);
    }
    /// The tooltip at a place of the screen, as it looks.
    QImage tooltipAt(QPoint place)
    {
        pointAt(place);
        std::optional<QRect> there;
        EXPECT_TRUE(waitFor([&] {
            there = tooltip();
            // Close to the pointer, but not under it.
            return there && QRect(place, QSize(40, 40)).contains(there->topLeft());
        }));
        return there ? settled(*there) : QImage();
    }
    /// What is there as soon as it stays the same.
    QImage settled(const QRect &part)
    {
        QImage seen;
        EXPECT_TRUE(waitFor([&] {
            const QImage before = seen;
            waitFor([] { return false; }, 200);
            seen = display().look(part);
            return seen == before;
        }));
        return seen;
    }
    void stopSamples(GraphProgram &program)
    {
        on.hold(true);
        waitFor([&] {
            // The last one may be on its way, and a busy machine takes its time.
            return !waitFor([&, n = program.samples] { return program.samples > n; }, 1500);
        });
    }
    const XDisplay &display() { return on.display; }

    GraphDesktop on;
    TickingMachine ticks{on.machine.path(QString())};
    TickingProcess compiler{on.machine, 412, "cc1plus"};
};

TEST_F(TooltipTest, TellsOfTheSampleUnderThePointer)
{
    GraphProgram program(on);
    const QRect frame = program.show("CPUTotalUsage", "CPU Total");
    ASSERT_TRUE(waitFor([&] { return program.history("CPUTotalUsage").size() >= 6; }));
    ticks.work = 1000;
    const auto idle = program.history("CPUTotalUsage").size();
    ASSERT_TRUE(waitFor([&] { return program.history("CPUTotalUsage").size() >= 2 * idle; }));
    stopSamples(program);
    EXPECT_EQ(tooltip(), std::nullopt);
    const QPoint early = frame.topLeft() + QPoint(20, 50);
    const QPoint late = frame.topLeft() + QPoint(170, 50);
    const QImage whileIdle = tooltipAt(early);
    const QImage whileBusy = tooltipAt(late);
    EXPECT_NE(whileIdle, whileBusy) << "one says 0%, the other nearly 100%";
    EXPECT_TRUE(waitFor([&] { return tooltipAt(early) == whileIdle; }));
    display().point({10, 10});
    EXPECT_TRUE(waitFor([this] { return !tooltip(); }));
}

TEST_F(TooltipTest, FollowsNewSamplesWhileThePointerRests)
{
    GraphProgram program(on);
    const QRect frame = program.show("CPUTotalUsage", "CPU Total");
    ASSERT_TRUE(waitFor([&] { return program.history("CPUTotalUsage").size() >= 6; }));
    stopSamples(program);
    const QPoint newest = frame.topLeft() + QPoint(190, 50);
    const QImage before = tooltipAt(newest);
    ticks.work = 1000;
    on.hold(false);
    EXPECT_TRUE(waitFor([&] {
        const std::optional<QRect> there = tooltip();
        return there && display().look(*there) != before;
    }));
    EXPECT_EQ(program.quit(), 0);
}

TEST_F(TooltipTest, IsNotThereWhereNobodyKnowsWhoItWas)
{
    GraphProgram program(on);
    const QRect frame = program.show("CPUUsage__CPU1", "CPU1");
    ASSERT_TRUE(waitFor([&] { return program.history("CPUUsage__CPU1").size() >= 6; }));
    pointAt(frame.topLeft() + QPoint(100, 50));
    EXPECT_FALSE(waitFor([this] { return tooltip().has_value(); }, 2000));
    // A button has its own all the same.
    pointAt(frame.topLeft() + QPoint(18, 30));
    EXPECT_TRUE(waitFor([this] { return tooltip().has_value(); }));
}

} // namespace
} // namespace pulsebar::e2e
