#include "views/AlertPanel.h"

#include "support/QtPrinting.h"
#include "support/Text.h"
#include "support/WaitFor.h"
#include "views/AlertPanels.h"
#include "views/ByteRates.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace pulsebar {
namespace {

AlertRule ruleOf(AlertSubject subject, double threshold, const char *part = "")
{
    AlertRule rule;
    rule.subject = subject;
    rule.threshold = threshold;
    rule.part = s(part);
    return rule;
}

class AlertPanelTest : public testing::Test
{
protected:
    AlertPanel &edit(const AlertRule &rule, bool fahrenheit = false)
    {
        AlertEdit edit;
        edit.id = s("alert-1");
        edit.rule = rule;
        edit.sensors = QStringList{s("CPU Die"), s("SSD")};
        edit.processes = QStringList{s("cc1plus"), s("firefox")};
        edit.fahrenheit = fahrenheit;
        m_panel = std::make_unique<AlertPanel>(
            edit, [this](const AlertRule &accepted) { m_accepted = accepted; });
        m_panel->show();
        return *m_panel;
    }

    /// The field that a screen reader calls by that name.
    template <typename Field> Field &field(const char *name)
    {
        for (Field *candidate : m_panel->findChildren<Field *>()) {
            if (candidate->accessibleName() == s(name))
                return *candidate;
        }
        throw std::runtime_error(std::string("no field ") + name);
    }
    QPushButton &ok()
    {
        return *m_panel->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    }
    QString problem() { return ok().accessibleDescription(); }
    void watch(const char *subject)
    {
        field<QComboBox>("What to watch").setCurrentText(s(subject));
    }

    std::unique_ptr<AlertPanel> m_panel;
    std::optional<AlertRule> m_accepted;
};

TEST_F(AlertPanelTest, HandsBackEveryKindOfRuleAsItWas)
{
    QVector<AlertRule> rules{
        ruleOf(AlertSubject::CpuLoad, 62.5),
        ruleOf(AlertSubject::NetworkIn, 1536 * 1024),
        ruleOf(AlertSubject::NetworkOut, 1000),
        ruleOf(AlertSubject::BatteryPercent, 20),
        ruleOf(AlertSubject::ProcessShare, 150, "412//cc1plus"),
        ruleOf(AlertSubject::Temperature, 81.5, "SSD"),
        ruleOf(AlertSubject::Fans, 2400),
    };
    rules[3].rising = false;
    rules[0].duration = 20;
    rules[0].name = s("Busy");
    rules[0].enabled = false;
    for (const AlertRule &rule : std::as_const(rules)) {
        edit(rule).accept();
        ASSERT_TRUE(m_accepted);
        EXPECT_EQ(*m_accepted, rule) << static_cast<int>(rule.subject);
        m_accepted.reset();
    }
    for (const AlertSubject cable : {AlertSubject::CablePluggedIn, AlertSubject::CableUnplugged}) {
        AlertRule rule = ruleOf(cable, 0);
        rule.duration = 60;
        edit(rule).accept();
        ASSERT_TRUE(m_accepted);
        EXPECT_EQ(*m_accepted, rule);
        m_accepted.reset();
    }
}

TEST_F(AlertPanelTest, ShowsTheFieldsThatTheSubjectHas)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    const auto visible = [this] {
        QStringList names;
        for (const char *name : {"Process", "Sensor", "When it"}) {
            if (field<QComboBox>(name).isVisible())
                names += s(name);
        }
        if (field<QDoubleSpinBox>("Threshold").isVisible())
            names += s("Threshold");
        if (field<QComboBox>("Unit").isVisible())
            names += s("Unit");
        return names.join(u' ');
    };
    EXPECT_EQ(visible(), s("When it Threshold"));
    watch("CPU share of a process");
    EXPECT_EQ(visible(), s("Process When it Threshold"));
    watch("Temperature");
    EXPECT_EQ(visible(), s("Sensor When it Threshold"));
    watch("Network in");
    EXPECT_EQ(visible(), s("When it Threshold Unit"));
    watch("Power cable unplugged");
    EXPECT_EQ(visible(), QString());
}

