#include "graph/GraphViewWindow.h"

#include "graph/FakeWindowServices.h"
#include "graph/GraphView.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphWindowButton.h"
#include "graph/PointerOn.h"
#include "support/WaitFor.h"

#include <QCloseEvent>
#include <QElapsedTimer>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// Counts the paint events of a window.
class PaintCount : public QObject
{
public:
    explicit PaintCount(QWidget &window) { window.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject * /*object*/, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

/// A window of 200 by 70 points at 300, 200. The pointer's places count downward.
class GraphViewWindowTest : public testing::Test
{
protected:
    GraphViewWindowTest()
    {
        m_window.initWithContentRect({300, 200, 200, 70});
        m_window.setResizable(true);
        m_view.setViewSetting(&m_setting);
        m_window.setGraphView(&m_view);
        m_window.setViewSetting(&m_setting);
        m_window.updateBackgroundAlphaValue();
    }

    /// As at its first showing, with nobody working with this program.
    void track()
    {
        m_window.updateTrackingRect();
        ASSERT_TRUE(rests(0.55F));
    }
    void show()
    {
        m_window.orderFront();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        ASSERT_TRUE(waitFor([this] { return m_paints.count > 0; }));
        settle();
    }
    static void settle()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
    /// Whether the opacity goes there and no further.
    bool rests(float alpha)
    {
        return waitFor([&] { return !m_window.isFading(); }) && m_window.alphaValue() == alpha;
    }
    bool offersButtons() const
    {
        return m_window.closeButton()->isOffered() && m_window.settingButton()->isOffered();
    }
    void feed(double value)
    {
        m_view.setUsageCacheArray({0.1, 0.2, 0.3, 0.4, value});
        m_window.setLastValue(QString::number(value));
        settle();
    }

    FakeWindowServices m_desktop;
    GraphViewSetting m_setting;
    CPUGraphView m_view;
    GraphViewWindow m_window{&m_desktop.services};
    PaintCount m_paints{m_window};
    PointerOn m_pointer{m_window};
};

TEST_F(GraphViewWindowTest, RestsAtItsOpacityWithoutThePointer)
{
    EXPECT_EQ(m_window.alphaValue(), 0.55F);
    EXPECT_FALSE(m_window.underThreshold());
    EXPECT_FALSE(m_window.isResizing());
    EXPECT_FALSE(offersButtons());
}

TEST_F(GraphViewWindowTest, CannotBeSeenWithoutASetting)
{
    const GraphViewWindow window(&m_desktop.services);
    EXPECT_EQ(window.alphaValue(), 0.0F);
}

TEST_F(GraphViewWindowTest, FadesInTenStepsOfWhichTheFirstIsDoneAtOnce)
{
    QElapsedTimer clock;
    clock.start();
    m_window.changeAlphaValueTo(1.0F, 10);
    EXPECT_NEAR(m_window.alphaValue(), 0.595, 1e-6);
    QVector<float> seen{m_window.alphaValue()};
    EXPECT_TRUE(waitFor([&] {
        if (m_window.alphaValue() != seen.last())
            seen.append(m_window.alphaValue());
        return !m_window.isFading();
    }));
    // Nine times 0.05 seconds; the system's timers are exact to a twentieth.
    EXPECT_GE(clock.elapsed(), 425);
    ASSERT_EQ(seen.size(), 10);
    for (int step = 1; step <= 10; ++step)
        EXPECT_NEAR(seen[step - 1], 0.55 + 0.045 * step, 1e-6);
    EXPECT_EQ(m_window.alphaValue(), 1.0F);
}

TEST_F(GraphViewWindowTest, FadesInUnderThePointerAndBackWithoutIt)
{
    track();
    m_pointer.enter({100, 35});
    EXPECT_NEAR(m_window.alphaValue(), 0.595, 1e-6);
    EXPECT_TRUE(offersButtons());
    EXPECT_TRUE(rests(1.0F));
    m_pointer.leave();
    EXPECT_NEAR(m_window.alphaValue(), 0.955, 1e-6);
    EXPECT_FALSE(offersButtons());
    EXPECT_TRUE(rests(0.55F));
}

TEST_F(GraphViewWindowTest, LeavingQuicklyCancelsTheFade)
{
    track();
    m_pointer.enter({100, 35});
    m_pointer.leave();
    EXPECT_NEAR(m_window.alphaValue(), 0.5905, 1e-6) << "from where it was";
    EXPECT_FALSE(offersButtons());
    EXPECT_TRUE(rests(0.55F));
}

TEST_F(GraphViewWindowTest, ReadsTheOpacitiesAtEveryFade)
{
    track();
    m_setting.setProperty("alphaAtPoint", 0.75F);
    m_pointer.enter({100, 35});
    EXPECT_TRUE(rests(0.75F));
    m_setting.setProperty("alphaWithoutPoint", 0.25F);
    m_pointer.leave();
    EXPECT_TRUE(rests(0.25F));
}

TEST_F(GraphViewWindowTest, ItsOpacityWithoutThePointerCanBeSetWithoutAFade)
{
    track();
    m_setting.setProperty("alphaWithoutPoint", 0.3F);
    m_window.updateBackgroundAlphaValue();
    EXPECT_EQ(m_window.alphaValue(), 0.3F);
    EXPECT_FALSE(m_window.isFading());
}

TEST_F(GraphViewWindowTest, StartsAtRestWhereTheUserWorksWithSomethingElse)
{
    m_window.setAlphaValue(1.0F);
    m_window.updateTrackingRect();
    EXPECT_NEAR(m_window.alphaValue(), 0.955, 1e-6);
    EXPECT_FALSE(offersButtons());
    EXPECT_TRUE(rests(0.55F));
}

TEST_F(GraphViewWindowTest, StartsPointedWhereTheUserWorksWithTheProgram)
{
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    m_window.updateTrackingRect();
    EXPECT_NEAR(m_window.alphaValue(), 0.595, 1e-6);
    EXPECT_TRUE(offersButtons());
    EXPECT_TRUE(rests(1.0F));
    // Only the first time.
    m_window.setAlphaValue(0.2F);
    m_window.updateTrackingRect();
    EXPECT_EQ(m_window.alphaValue(), 0.2F);
    EXPECT_FALSE(m_window.isFading());
}

TEST_F(GraphViewWindowTest, LaidAnewItNoticesThePointerThatIsOnIt)
{
    track();
    m_pointer.enter({100, 35});
    ASSERT_TRUE(rests(1.0F));
    m_window.setAlphaValue(0.5F);
    m_window.updateTrackingRect();
    EXPECT_NEAR(m_window.alphaValue(), 0.55, 1e-6);
    EXPECT_TRUE(offersButtons());
}

TEST_F(GraphViewWindowTest, LeavingDuringAResizeFadesAtTheRelease)
{
    track();
    m_pointer.enter({195, 35});
    ASSERT_TRUE(rests(1.0F));
    m_pointer.press({195, 35});
    m_pointer.moveBy({0, 200});
    EXPECT_TRUE(m_window.isResizing());
    EXPECT_FALSE(m_window.isFading());
    EXPECT_TRUE(offersButtons());
    m_pointer.release();
    EXPECT_NEAR(m_window.alphaValue(), 0.955, 1e-6);
    EXPECT_FALSE(offersButtons());
    EXPECT_TRUE(rests(0.55F));
}

TEST_F(GraphViewWindowTest, HiddenDuringAResizeItComesBackAtRest)
{
    track();
    show();
    m_pointer.enter({195, 35});
    ASSERT_TRUE(rests(1.0F));
    m_pointer.press({195, 35});
    m_pointer.moveBy({0, 200});
    ASSERT_TRUE(offersButtons());
    m_window.orderOut();
    EXPECT_FALSE(offersButtons());
    EXPECT_TRUE(rests(0.55F));
    m_pointer.loseButtons();
    m_window.orderFront();
    m_pointer.press({100, 35});
    m_pointer.release();
    EXPECT_TRUE(offersButtons()) << "the pointer is on it";
    EXPECT_TRUE(rests(1.0F));
}

TEST_F(GraphViewWindowTest, LeavingDuringAMoveFadesAtOnce)
{
    track();
    m_pointer.enter({100, 35});
    ASSERT_TRUE(rests(1.0F));
    m_pointer.press({100, 35});
    m_pointer.moveBy({300, -150});
    EXPECT_EQ(m_window.alphaValue(), 1.0F) << "a window that follows is not left";
    EXPECT_TRUE(offersButtons());
    // The top of the screen stops the window, not the pointer.
    m_pointer.moveBy({0, -5000});
    EXPECT_NEAR(m_window.alphaValue(), 0.955, 1e-6);
    EXPECT_FALSE(offersButtons());
}

TEST_F(GraphViewWindowTest, GoesUnderTheThresholdAndComesBack)
{
    m_setting.setProperty("useThreshold", true);
    m_window.setUnderThreshold(true);
    EXPECT_NEAR(m_window.alphaValue(), 0.495, 1e-6);
    EXPECT_TRUE(rests(0.0F));
    m_window.setUnderThreshold(false);
    EXPECT_TRUE(rests(0.55F));
}

TEST_F(GraphViewWindowTest, ThePointerFindsOneThatIsUnderTheThreshold)
{
    track();
    m_setting.setProperty("useThreshold", true);
    m_window.setUnderThreshold(true);
    ASSERT_TRUE(rests(0.0F));
    m_pointer.enter({100, 35});
    EXPECT_TRUE(rests(1.0F));
    m_pointer.leave();
    EXPECT_TRUE(rests(0.0F));
}

TEST_F(GraphViewWindowTest, TheSameSideOfTheThresholdAgainFadesNothing)
{
    m_setting.setProperty("useThreshold", true);
    m_window.setUnderThreshold(true);
    ASSERT_TRUE(rests(0.0F));
    m_window.setAlphaValue(0.3F);
    m_window.setUnderThreshold(true);
    EXPECT_FALSE(m_window.isFading());
    EXPECT_EQ(m_window.alphaValue(), 0.3F);
}

TEST_F(GraphViewWindowTest, AThresholdThatIsNotUsedDoesNothing)
{
    m_window.setUnderThreshold(true);
    EXPECT_FALSE(m_window.underThreshold());
    EXPECT_FALSE(m_window.isFading());
    EXPECT_EQ(m_window.alphaValue(), 0.55F);
    // It was used once, and then no more.
    m_setting.setProperty("useThreshold", true);
    m_window.setUnderThreshold(true);
    m_setting.setProperty("useThreshold", false);
    m_window.setUnderThreshold(false);
    EXPECT_TRUE(m_window.underThreshold());
    m_window.changeWindowAlphaWithoutPointed();
    EXPECT_TRUE(rests(0.55F)) << "though it is under it";
}

TEST_F(GraphViewWindowTest, PaintsOncePerSample)
{
    show();
    for (int sample = 1; sample <= 3; ++sample) {
        const int before = m_paints.count;
        feed(sample);
        EXPECT_EQ(m_paints.count, before + 1);
    }
}

TEST_F(GraphViewWindowTest, PaintsOncePerStepOfAFade)
{
    show();
    const int before = m_paints.count;
    m_window.changeAlphaValueTo(1.0F, 10);
    EXPECT_TRUE(rests(1.0F));
    settle();
    EXPECT_EQ(m_paints.count, before + 10);
}

TEST_F(GraphViewWindowTest, PaintsNoSampleThatCannotBeSeen)
{
    show();
    m_window.setAlphaValue(0.0F);
    settle();
    int before = m_paints.count;
    feed(1);
    feed(2);
    EXPECT_EQ(m_paints.count, before) << "faded out";
    m_window.setAlphaValue(0.5F);
    settle();
    EXPECT_EQ(m_paints.count, ++before);
    m_desktop.cover.covered = true;
    feed(3);
    feed(4);
    EXPECT_EQ(m_paints.count, before) << "covered";
    m_desktop.cover.uncover();
    settle();
    EXPECT_EQ(m_paints.count, ++before);
    m_window.orderOut();
    feed(5);
    feed(6);
    EXPECT_EQ(m_paints.count, before) << "hidden";
    m_window.orderFront();
    EXPECT_TRUE(waitFor([&] { return m_paints.count > before; }));
    settle();
    EXPECT_EQ(m_paints.count, ++before);
}

TEST_F(GraphViewWindowTest, ShowsItsPictureAtItsOpacity)
{
    m_setting.setProperty("backgroundColor", QColor(0, 0, 255));
    QImage image(m_window.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    m_window.render(&image);
    const QColor corner = image.pixelColor(199, 69);
    EXPECT_NEAR(corner.alphaF(), 0.55, 0.01);
    EXPECT_NEAR(corner.blueF(), 1.0, 0.01);
}

TEST_F(GraphViewWindowTest, IsTitledAsItsCaption)
{
    m_window.setCaption(QStringLiteral("CPU 1"));
    EXPECT_EQ(m_window.windowTitle(), QStringLiteral("CPU 1"));
}

TEST_F(GraphViewWindowTest, ButtonsDoWhatTheyAreFor)
{
    EXPECT_EQ(m_window.closeButton()->accessibleName(), QStringLiteral("Close"));
    EXPECT_EQ(m_window.settingButton()->accessibleName(), QStringLiteral("Settings"));
    QSignalSpy closes(&m_window, &GraphViewWindow::closeWindow);
    QSignalSpy panels(&m_window, &GraphViewWindow::showSettingPanel);
    show();
    QTest::mouseClick(m_window.closeButton(), Qt::LeftButton);
    EXPECT_EQ(closes.count(), 1);
    QTest::mouseClick(m_window.settingButton(), Qt::LeftButton);
    EXPECT_EQ(panels.count(), 1);
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 200, 70));
    EXPECT_FALSE(m_window.closeButton()->hasFocus()) << "a click shows no focus";
}

TEST_F(GraphViewWindowTest, ButtonsAreReachedByTheKeyboard)
{
    show();
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    EXPECT_EQ(m_window.closeButton()->look(), GraphButtonLook::Hidden);
    EXPECT_FALSE(m_window.closeButton()->hasFocus()) << "the focus of the window is no button's";
    QSignalSpy closes(&m_window, &GraphViewWindow::closeWindow);
    QTest::keyClick(&m_window, Qt::Key_Space);
    EXPECT_TRUE(closes.isEmpty());
    QTest::keyClick(&m_window, Qt::Key_Tab);
    ASSERT_TRUE(m_window.closeButton()->hasFocus());
    EXPECT_EQ(m_window.closeButton()->look(), GraphButtonLook::Plain) << "seen while it has it";
    QTest::keyClick(m_window.closeButton(), Qt::Key_Space);
    EXPECT_EQ(closes.count(), 1);
    QTest::keyClick(m_window.closeButton(), Qt::Key_Tab);
    EXPECT_TRUE(m_window.settingButton()->hasFocus());
    EXPECT_EQ(m_window.closeButton()->look(), GraphButtonLook::Hidden);
}

TEST_F(GraphViewWindowTest, ThePointerOnAButtonIsOnTheWindow)
{
    track();
    PointerOn onButton(*m_window.closeButton());
    onButton.enter({5, 5});
    EXPECT_TRUE(offersButtons());
    EXPECT_TRUE(rests(1.0F));
    m_pointer.leave();
    EXPECT_FALSE(offersButtons());
}

TEST_F(GraphViewWindowTest, AWindowManagerClosesItAsItsButtonDoes)
{
    show();
    QSignalSpy closes(&m_window, &GraphViewWindow::closeWindow);
    QCloseEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    static_cast<QObject &>(m_window).event(&event);
    EXPECT_EQ(closes.count(), 1);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_TRUE(m_window.isVisible());
}

} // namespace
} // namespace pulsebar
