#include "views/DetailWindow.h"

#include "support/WaitFor.h"
#include "views/DetailText.h"

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class DetailWindowTest : public ::testing::Test
{
protected:
    ~DetailWindowTest() override
    {
        window.close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static QWidget *top()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible())
                return widget;
        }
        return nullptr;
    }

    static DetailText *text() { return top() ? top()->findChild<DetailText *>() : nullptr; }

    static QString manyLines(const QString &each)
    {
        QString lines;
        for (int i = 0; i < 200; ++i)
            lines += QStringLiteral("%1 %2\n").arg(each, QString::number(i));
        return lines;
    }

    static void mouse(QEvent::Type type, QPoint at)
    {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, text()->viewport()->mapToGlobal(at), Qt::LeftButton,
                          up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(text()->viewport(), &event);
    }

    QString report = QStringLiteral("first");
    int asked = 0;
    DetailWindow window{[this] {
        ++asked;
        return report;
    }};
};

TEST_F(DetailWindowTest, ShowsTheReportWithoutTouchingIt)
{
    EXPECT_FALSE(window.isOpen());
    report = QStringLiteral("<b>12</b> snake_case & more\n");
    window.show();
    ASSERT_NE(text(), nullptr);
    EXPECT_EQ(text()->toPlainText(), report);
    EXPECT_EQ(text()->size(), QSize(630, 361));
    EXPECT_EQ(top()->size(), QSize(630, 361));
    EXPECT_EQ(top()->windowTitle(), QStringLiteral("Detailed Information"));
    EXPECT_TRUE(text()->isReadOnly());
    EXPECT_EQ(text()->fontMetrics().horizontalAdvance(u'i'),
              text()->fontMetrics().horizontalAdvance(u'W'));
}

TEST_F(DetailWindowTest, CostsNothingWhileClosed)
{
    window.refresh();
    EXPECT_EQ(asked, 0);
    window.show();
    window.close();
    asked = 0;
    window.refresh();
    EXPECT_EQ(asked, 0);
    EXPECT_TRUE(waitFor([] { return QApplication::topLevelWidgets().isEmpty(); }))
        << "nothing of it is kept";
}

TEST_F(DetailWindowTest, FollowsTheSamplesWhileOpen)
{
    window.show();
    report = QStringLiteral("second");
    EXPECT_EQ(text()->toPlainText(), QStringLiteral("first"));
    window.refresh();
    EXPECT_EQ(text()->toPlainText(), QStringLiteral("second"));
}

TEST_F(DetailWindowTest, IsOneWindowHoweverOftenItIsAskedFor)
{
    window.show();
    const QWidget *first = top();
    top()->setWindowState(Qt::WindowMinimized);
    window.show();
    EXPECT_EQ(top(), first);
    EXPECT_FALSE(top()->isMinimized());
    EXPECT_EQ(QApplication::topLevelWidgets().size(), 1);
}

TEST_F(DetailWindowTest, OpensAgainRightAfterItWasClosed)
{
    window.show();
    window.close();
    window.show();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isOpen());
    EXPECT_EQ(QApplication::topLevelWidgets().size(), 1);
}

TEST_F(DetailWindowTest, ClosesWithEscapeAndEndsNothing)
{
    bool ended = false;
    const auto quits = QObject::connect(qApp, &QGuiApplication::lastWindowClosed, qApp,
                                        [&ended] { ended = true; });
    window.show();
    ASSERT_TRUE(waitFor([] { return QApplication::focusWidget() == text(); }));
    QTest::keyClick(top()->windowHandle(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([this] { return !window.isOpen(); }));
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    EXPECT_FALSE(ended) << "the program goes on, with or without it";
    QObject::disconnect(quits);
}

TEST_F(DetailWindowTest, KeepsPlaceAndSelectionWhenTheReportChanges)
{
    report = manyLines(QStringLiteral("before"));
    window.show();
    QTextCursor cursor = text()->textCursor();
    cursor.setPosition(700);
    cursor.setPosition(712, QTextCursor::KeepAnchor);
    text()->setTextCursor(cursor);
    text()->verticalScrollBar()->setValue(60);
    const int down = text()->verticalScrollBar()->value();
    ASSERT_GT(down, 0);

    report = manyLines(QStringLiteral("behind"));
    window.refresh();
    EXPECT_TRUE(text()->toPlainText().startsWith(QStringLiteral("behind 0")));
    EXPECT_EQ(text()->verticalScrollBar()->value(), down);
    EXPECT_EQ(text()->textCursor().anchor(), 700);
    EXPECT_EQ(text()->textCursor().position(), 712);

    report = QStringLiteral("short");
    window.refresh();
    EXPECT_EQ(text()->textCursor().position(), 5) << "what is gone cannot stay selected";
}

TEST_F(DetailWindowTest, StaysStillUnderASelectingMouse)
{
    window.show();
    mouse(QEvent::MouseButtonPress, {5, 5});
    report = QStringLiteral("second");
    window.refresh();
    EXPECT_EQ(text()->toPlainText(), QStringLiteral("first"));
    mouse(QEvent::MouseButtonRelease, {40, 5});
    window.refresh();
    EXPECT_EQ(text()->toPlainText(), QStringLiteral("second"));
}

TEST_F(DetailWindowTest, ShowsHostileTextsWithoutHarm)
{
    report =
        QString(QChar(u'\0')) + QStringLiteral("\u202e\x1b]0;x\x07\n") + QString(1 << 21, u'y');
    window.show();
    EXPECT_TRUE(text()->toPlainText().startsWith(QStringLiteral("\uFFFD\uFFFD\uFFFD]0;x\uFFFD\n")));
    EXPECT_LT(text()->toPlainText().size(), 5000);
    EXPECT_FALSE(text()->grab().isNull());
}

TEST_F(DetailWindowTest, SaysWhatItIs)
{
    window.show();
    QAccessibleInterface *all = QAccessible::queryAccessibleInterface(top());
    ASSERT_NE(all, nullptr);
    EXPECT_EQ(all->text(QAccessible::Name), QStringLiteral("Detailed Information"));
    QAccessibleInterface *field = QAccessible::queryAccessibleInterface(text());
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(QAccessible::Name), QStringLiteral("Detailed Information"));
    EXPECT_EQ(field->role(), QAccessible::EditableText);
    EXPECT_TRUE(field->state().readOnly);
    ASSERT_NE(field->textInterface(), nullptr);
    EXPECT_EQ(field->textInterface()->text(0, 5), QStringLiteral("first"));
}

} // namespace
} // namespace pulsebar
