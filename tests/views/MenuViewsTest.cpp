#include "views/MenuViews.h"

#include "statusitem/MenuPopup.h"
#include "support/WaitFor.h"
#include "views/DetailText.h"
#include "views/WidthSliderView.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using ::testing::ElementsAre;

MenuItem row(const QString &title)
{
    MenuItem item;
    item.title = title;
    item.action = QStringLiteral("act");
    return item;
}

MenuItem sliderRow(int width)
{
    MenuItem item = row(QStringLiteral("Show Icon"));
    item.view = QStringLiteral("widthSlider");
    item.tag = width;
    auto substitute = std::make_shared<MenuItem>(row(QStringLiteral("Width on menubar")));
    substitute->submenu = std::make_shared<Menu>();
    item.substitute = substitute;
    return item;
}

MenuItem detailRow(const QString &report)
{
    MenuItem item = row(QStringLiteral("Detail"));
    item.view = QStringLiteral("detailText");
    item.representedObject = report;
    item.substitute = std::make_shared<MenuItem>(row(QStringLiteral("Detail")));
    return item;
}

/// A menu with one row of words, a slider and a report, shown, and what is chosen in it.
class MenuViewsTest : public ::testing::Test
{
protected:
    void show(int width = 60, const QString &report = QStringLiteral("report"))
    {
        rows = Menu(QStringLiteral("Preference"));
        rows.addItem(row(QStringLiteral("first")));
        rows.addItem(sliderRow(width));
        rows.addItem(detailRow(report));
        rows.addItem(row(QStringLiteral("last")));
        const auto choose = [this](const Menu &of, const MenuItem &item) {
            holder = of.title();
            chosen.emplace_back(item.action, item.tag);
        };
        menu = renderMenu(rows, choose, makeMenuView);
        menu->popup({10, 10});
        ASSERT_TRUE(waitFor([this] { return menu->isVisible(); }));
    }

    QSlider &slider() const { return *menu->findChild<QSlider *>(); }
    DetailText &text() const { return *menu->findChild<DetailText *>(); }
    /// As the desktop hands a key to the popup on top.
    void key(Qt::Key which) const { QTest::keyClick(menu->windowHandle(), which); }

    Menu rows;
    std::unique_ptr<QMenu> menu;
    QString holder;
    std::vector<std::pair<QString, int>> chosen;
};

TEST_F(MenuViewsTest, MakesNothingForAnyOtherRow)
{
    QWidget parent;
    EXPECT_EQ(makeMenuView(row(QStringLiteral("x")), {}, &parent), nullptr);
    MenuItem item = row(QStringLiteral("x"));
    item.view = QStringLiteral("someView");
    EXPECT_EQ(makeMenuView(item, {}, &parent), nullptr);
    EXPECT_TRUE(parent.children().isEmpty());
}

TEST_F(MenuViewsTest, SetsTheWidthWhileTheSliderMoves)
{
    show(60);
    EXPECT_EQ(slider().value(), 60);
    EXPECT_EQ(slider().minimum(), 30);
    EXPECT_EQ(slider().maximum(), 200);
    EXPECT_TRUE(chosen.empty()) << "showing a width is not choosing it";
    slider().setSliderDown(true);
    slider().setSliderPosition(75);
    slider().setSliderPosition(90);
    EXPECT_THAT(chosen, ElementsAre(std::pair(QStringLiteral("setItemWidth"), 75),
                                    std::pair(QStringLiteral("setItemWidth"), 90)));
    EXPECT_EQ(holder, QStringLiteral("Preference"));
    EXPECT_TRUE(menu->isVisible());
}

TEST_F(MenuViewsTest, LeavesAWidthOutsideItsRangeAlone)
{
    show(350);
    EXPECT_EQ(slider().value(), 200);
    EXPECT_TRUE(chosen.empty());
}