TEST_F(AlertPanelTest, AnotherSubjectBeginsWithWhatIsUsualForIt)
{
    edit(ruleOf(AlertSubject::CpuLoad, 62.5));
    watch("Battery");
    EXPECT_EQ(m_panel->rule().threshold,
              alertThresholdRange(AlertSubject::BatteryPercent, false).usual);
    EXPECT_FALSE(m_panel->rule().rising) << "a battery is watched as it runs down";
    watch("Fan speed");
    EXPECT_EQ(m_panel->rule().threshold, alertThresholdRange(AlertSubject::Fans, false).usual);
    EXPECT_TRUE(m_panel->rule().rising);
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").text(), s("3000RPM"));
    field<QDoubleSpinBox>("Threshold").setValue(2400);
    watch("CPU load");
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").text(), s("90%"));
    field<QDoubleSpinBox>("Threshold").setValue(62.5);
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").text(), s("62.5%"));
    watch("Network in");
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").text(), s("1000"));
}

TEST_F(AlertPanelTest, ACableIsToldAtOnceUnlessOneSaysOtherwise)
{
    AlertRule busy = ruleOf(AlertSubject::CpuLoad, 90);
    busy.duration = 45;
    edit(busy);
    watch("Network in");
    EXPECT_EQ(m_panel->rule().duration, 45);
    watch("Power cable unplugged");
    EXPECT_EQ(m_panel->rule().duration, 0);
    EXPECT_TRUE(field<QSpinBox>("For at least").isVisible());
    field<QSpinBox>("For at least").setValue(60);
    watch("Power cable plugged in");
    EXPECT_EQ(m_panel->rule().duration, 60);
    watch("CPU load");
    EXPECT_EQ(m_panel->rule().duration, AlertRule::kUsualDuration);
}

TEST_F(AlertPanelTest, SaysWhatIsWrongAsOneTypes)
{
    edit(ruleOf(AlertSubject::ProcessShare, 50, "cc1plus"));
    EXPECT_TRUE(ok().isEnabled());
    QComboBox &process = field<QComboBox>("Process");
    process.lineEdit()->clear();
    EXPECT_FALSE(ok().isEnabled());
    EXPECT_EQ(problem(), s("Name the process."));
    bool seen = false;
    for (const QLabel *label : m_panel->findChildren<QLabel *>())
        seen = seen || (label->isVisible() && label->text() == problem());
    EXPECT_TRUE(seen);
    m_panel->accept();
    EXPECT_FALSE(m_accepted);
    EXPECT_TRUE(m_panel->isVisible());
    QTest::keyClicks(process.lineEdit(), s("x"));
    EXPECT_TRUE(ok().isEnabled());
    EXPECT_EQ(problem(), QString());

    auto &threshold = field<QDoubleSpinBox>("Threshold");
    threshold.findChild<QLineEdit *>()->clear();
    EXPECT_FALSE(ok().isEnabled());
    EXPECT_EQ(problem(), s("The threshold must be a number."));
    QTest::keyClicks(threshold.findChild<QLineEdit *>(), s("70"));
    EXPECT_TRUE(ok().isEnabled());
    EXPECT_EQ(m_panel->rule().threshold, 70);
}

