// The tooltip about single samples, over a graph's window.
#include "graph/FakeWindowServices.h"
#include "graph/GraphView.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphViewWindow.h"
#include "graph/PointerOn.h"
#include "support/QtPrinting.h"
#include "support/Text.h"
#include "support/WaitFor.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// A window of 200 by 70 points with samples at 1, 50, 99, 148 and 197.
class PointedToolTipTest : public testing::Test
{
protected:
    PointedToolTipTest()
    {
        m_window.initWithContentRect({300, 200, 200, 70});
        m_view.setViewSetting(&m_setting);
        m_view.setUsageCacheArray({0.1, 0.2, 0.3, 0.4, 0.5});
        m_window.setGraphView(&m_view);
        m_window.setViewSetting(&m_setting);
        m_window.updateBackgroundAlphaValue();
        m_window.setSampleText([this](std::size_t back) {
            asked += back;
            return texts.value(static_cast<qsizetype>(back));
        });
        m_window.orderFront();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }
    ~PointedToolTipTest() override
    {
        QToolTip::hideText();
        EXPECT_TRUE(waitFor([] { return tip() == nullptr; }));
    }

    /// As when the pointer has rested there. @return whether there is a tooltip
    bool rest(QPoint place)
    {
        QHelpEvent event(QEvent::ToolTip, place, m_window.mapToGlobal(place));
        QCoreApplication::sendEvent(&m_window, &event);
        return event.isAccepted();
    }
    static QLabel *tip()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->windowType() == Qt::ToolTip)
                return qobject_cast<QLabel *>(widget);
        }
        return nullptr;
    }
    /// What the user reads; empty without a tooltip.
    static QString shown()
    {
        const QLabel *label = tip();
        if (label == nullptr)
            return {};
        if (!Qt::mightBeRichText(label->text()))
            return label->text();
        QTextDocument document;
        document.setHtml(label->text());
        return document.toPlainText();
    }

    FakeWindowServices m_desktop;
    GraphViewSetting m_setting;
    CPUGraphView m_view;
    GraphViewWindow m_window{&m_desktop.services};
    PointerOn m_pointer{m_window};
    QStringList texts{s("newest"), s("second"), s("third"), s("fourth"), s("oldest")};
    QVector<std::size_t> asked;
};

TEST_F(PointedToolTipTest, TellsOfTheSampleUnderThePointer)
{
    EXPECT_TRUE(rest({197, 10}));
    EXPECT_EQ(shown(), s("newest"));
    EXPECT_TRUE(rest({75, 60}));
    EXPECT_EQ(shown(), s("third"));
    EXPECT_TRUE(rest({0, 0}));
    EXPECT_EQ(shown(), s("oldest"));
    EXPECT_EQ(asked, (QVector<std::size_t>{0, 2, 4}));
}

TEST_F(PointedToolTipTest, FollowsThePointer)
{
    ASSERT_TRUE(rest({197, 10}));
    const QPoint before = tip()->pos();
    m_pointer.enter({197, 10});
    m_pointer.move({150, 12});
    EXPECT_EQ(shown(), s("second"));
    EXPECT_EQ(tip()->pos(), before + QPoint(-47, 2));
    // Over the same sample, too.
    m_pointer.move({140, 12});
    EXPECT_EQ(tip()->pos(), before + QPoint(-57, 2));
}

TEST_F(PointedToolTipTest, FollowsTheSamplesWhileThePointerRests)
{
    ASSERT_TRUE(rest({148, 10}));
    EXPECT_EQ(shown(), s("second"));
    texts = QStringList{s("fresh"), s("newest"), s("second")};
    m_view.setUsageCacheArray({0.2, 0.3, 0.4, 0.5, 0.6});
    EXPECT_EQ(shown(), s("newest"));
}

TEST_F(PointedToolTipTest, NothingIsAskedUntilItIsShown)
{
    m_pointer.enter({100, 35});
    m_pointer.move({120, 35});
    m_view.setUsageCacheArray({0.2, 0.3, 0.4, 0.5, 0.6});
    EXPECT_TRUE(asked.isEmpty());
    ASSERT_TRUE(rest({120, 35}));
    m_pointer.leave();
    asked.clear();
    m_view.setUsageCacheArray({0.3, 0.4, 0.5, 0.6, 0.7});
    m_pointer.move({130, 35});
    EXPECT_TRUE(asked.isEmpty()) << "it went when the pointer left";
    EXPECT_TRUE(waitFor([] { return tip() == nullptr; }));
}

TEST_F(PointedToolTipTest, IsNotThereWithoutAText)
{
    texts.clear();
    EXPECT_FALSE(rest({100, 35}));
    EXPECT_EQ(tip(), nullptr);
    m_window.setSampleText({});
    EXPECT_FALSE(rest({100, 35}));
}

TEST_F(PointedToolTipTest, IsNotThereWithoutALine)
{
    m_view.setUsageCacheArray({0.1, 0.2, 0.3, 0.4});
    EXPECT_FALSE(rest({100, 35}));
    m_window.setGraphView(nullptr);
    EXPECT_FALSE(rest({100, 35}));
    EXPECT_TRUE(asked.isEmpty());
}

TEST_F(PointedToolTipTest, GoesWhenItsSampleHasNoTextAnyLonger)
{
    ASSERT_TRUE(rest({0, 10}));
    texts.removeLast();
    m_view.setUsageCacheArray({0.2, 0.3, 0.4, 0.5, 0.6});
    EXPECT_TRUE(waitFor([] { return tip() == nullptr; }));
}

TEST_F(PointedToolTipTest, GoesWithTheWindow)
{
    ASSERT_TRUE(rest({100, 10}));
    m_window.orderOut();
    EXPECT_TRUE(waitFor([] { return tip() == nullptr; }));
}

TEST_F(PointedToolTipTest, TakesNoNameForMarkup)
{
    for (const char *name : {"14:03:12 1.0%: <b>x</b>, &lt;, a & b", "<img src=\"/etc/passwd\">",
                             "two  spaces", "&amp;", "plain"}) {
        texts[0] = s(name);
        ASSERT_TRUE(rest({197, 10}));
        EXPECT_EQ(shown(), s(name));
    }
}

TEST_F(PointedToolTipTest, OnlyALongTextIsBrokenIntoLines)
{
    ASSERT_TRUE(rest({197, 10}));
    const int line = tip()->height();
    texts[0] = s("14:03:12 92.1%: cc1plus, Web Content, systemd-journal");
    ASSERT_TRUE(rest({195, 10}));
    EXPECT_EQ(tip()->height(), line);
    texts[0] = s("14:03:12 92.1%: ") + s("name ").repeated(50);
    ASSERT_TRUE(rest({196, 10}));
    EXPECT_GT(tip()->height(), line);
    EXPECT_LT(tip()->width(), 900);
}

TEST_F(PointedToolTipTest, ComesUpThoughAnotherWindowIsActive)
{
    EXPECT_TRUE(m_window.testAttribute(Qt::WA_AlwaysShowToolTips));
}

} // namespace
} // namespace pulsebar
