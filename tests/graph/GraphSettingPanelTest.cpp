#include "graph/GraphSettingPanel.h"

#include "graph/ColorButton.h"
#include "graph/GraphViewSetting.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace pulsebar {
namespace {

class GraphSettingPanelTest : public testing::Test
{
protected:
    GraphSettingPanelTest() { setting.setProperty("useThreshold", true); }

    template <typename Control> Control *named(const char *name)
    {
        const QList<Control *> all = panel.findChildren<Control *>();
        const auto found = std::find_if(all.begin(), all.end(), [name](const Control *control) {
            return control->accessibleName() == s(name);
        });
        return found == all.end() ? nullptr : *found;
    }

    QLabel *labelWithText(const QString &text)
    {
        const QList<QLabel *> all = panel.findChildren<QLabel *>();
        const auto found = std::find_if(
            all.begin(), all.end(), [&text](const QLabel *label) { return label->text() == text; });
        return found == all.end() ? nullptr : *found;
    }

    QColorDialog *openedDialog(ColorButton *button)
    {
        QTest::mouseClick(button, Qt::LeftButton);
        return button->findChild<QColorDialog *>();
    }

    GraphViewSetting setting;
    GraphSettingPanel panel{setting, s("KB/s")};
};

TEST_F(GraphSettingPanelTest, ShowsTheSettingsAsTheyAre)
{
    EXPECT_EQ(named<ColorButton>("Line color")->color(), QColor(Qt::red));
    EXPECT_EQ(named<ColorButton>("Background color")->color(), QColor(Qt::black));
    EXPECT_EQ(named<QSlider>("Opacity under the pointer")->value(), 100);
    EXPECT_EQ(named<QSlider>("Opacity otherwise")->value(), 55);
    EXPECT_NE(labelWithText(s("55%")), nullptr);
    EXPECT_NE(labelWithText(s("100%")), nullptr);
    EXPECT_TRUE(named<QCheckBox>("Use threshold")->isChecked());
    EXPECT_EQ(named<QDoubleSpinBox>("Threshold value")->text(), s("0.0 KB/s"));
    EXPECT_TRUE(named<QRadioButton>("Fade out while below")->isChecked());
    EXPECT_FALSE(named<QRadioButton>("Fade out while above")->isChecked());
}

TEST_F(GraphSettingPanelTest, EveryControlChangesItsFieldAtOnce)
{
    named<QSlider>("Opacity under the pointer")->setValue(80);
    EXPECT_FLOAT_EQ(setting.alphaAtPoint(), 0.8F);
    QTest::keyClick(named<QSlider>("Opacity otherwise"), Qt::Key_Right);
    EXPECT_FLOAT_EQ(setting.alphaWithoutPoint(), 0.56F);
    EXPECT_NE(labelWithText(s("56%")), nullptr);
    QTest::keyClick(named<QCheckBox>("Use threshold"), Qt::Key_Space);
    EXPECT_FALSE(setting.useThreshold());
    QTest::keyClick(named<QCheckBox>("Use threshold"), Qt::Key_Space);
    named<QDoubleSpinBox>("Threshold value")->setValue(12.5);
    EXPECT_EQ(setting.threshold(), 12.5F);
    named<QRadioButton>("Fade out while above")->click();
    EXPECT_EQ(setting.thresholdType(), 0);
    named<QRadioButton>("Fade out while below")->click();
    EXPECT_EQ(setting.thresholdType(), 1);
}

TEST_F(GraphSettingPanelTest, FollowsFieldsThatOthersChange)
{
    setting.setProperty("lineColor", QColor(1, 2, 3, 4));
    EXPECT_EQ(named<ColorButton>("Line color")->color(), QColor(1, 2, 3, 4));
    setting.setProperty("alphaWithoutPoint", 0.2F);
    EXPECT_EQ(named<QSlider>("Opacity otherwise")->value(), 20);
    EXPECT_NE(labelWithText(s("20%")), nullptr);
    setting.setProperty("threshold", -4.0F);
    EXPECT_EQ(named<QDoubleSpinBox>("Threshold value")->value(), -4.0);
    setting.setProperty("thresholdType", 0);
    EXPECT_TRUE(named<QRadioButton>("Fade out while above")->isChecked());
    EXPECT_FALSE(named<QRadioButton>("Fade out while below")->isChecked());
    setting.setProperty("thresholdType", 9);
    EXPECT_TRUE(named<QRadioButton>("Fade out while below")->isChecked());
    EXPECT_EQ(setting.thresholdType(), 9) << "showing changes nothing";
    setting.setProperty("useThreshold", false);
    EXPECT_FALSE(named<QCheckBox>("Use threshold")->isChecked());
    EXPECT_FALSE(named<QDoubleSpinBox>("Threshold value")->isEnabled());
}

TEST_F(GraphSettingPanelTest, ShowingARoundedValueDoesNotRoundTheSetting)
{
    setting.setProperty("alphaWithoutPoint", 0.333F);
    setting.setProperty("threshold", 0.26F);
    EXPECT_EQ(named<QSlider>("Opacity otherwise")->value(), 33);
    EXPECT_EQ(setting.alphaWithoutPoint(), 0.333F);
    EXPECT_EQ(setting.threshold(), 0.26F);
}

TEST_F(GraphSettingPanelTest, TypingANumberIsNotDisturbed)
{
    panel.show();
    auto *field = named<QDoubleSpinBox>("Threshold value");
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, s("12"));
    EXPECT_EQ(setting.threshold(), 12.0F);
    EXPECT_EQ(field->text(), s("12 KB/s"));
    QTest::keyClicks(field, s(".5"));
    EXPECT_EQ(setting.threshold(), 12.5F);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(GraphSettingPanelTest, AColorIsChosenLiveAndWithItsAlpha)
{
    panel.show();
    auto *button = named<ColorButton>("Line color");
    QColorDialog *dialog = openedDialog(button);
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->testOption(QColorDialog::ShowAlphaChannel));
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(dialog->currentColor(), QColor(Qt::red));
    EXPECT_EQ(setting.lineColor(), QColor(Qt::red)) << "opening chooses nothing";
    dialog->setCurrentColor(QColor(0, 255, 0, 128));
    EXPECT_EQ(setting.lineColor(), QColor(0, 255, 0, 128));
    EXPECT_EQ(button->color(), QColor(0, 255, 0, 128));
    EXPECT_EQ(button->text(), s("#00FF00  50%"));
    setting.setProperty("lineColor", QColor(Qt::blue));
    EXPECT_EQ(dialog->currentColor(), QColor(Qt::blue));
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(setting.lineColor(), QColor(Qt::blue)) << "there is no way back";
}

