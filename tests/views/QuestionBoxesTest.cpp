#include "views/QuestionBoxes.h"

#include "support/WaitFor.h"

#include <QAccessible>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class QuestionBoxesTest : public ::testing::Test
{
protected:
    static Question question(const char *key = "412 100")
    {
        return {QString::fromLatin1(key),         QStringLiteral("<b>S&ari</b> (412)"),
                QStringLiteral("It may be lost"), QStringLiteral("Try <i>first</i>"),
                QStringLiteral("Cancel"),         QStringLiteral("Force Quit")};
    }
    void ask(const char *key = "412 100")
    {
        m_boxes.ask(question(key), [this](bool proceed) { m_answers.push_back(proceed); });
    }
    static QVector<QMessageBox *> shown()
    {
        QVector<QMessageBox *> boxes;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *box = qobject_cast<QMessageBox *>(widget); box && box->isVisible())
                boxes.append(box);
        }
        return boxes;
    }
    static QPushButton *button(const char *text)
    {
        for (QMessageBox *box : shown()) {
            for (auto *candidate : box->findChildren<QPushButton *>()) {
                if (candidate->text() == QString::fromLatin1(text))
                    return candidate;
            }
        }
        return nullptr;
    }

    std::vector<bool> m_answers;
    QuestionBoxes m_boxes;
};

TEST_F(QuestionBoxesTest, ShowsItsTextsAsTheyAre)
{
    ask();
    ASSERT_EQ(shown().size(), 1);
    const QMessageBox &box = *shown().front();
    EXPECT_EQ(box.windowTitle(), QStringLiteral("<b>S&ari</b> (412)"));
    EXPECT_EQ(box.text(), QStringLiteral("It may be lost"));
    EXPECT_EQ(box.informativeText(), QStringLiteral("Try <i>first</i>"));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.buttons().size(), 2);
    EXPECT_FALSE(box.isModal());
    EXPECT_TRUE(m_answers.empty());
}

TEST_F(QuestionBoxesTest, ProceedIsTheOnlyWayToYes)
{
    ask();
    ASSERT_TRUE(button("Force Quit"));
    QTest::mouseClick(button("Force Quit"), Qt::LeftButton);
    EXPECT_EQ(m_answers, std::vector<bool>{true});
    EXPECT_TRUE(waitFor([] { return shown().isEmpty(); }));
}

TEST_F(QuestionBoxesTest, CancelReturnEscapeAndClosingAreNo)
{
    ask("1");
    QTest::mouseClick(button("Cancel"), Qt::LeftButton);
    ask("2");
    QTest::keyClick(shown().front(), Qt::Key_Return);
    ask("3");
    QTest::keyClick(shown().front(), Qt::Key_Escape);
    ask("4");
    shown().front()->close();
    EXPECT_EQ(m_answers, (std::vector<bool>{false, false, false, false}));
}

TEST_F(QuestionBoxesTest, TheKeyboardReachesBothButtons)
{
    ask();
    EXPECT_TRUE(button("Cancel")->isDefault());
    button("Force Quit")->setFocus();
    QTest::keyClick(button("Force Quit"), Qt::Key_Space);
    EXPECT_EQ(m_answers, std::vector<bool>{true});
}

TEST_F(QuestionBoxesTest, TheSameQuestionStandsOnce)
{
    ask();
    ask();
    EXPECT_EQ(shown().size(), 1);
    ask("500 100");
    EXPECT_EQ(shown().size(), 2);
    for (QMessageBox *box : shown())
        box->close();
    EXPECT_EQ(m_answers, (std::vector<bool>{false, false}));
    // Answered, it may be asked again.
    ask();
    EXPECT_EQ(shown().size(), 1);
}

TEST_F(QuestionBoxesTest, ScreenReadersHearTheTexts)
{
    ask();
    QAccessibleInterface *yes = QAccessible::queryAccessibleInterface(button("Force Quit"));
    ASSERT_TRUE(yes);
    EXPECT_EQ(yes->text(QAccessible::Name), QStringLiteral("Force Quit"));
    QAccessibleInterface *box = QAccessible::queryAccessibleInterface(shown().front());
    ASSERT_TRUE(box);
    EXPECT_EQ(box->role(), QAccessible::AlertMessage);
}

TEST_F(QuestionBoxesTest, NothingIsAnsweredAfterTheEnd)
{
    {
        QuestionBoxes boxes;
        boxes.ask(question(), [this](bool proceed) { m_answers.push_back(proceed); });
    }
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_TRUE(m_answers.empty());
}

} // namespace
} // namespace pulsebar