TEST_F(AlertPanelTest, NumbersThatAreTooLargeAreToldAndNotCut)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    auto &threshold = field<QDoubleSpinBox>("Threshold");
    for (const char *typed : {"150", "-5", "99999999999"}) {
        threshold.selectAll();
        QTest::keyClicks(&threshold, s(typed));
        EXPECT_FALSE(ok().isEnabled()) << typed;
        EXPECT_EQ(problem(), s("The threshold must lie between 0 and 100.")) << typed;
        QTest::keyClick(m_panel.get(), Qt::Key_Return);
        EXPECT_FALSE(m_accepted) << typed;
    }
    // Steps lead back, and never out.
    threshold.stepUp();
    EXPECT_EQ(threshold.value(), 100);
    EXPECT_TRUE(waitFor([this] { return ok().isEnabled(); }));
    EXPECT_EQ(field<QLineEdit>("Name").placeholderText(), s("CPU above 100%"));
    threshold.stepUp();
    EXPECT_EQ(threshold.value(), 100);

    auto &duration = field<QSpinBox>("For at least");
    duration.selectAll();
    QTest::keyClicks(&duration, s("99999"));
    EXPECT_EQ(problem(), s("The duration must lie between 0 and 86400 seconds."));
    EXPECT_FALSE(ok().isEnabled());
}

TEST_F(AlertPanelTest, ReturnAcceptsNoNumberThatItBroughtBackItself)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    const std::array<QAbstractSpinBox *, 2> boxes{&field<QDoubleSpinBox>("Threshold"),
                                                  &field<QSpinBox>("For at least")};
    for (QAbstractSpinBox *box : boxes) {
        box->setFocus();
        box->findChild<QLineEdit *>()->clear();
        EXPECT_FALSE(ok().isEnabled());
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_FALSE(m_accepted);
        // It stands there again for everybody to see.
        EXPECT_TRUE(waitFor([this] { return ok().isEnabled(); }));
    }
}

TEST_F(AlertPanelTest, ADurationThatIsNoNumberIsNoDuration)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    auto &duration = field<QSpinBox>("For at least");
    EXPECT_EQ(duration.text(), s("at once"));
    duration.findChild<QLineEdit *>()->clear();
    EXPECT_EQ(problem(), s("The duration must be a number of seconds."));
    EXPECT_FALSE(ok().isEnabled());
    QTest::keyClicks(duration.findChild<QLineEdit *>(), s("12"));
    EXPECT_TRUE(ok().isEnabled());
    EXPECT_EQ(m_panel->rule().duration, 12);
    EXPECT_EQ(duration.text(), s("12 s"));
}

TEST_F(AlertPanelTest, WithoutSensorsThereIsNoneToChoose)
{
    AlertEdit edit;
    edit.rule = ruleOf(AlertSubject::CpuLoad, 90);
    m_panel = std::make_unique<AlertPanel>(edit, [](const AlertRule &) {});
    watch("Temperature");
    EXPECT_EQ(problem(), s("There is no sensor to choose."));
    // One that is asleep or unplugged now may be there tomorrow.
    this->edit(ruleOf(AlertSubject::Temperature, 80, "Disk of another day"));
    EXPECT_TRUE(ok().isEnabled());
    EXPECT_EQ(m_panel->rule().part, s("Disk of another day"));
}