TEST_F(MenuViewsTest, IsReachedMovedAndLeftByKeys)
{
    show(60);
    key(Qt::Key_Down);
    EXPECT_EQ(menu->activeAction(), menu->actions()[0]);
    key(Qt::Key_Down);
    EXPECT_EQ(menu->activeAction(), menu->actions()[1]);
    ASSERT_TRUE(waitFor([this] { return menu->focusWidget() == &slider(); }));
    key(Qt::Key_Right);
    key(Qt::Key_PageUp);
    EXPECT_EQ(slider().value(), 71);
    EXPECT_EQ(chosen.back().second, 71);
    key(Qt::Key_Left);
    EXPECT_EQ(slider().value(), 70);

    key(Qt::Key_Down);
    EXPECT_EQ(slider().value(), 70) << "up and down are the menu's";
    EXPECT_EQ(menu->activeAction(), menu->actions()[2]);
    key(Qt::Key_Tab);
    EXPECT_EQ(menu->activeAction(), menu->actions()[3]);
    key(Qt::Key_Backtab);
    key(Qt::Key_Backtab);
    EXPECT_EQ(menu->activeAction(), menu->actions()[1]);
    key(Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuViewsTest, ClosesFromWithinTheReport)
{
    show();
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Down);
    ASSERT_TRUE(waitFor([this] { return menu->focusWidget() == &text(); }));
    key(Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuViewsTest, ShowsTheReportToReadScrollAndSelect)
{
    QString report;
    for (int i = 0; i < 100; ++i)
        report += QStringLiteral("%1  <b>snake_case</b> & more\n").arg(i);
    show(60, report);
    EXPECT_EQ(text().size(), QSize(630, 361));
    EXPECT_EQ(text().toPlainText(), report);
    EXPECT_TRUE(text().isReadOnly());
    EXPECT_EQ(text().fontMetrics().horizontalAdvance(u'i'),
              text().fontMetrics().horizontalAdvance(u'W'));
    EXPECT_GT(text().verticalScrollBar()->maximum(), 0);
    EXPECT_TRUE(text().textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    QTest::keyClick(&text(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(text().textCursor().selectedText().size(), report.size());
    EXPECT_TRUE(menu->isVisible());
    EXPECT_TRUE(chosen.empty());
}

/// "role name" of everything that a screen reader finds in the menu, in order.
std::vector<std::string> described(QAccessibleInterface *all)
{
    std::vector<std::string> found;
    for (int i = 0; i < all->childCount(); ++i) {
        QAccessibleInterface *child = all->child(i);
        found.push_back(std::to_string(child->role()) + ' ' +
                        child->text(QAccessible::Name).toStdString());
    }
    return found;
}

TEST_F(MenuViewsTest, SaysWhatEveryRowIs)
{
    show();
    const std::string item = std::to_string(QAccessible::MenuItem);
    EXPECT_THAT(
        described(QAccessible::queryAccessibleInterface(menu.get())),
        ElementsAre(item + " first", item + " Width on menubar", item + " Detail", item + " last"));
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(&slider());
    EXPECT_EQ(bar->role(), QAccessible::Slider);
    EXPECT_EQ(bar->text(QAccessible::Name), QStringLiteral("Width on menubar"));
    ASSERT_NE(bar->valueInterface(), nullptr);
    EXPECT_EQ(bar->valueInterface()->currentValue(), 60);
    EXPECT_EQ(bar->valueInterface()->minimumValue(), 30);
    EXPECT_EQ(bar->valueInterface()->maximumValue(), 200);
    bar->valueInterface()->setCurrentValue(80);
    EXPECT_EQ(chosen.back().second, 80) << "moved by a screen reader";
    EXPECT_EQ(menu->findChild<QLabel *>()->text(), QStringLiteral("Width on menubar"));
    QAccessibleInterface *report = QAccessible::queryAccessibleInterface(&text());
    EXPECT_EQ(report->role(), QAccessible::EditableText);
    EXPECT_EQ(report->text(QAccessible::Name), QStringLiteral("Detailed Information"));
    EXPECT_TRUE(report->state().readOnly);
}

} // namespace
} // namespace pulsebar