TEST_F(GraphSettingPanelTest, ColorDialogsGoWithThePanel)
{
    panel.show();
    QColorDialog *dialog = openedDialog(named<ColorButton>("Background color"));
    ASSERT_TRUE(dialog->isVisible());
    panel.close();
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(GraphSettingPanelTest, AMissingColorIsShownAsNone)
{
    setting.setProperty("lineColor", QColor());
    auto *button = named<ColorButton>("Line color");
    EXPECT_EQ(button->text(), s("–"));
    panel.show();
    openedDialog(button);
    EXPECT_FALSE(setting.lineColor().isValid());
}

TEST_F(GraphSettingPanelTest, SwatchesShowACheckerboardThroughTranslucentColors)
{
    const auto colorsIn = [this] {
        const QImage image = named<ColorButton>("Line color")->icon().pixmap(200).toImage();
        QList<QRgb> colors;
        for (int x = 1; x < image.width() - 1; ++x) {
            if (!colors.contains(image.pixel(x, image.height() / 2)))
                colors += image.pixel(x, image.height() / 2);
        }
        return colors;
    };
    EXPECT_EQ(colorsIn(), QList<QRgb>{QColor(Qt::red).rgb()});
    setting.setProperty("lineColor", QColor(255, 0, 0, 128));
    EXPECT_EQ(colorsIn().size(), 2);
}

TEST_F(GraphSettingPanelTest, IsReachedByTheKeyboardInOrder)
{
    panel.show();
    QStringList order;
    const QWidget *widget = named<ColorButton>("Line color");
    const QWidget *first = widget;
    do {
        const bool stop = (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled();
        if (stop && !widget->accessibleName().isEmpty())
            order += widget->accessibleName();
        widget = widget->nextInFocusChain();
    } while (widget != first);
    EXPECT_EQ(order,
              QStringList({s("Line color"), s("Background color"), s("Opacity under the pointer"),
                           s("Opacity otherwise"), s("Use threshold"), s("Threshold value"),
                           s("Fade out while below"), s("Fade out while above"), s("Close")}));
}

TEST_F(GraphSettingPanelTest, EveryLabelLeadsToItsControl)
{
    for (const auto &[text, name] :
         {std::pair{"&Line color:", "Line color"},
          std::pair{"&Background color:", "Background color"},
          std::pair{"Opacity under the &pointer:", "Opacity under the pointer"},
          std::pair{"Opacity &otherwise:", "Opacity otherwise"},
          std::pair{"Threshold &value:", "Threshold value"}}) {
        const QLabel *label = labelWithText(s(text));
        ASSERT_NE(label, nullptr) << text;
        ASSERT_NE(label->buddy(), nullptr) << text;
        EXPECT_EQ(label->buddy()->accessibleName(), s(name));
    }
}

TEST_F(GraphSettingPanelTest, MnemonicsAreUnique)
{
    QString letters;
    const auto note = [&letters](const QString &text) {
        const qsizetype at = text.indexOf(u'&');
        if (at >= 0)
            letters += text.at(at + 1).toLower();
    };
    for (const QLabel *label : panel.findChildren<QLabel *>())
        note(label->text());
    for (const QAbstractButton *button : panel.findChildren<QAbstractButton *>())
        note(button->text());
    EXPECT_EQ(letters.size(), 9);
    EXPECT_EQ(QSet<QChar>(letters.begin(), letters.end()).size(), letters.size())
        << letters.toStdString();
}

TEST_F(GraphSettingPanelTest, EscapeAndTheButtonAskToClose)
{
    QSignalSpy asked(&panel, &GraphSettingPanel::closeRequested);
    panel.show();
    QTest::mouseClick(named<QPushButton>("Close"), Qt::LeftButton);
    EXPECT_EQ(asked.size(), 1);
    QTest::keyClick(&panel, Qt::Key_Escape);
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(GraphSettingPanelTest, FitsASmallScreenEvenWithLargeLetters)
{
    const QSize room = panel.screen()->availableSize();
    ASSERT_EQ(room, QSize(800, 800));
    EXPECT_LE(panel.sizeHint().width(), 600);
    EXPECT_LE(panel.sizeHint().height(), 500);
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSizeF(before.pointSizeF() * 4);
    QApplication::setFont(large);
    GraphSettingPanel big(setting, s("RPM"));
    big.show();
    EXPECT_LE(big.width(), room.width());
    EXPECT_LE(big.height(), room.height());
    QApplication::setFont(before);
}

} // namespace
} // namespace pulsebar