TEST_F(AlertPanelTest, IsWorkedByKeysAlone)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    m_panel->activateWindow();
    ASSERT_TRUE(waitFor([this] { return m_panel->isActiveWindow(); }));
    QTest::keyClick(m_panel.get(), Qt::Key_T, Qt::AltModifier);
    QTest::keySequence(QApplication::focusWidget(), QKeySequence::SelectAll);
    QTest::keyClicks(QApplication::focusWidget(), s("75"));
    QTest::keyClick(m_panel.get(), Qt::Key_F, Qt::AltModifier);
    QTest::keySequence(QApplication::focusWidget(), QKeySequence::SelectAll);
    QTest::keyClicks(QApplication::focusWidget(), s("30"));
    QTest::keyClick(m_panel.get(), Qt::Key_N, Qt::AltModifier);
    QTest::keyClicks(QApplication::focusWidget(), s("Busy"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(m_accepted);
    EXPECT_EQ(m_accepted->threshold, 75);
    EXPECT_EQ(m_accepted->duration, 30);
    EXPECT_EQ(m_accepted->name, s("Busy"));
    EXPECT_FALSE(m_panel->isVisible());
}

TEST_F(AlertPanelTest, EscapeCancels)
{
    edit(ruleOf(AlertSubject::CpuLoad, 90));
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    EXPECT_FALSE(m_panel->isVisible());
    EXPECT_FALSE(m_accepted);
}

TEST_F(AlertPanelTest, EveryVisibleFieldHasALabelThatLeadsToIt)
{
    edit(ruleOf(AlertSubject::Temperature, 80, "SSD"));
    int labels = 0;
    for (const QLabel *label : m_panel->findChildren<QLabel *>()) {
        if (!label->isVisible() || label->buddy() == nullptr)
            continue;
        ++labels;
        EXPECT_TRUE(label->text().contains(u'&')) << label->text().toStdString();
        EXPECT_FALSE(label->buddy()->accessibleName().isEmpty()) << label->text().toStdString();
        EXPECT_NE(label->buddy()->focusPolicy(), Qt::NoFocus);
    }
    EXPECT_EQ(labels, 6);
}

TEST_F(AlertPanelTest, ThresholdsAreInTheScaleThatIsShown)
{
    edit(ruleOf(AlertSubject::Temperature, 176, "SSD"), true);
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").suffix(), s("\u2109"));
    EXPECT_EQ(m_panel->rule().threshold, 176);
}

TEST_F(AlertPanelTest, AnUnitOfRatesChangesWhatTheNumberMeans)
{
    edit(ruleOf(AlertSubject::NetworkIn, 2 * 1024 * 1024));
    EXPECT_EQ(field<QComboBox>("Unit").currentText(), s("MB/s"));
    EXPECT_EQ(field<QDoubleSpinBox>("Threshold").value(), 2);
    field<QComboBox>("Unit").setCurrentText(s("KB/s"));
    EXPECT_EQ(m_panel->rule().threshold, 2 * 1024);
}

TEST(ByteRates, AreToldInTheLargestUnitThatIsExact)
{
    EXPECT_EQ(byterates::unitFor(0), 0);
    EXPECT_EQ(byterates::unitFor(1000), 0);
    EXPECT_EQ(byterates::unitFor(1024), 1);
    EXPECT_EQ(byterates::unitFor(1024.0 * 1000), 1);
    EXPECT_EQ(byterates::unitFor(1024.0 * 1024 * 1.5), 2);
    EXPECT_EQ(byterates::unitFor(1024.0 * 1024 * 1024), 3);
}

TEST(AlertPanels, OfOneAlertThereIsOnePanel)
{
    const auto shown = [] {
        QVector<AlertPanel *> panels;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *panel = qobject_cast<AlertPanel *>(widget); panel && panel->isVisible())
                panels += panel;
        }
        return panels;
    };
    QStringList accepted;
    AlertPanels panels;
    AlertEdit edit;
    edit.rule = ruleOf(AlertSubject::CpuLoad, 90);
    const auto open = [&](const char *id) {
        edit.id = s(id);
        panels.edit(edit, [&accepted, id](const AlertRule &) { accepted += s(id); });
    };
    open("one");
    open("one");
    EXPECT_EQ(shown().size(), 1);
    open("two");
    EXPECT_EQ(shown().size(), 2);
    EXPECT_FALSE(shown().constFirst()->isModal());
    for (AlertPanel *panel : shown())
        panel->accept();
    EXPECT_EQ(accepted.size(), 2);
    open("one");
    EXPECT_EQ(shown().size(), 1) << "a closed one is opened anew";
}

TEST(AlertPanels, GoWithTheirOwner)
{
    QPointer<AlertPanel> panel;
    {
        AlertPanels panels;
        panels.edit({}, [](const AlertRule &) {});
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *candidate = qobject_cast<AlertPanel *>(widget);
                candidate && candidate->isVisible())
                panel = candidate;
        }
        ASSERT_TRUE(panel);
    }
    EXPECT_FALSE(panel);
}

} // namespace
} // namespace pulsebar
