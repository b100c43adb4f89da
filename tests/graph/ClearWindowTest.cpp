#include "graph/ClearWindow.h"

#include "graph/FakeWindowServices.h"
#include "graph/ScreenSpace.h"
#include "support/WaitFor.h"

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

/// Paints itself red, and counts.
class CountingWindow : public ClearWindow
{
public:
    using ClearWindow::ClearWindow;
    using ClearWindow::setNeedsDisplay;

    int paints = 0;
    int contents = 0;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        ++paints;
        ClearWindow::paintEvent(event);
    }
    void paintContent(QPainter &painter, float opacity) override
    {
        ++contents;
        painter.setOpacity(double(opacity));
        painter.fillRect(rect(), Qt::red);
    }
};

class ClearWindowTest : public testing::Test
{
protected:
    ClearWindowTest() { m_window.initWithContentRect({300, 200, 200, 70}); }

    void show()
    {
        m_window.orderFront();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        ASSERT_TRUE(waitFor([this] { return m_window.paints > 0; }));
        settle();
    }
    /// Until everything that was asked for is painted.
    static void settle()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
    QColor pixel()
    {
        QImage image(m_window.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        m_window.render(&image, {}, {}, {});
        return image.pixelColor(100, 35);
    }

    FakeWindowServices m_desktop;
    CountingWindow m_window{&m_desktop.services};
};

TEST_F(ClearWindowTest, HasNoFrameAndFloats)
{
    const Qt::WindowFlags flags = m_window.windowFlags();
    EXPECT_EQ(flags & Qt::WindowType_Mask, Qt::Window);
    EXPECT_TRUE(flags & Qt::FramelessWindowHint);
    EXPECT_TRUE(flags & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(flags & Qt::X11BypassWindowManagerHint);
    EXPECT_FALSE(flags & Qt::WindowDoesNotAcceptFocus) << "a click may give it the focus";
    EXPECT_TRUE(m_window.canBecomeKeyWindow());
    EXPECT_TRUE(m_window.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(m_window.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_FALSE(m_window.testAttribute(Qt::WA_QuitOnClose));
}

TEST_F(ClearWindowTest, DoesWithoutAWindowManagerThatWouldNotListen)
{
    m_desktop.services.setBypassesWindowManager(true);
    ClearWindow window(&m_desktop.services);
    window.initWithContentRect({300, 200, 200, 70});
    EXPECT_TRUE(window.windowFlags() & Qt::X11BypassWindowManagerHint);
}

/// One that looks like any other.
class PlainWindow : public ClearWindow
{
public:
    using ClearWindow::ClearWindow;

protected:
    QColor currentBackGroundColor() const override { return Qt::blue; }
    int currentWindowLevel() const override { return 0; }
    bool currentWindowOpaque() const override { return true; }
    bool currentWindowShadow() const override { return true; }
};

TEST_F(ClearWindowTest, AKindOfWindowMayLookOtherwise)
{
    PlainWindow window(&m_desktop.services);
    window.initWithContentRect({300, 200, 200, 70});
    EXPECT_FALSE(window.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(window.testAttribute(Qt::WA_TranslucentBackground));
    QImage image(window.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    window.render(&image);
    EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::blue));
    EXPECT_TRUE(m_desktop.hints.shadowless.isEmpty());
}

TEST_F(ClearWindowTest, TellsTheWindowManagerOnceEveryTimeItIsShown)
{
    show();
    m_window.update();
    settle();
    EXPECT_EQ(m_desktop.hints.onAllWorkspaces, QVector<quintptr>{m_window.winId()});
    EXPECT_EQ(m_desktop.hints.shadowless, QVector<quintptr>{m_window.winId()});
    m_window.orderOut();
    show();
    EXPECT_EQ(m_desktop.hints.onAllWorkspaces.size(), 2);
}

TEST_F(ClearWindowTest, StandsAtItsFrameCountedUpward)
{
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 200, 70));
    EXPECT_EQ(QRectF(m_window.geometry()), currentScreenSpace().flipped(QRectF(300, 200, 200, 70)));
}

TEST_F(ClearWindowTest, IsNeverTooSmall)
{
    QSignalSpy changes(&m_window, &ClearWindow::frameChanged);
    m_window.setFrame({10, 20, 0, 0});
    EXPECT_EQ(m_window.frame(), QRectF(10, 20, 120, 42));
    EXPECT_EQ(changes.count(), 1);
    m_window.setFrame({10, 20, 30, 42});
    EXPECT_EQ(changes.count(), 1) << "nothing changed";
}

TEST_F(ClearWindowTest, StaysWithinTheWindowSystemsReach)
{
    m_window.setFrame({3e38, -3e38, 3e38, 1e300});
    EXPECT_EQ(m_window.frame(), QRectF(32767, -32767, 32767, 32767));
    EXPECT_EQ(m_window.geometry().x(), 32767);
}

TEST_F(ClearWindowTest, KeepsTheFractionsOfItsFrame)
{
    show();
    m_window.setFrame({300.25, 200.5, 210.75, 70});
    settle();
    EXPECT_EQ(m_window.frame(), QRectF(300.25, 200.5, 210.75, 70));
}

TEST_F(ClearWindowTest, AdoptsTheFrameThatTheWindowSystemGivesIt)
{
    show();
    QSignalSpy changes(&m_window, &ClearWindow::frameChanged);
    m_window.windowHandle()->setGeometry(50, 60, 250, 80);
    EXPECT_TRUE(waitFor([&] { return changes.count() > 0; }));
    settle();
    EXPECT_EQ(m_window.frame(), currentScreenSpace().flipped(QRectF(50, 60, 250, 80)));
}

TEST_F(ClearWindowTest, OpacityStaysInItsRange)
{
    m_window.setAlphaValue(2.0F);
    EXPECT_EQ(m_window.alphaValue(), 1.0F);
    m_window.setAlphaValue(-0.5F);
    EXPECT_EQ(m_window.alphaValue(), 0.0F);
    m_window.setAlphaValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(m_window.alphaValue(), 0.0F);
    m_window.setAlphaValue(0.5F);
    EXPECT_EQ(m_window.alphaValue(), 0.5F);
}

TEST_F(ClearWindowTest, OpacityIsPainted)
{
    m_window.setAlphaValue(0.6F);
    EXPECT_EQ(m_window.windowOpacity(), 1.0) << "not every window system has it";
    EXPECT_NEAR(pixel().alphaF(), 0.6, 0.01);
    EXPECT_NEAR(pixel().redF(), 1.0, 0.01);
    m_window.setAlphaValue(0.0F);
    EXPECT_EQ(pixel().alpha(), 0);
}

TEST_F(ClearWindowTest, WithoutTranslucencyItIsOpaque)
{
    m_window.setAlphaValue(0.3F);
    m_desktop.compositing.run(false);
    EXPECT_EQ(pixel(), QColor(Qt::red));
}

TEST_F(ClearWindowTest, PaintsOnceForWhatComesTogether)
{
    show();
    for (int sample = 1; sample <= 3; ++sample) {
        const int before = m_window.paints;
        m_window.setNeedsDisplay();
        m_window.setNeedsDisplay();
        settle();
        EXPECT_EQ(m_window.paints, before + 1);
    }
}

TEST_F(ClearWindowTest, PaintsNothingWhileItIsHidden)
{
    show();
    m_window.orderOut();
    const int before = m_window.paints;
    m_window.setNeedsDisplay();
    m_window.setAlphaValue(0.5F);
    settle();
    EXPECT_EQ(m_window.paints, before);
    m_window.orderFront();
    EXPECT_TRUE(waitFor([&] { return m_window.paints > before; }));
    settle();
    EXPECT_EQ(m_window.paints, before + 1);
}

TEST_F(ClearWindowTest, PaintsNothingWhileItIsFadedOut)
{
    show();
    int before = m_window.paints;
    m_window.setAlphaValue(0.0F);
    settle();
    EXPECT_EQ(m_window.paints, before + 1) << "to be gone";
    EXPECT_TRUE(m_window.isVisible()) << "the pointer still finds it";
    before = m_window.paints;
    const int contents = m_window.contents;
    for (int sample = 0; sample < 5; ++sample) {
        m_window.setNeedsDisplay();
        settle();
    }
    EXPECT_EQ(m_window.paints, before);
    EXPECT_EQ(m_window.contents, contents);
    m_window.setAlphaValue(0.1F);
    settle();
    EXPECT_EQ(m_window.paints, before + 1);
    EXPECT_EQ(m_window.contents, contents + 1);
}

TEST_F(ClearWindowTest, PaintsNothingWhileItIsCovered)
{
    show();
    m_desktop.cover.covered = true;
    const int before = m_window.paints;
    for (int sample = 0; sample < 5; ++sample) {
        m_window.setNeedsDisplay();
        m_window.setAlphaValue(0.9F - 0.1F * float(sample));
        settle();
    }
    m_desktop.cover.stir();
    settle();
    EXPECT_EQ(m_window.paints, before);
    m_desktop.cover.uncover();
    settle();
    EXPECT_EQ(m_window.paints, before + 1);
    m_desktop.cover.stir();
    settle();
    EXPECT_EQ(m_window.paints, before + 1) << "nothing is due any more";
}

TEST_F(ClearWindowTest, AsksForWhatCoversItOnlyWhenItHasToPaint)
{
    m_window.setNeedsDisplay();
    EXPECT_EQ(m_desktop.cover.questions, 0) << "it is not shown";
    show();
    const int before = m_desktop.cover.questions;
    settle();
    EXPECT_EQ(m_desktop.cover.questions, before);
    m_window.setNeedsDisplay();
    EXPECT_EQ(m_desktop.cover.questions, before + 1);
}

TEST_F(ClearWindowTest, WithoutTranslucencyAFadedOutWindowIsNotThere)
{
    m_desktop.compositing.run(false);
    show();
    m_window.setAlphaValue(0.0F);
    EXPECT_FALSE(m_window.isVisible());
    EXPECT_TRUE(m_window.isOrderedIn());
    m_window.orderFront();
    EXPECT_FALSE(m_window.isVisible()) << "it would be an opaque box";
    m_window.setAlphaValue(0.1F);
    EXPECT_TRUE(m_window.isVisible());
    // One that was ordered out does not come back by itself.
    m_window.orderOut();
    m_window.setAlphaValue(0.0F);
    m_window.setAlphaValue(1.0F);
    EXPECT_FALSE(m_window.isVisible());
}

TEST_F(ClearWindowTest, WithoutTranslucencyAFadePaintsNothing)
{
    m_desktop.compositing.run(false);
    show();
    const int before = m_window.paints;
    m_window.setAlphaValue(0.7F);
    m_window.setAlphaValue(0.4F);
    settle();
    EXPECT_EQ(m_window.paints, before) << "it looks the same";
}

TEST_F(ClearWindowTest, FollowsACompositorThatComesAndGoes)
{
    show();
    m_window.setAlphaValue(0.0F);
    m_desktop.compositing.run(false);
    EXPECT_FALSE(m_window.isVisible());
    m_desktop.compositing.run(true);
    EXPECT_TRUE(m_window.isVisible());
    m_window.setAlphaValue(0.5F);
    settle();
    const int before = m_window.paints;
    m_desktop.compositing.run(false);
    settle();
    EXPECT_EQ(m_window.paints, before + 1);
    EXPECT_EQ(pixel(), QColor(Qt::red));
}

TEST(WindowServicesTest, WithoutADesktopEverythingIsSeen)
{
    const WindowServices services({});
    EXPECT_TRUE(services.composes());
    EXPECT_FALSE(services.isCovered(1));
    EXPECT_EQ(services.hints(), nullptr);
    EXPECT_TRUE(services.placesWindows());
    EXPECT_FALSE(services.bypassesWindowManager());
}

} // namespace
} // namespace pulsebar
