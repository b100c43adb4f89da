#include "views/AlertPanel.h"

#include "util/Localisation.h"
#include "views/ThresholdField.h"

#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <array>
#include <utility>

namespace pulsebar {

namespace {

struct SubjectChoice
{
    AlertSubject subject;
    const char *text;
};

constexpr std::array kSubjects{
    SubjectChoice{AlertSubject::CpuLoad, "CPU load"},
    SubjectChoice{AlertSubject::ProcessShare, "CPU share of a process"},
    SubjectChoice{AlertSubject::NetworkIn, "Network in"},
    SubjectChoice{AlertSubject::NetworkOut, "Network out"},
    SubjectChoice{AlertSubject::BatteryPercent, "Battery"},
    SubjectChoice{AlertSubject::CablePluggedIn, "Power cable plugged in"},
    SubjectChoice{AlertSubject::CableUnplugged, "Power cable unplugged"},
    SubjectChoice{AlertSubject::Temperature, "Temperature"},
    SubjectChoice{AlertSubject::Fans, "Fan speed"},
};

QString text(const char *key)
{
    return localizedString(QString::fromLatin1(key));
}

void addRow(QFormLayout &form, const char *label, QWidget *field, QWidget *buddy)
{
    auto *caption = new QLabel(text(label));
    caption->setBuddy(buddy);
    form.addRow(caption, field);
}

/// What a screen reader says of a field: its label, without the mark of the key.
void name(QWidget *field, const char *words)
{
    field->setAccessibleName(text(words));
}

} // namespace

AlertPanel::AlertPanel(const AlertEdit &edit, std::function<void(const AlertRule &)> accepted,
                       QWidget *parent)
    : QDialog(parent)
    , m_enabled(edit.rule.enabled)
    , m_fahrenheit(edit.fahrenheit)
    , m_accepted(std::move(accepted))
{
    setWindowTitle(text(edit.id.isEmpty() ? "Add Alert" : "Edit Alert"));
    setModal(false);
    setAttribute(Qt::WA_QuitOnClose, false);
    makeFields(edit);
    fillChoices(edit);
    layOut();
    showRule(edit.rule);
    connectFields();
    refresh();
}

void AlertPanel::makeFields(const AlertEdit &edit)
{
    m_subject = new QComboBox(this);
    m_process = new QComboBox(this);
    m_sensor = new QComboBox(this);
    m_direction = new QComboBox(this);
    m_threshold = new ThresholdField(edit.fahrenheit, this);
    m_duration = new QSpinBox(this);
    m_name = new QLineEdit(this);
    m_problem = new QLabel(this);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    name(m_subject, "What to watch");
    name(m_process, "Process");
    name(m_sensor, "Sensor");
    name(m_direction, "When it");
    name(m_duration, "For at least");
    name(m_name, "Name");
    m_process->setEditable(true);
    m_process->setInsertPolicy(QComboBox::NoInsert);
    // A process is found by its exact name.
    m_process->completer()->setCaseSensitivity(Qt::CaseSensitive);
    m_process->lineEdit()->setMaxLength(AlertRule::kLongestText);
    m_name->setMaxLength(AlertRule::kLongestText);
    // Room for what is too long, which is then told, instead of a digit that is swallowed.
    m_duration->setRange(0, 1000 * AlertRule::kLongestDuration);
    m_duration->setSuffix(QStringLiteral(" s")); // the unit's sign, in every language
    m_duration->setSpecialValueText(text("at once"));
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setWordWrap(true);
}

void AlertPanel::fillChoices(const AlertEdit &edit)
{
    for (const SubjectChoice &choice : kSubjects)
        m_subject->addItem(text(choice.text), static_cast<int>(choice.subject));
    m_direction->addItem(text("rises to"), true);
    m_direction->addItem(text("falls to"), false);
    m_process->addItems(edit.processes);
    QStringList sensors = edit.sensors;
    // One that is not there now may come back.
    if (edit.rule.subject == AlertSubject::Temperature && !edit.rule.part.isEmpty() &&
        !sensors.contains(edit.rule.part))
        sensors.prepend(edit.rule.part);
    for (const QString &sensor : std::as_const(sensors))
        m_sensor->addItem(localizedString(sensor, QStringLiteral("Temperature"), {}), sensor);
}

void AlertPanel::layOut()
{
    m_form = new QFormLayout(this);
    addRow(*m_form, "&What to watch:", m_subject, m_subject);
    addRow(*m_form, "&Process:", m_process, m_process);
    addRow(*m_form, "&Sensor:", m_sensor, m_sensor);
    addRow(*m_form, "W&hen it:", m_direction, m_direction);
    addRow(*m_form, "&Threshold:", m_threshold, m_threshold->buddy());
    addRow(*m_form, "&For at least:", m_duration, m_duration);
    addRow(*m_form, "&Name:", m_name, m_name);
    m_form->addRow(m_problem);
    m_form->addRow(m_buttons);
    // The panel keeps its size while problems come and go.
    m_problem->setMinimumHeight(2 * m_problem->fontMetrics().lineSpacing());
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    static constexpr int kFieldLetters = 44;
    m_name->setMinimumWidth(kFieldLetters * fontMetrics().averageCharWidth());
}

void AlertPanel::connectFields()
{
    connect(m_subject, &QComboBox::currentIndexChanged, this, &AlertPanel::subjectChosen);
    connect(m_process, &QComboBox::editTextChanged, this, &AlertPanel::refresh);
    connect(m_sensor, &QComboBox::currentIndexChanged, this, &AlertPanel::refresh);
    connect(m_direction, &QComboBox::currentIndexChanged, this, &AlertPanel::refresh);
    connect(m_threshold, &ThresholdField::edited, this, &AlertPanel::refresh);
    connect(m_duration->findChild<QLineEdit *>(), &QLineEdit::textChanged, this,
            &AlertPanel::refresh);
    // For what changes the text silently; after the key that did, as with the threshold.
    connect(m_duration, &QSpinBox::valueChanged, this, &AlertPanel::refresh, Qt::QueuedConnection);
    connect(m_name, &QLineEdit::textChanged, this, &AlertPanel::refresh);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &AlertPanel::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &AlertPanel::reject);
}

void AlertPanel::showRule(const AlertRule &rule)
{
    m_subject->setCurrentIndex(m_subject->findData(static_cast<int>(rule.subject)));
    m_process->setEditText(rule.subject == AlertSubject::ProcessShare ? rule.part : QString());
    if (rule.subject == AlertSubject::Temperature)
        m_sensor->setCurrentIndex(m_sensor->findData(rule.part));
    m_direction->setCurrentIndex(rule.rising ? 0 : 1);
    m_threshold->setSubject(rule.subject);
    m_threshold->setThreshold(rule.threshold);
    m_duration->setValue(rule.duration);
    m_name->setText(rule.name);
    showFieldsOf(rule);
}

/// Another subject has another unit, so that the number is of no use any longer.
void AlertPanel::subjectChosen()
{
    const AlertSubject subject = rule().subject;
    m_threshold->setSubject(subject);
    m_threshold->setThreshold(alertThresholdRange(subject, m_fahrenheit).usual);
    m_direction->setCurrentIndex(subject == AlertSubject::BatteryPercent ? 1 : 0);
    const bool wasCable = !m_form->isRowVisible(m_threshold);
    // A cable is pulled in a moment.
    if (rule().watchesCable() != wasCable)
        m_duration->setValue(wasCable ? AlertRule::kUsualDuration : 0);
    showFieldsOf(rule());
    refresh();
}

void AlertPanel::showFieldsOf(const AlertRule &rule)
{
    m_form->setRowVisible(m_process, rule.subject == AlertSubject::ProcessShare);
    m_form->setRowVisible(m_sensor, rule.subject == AlertSubject::Temperature);
    m_form->setRowVisible(m_direction, !rule.watchesCable());
    m_form->setRowVisible(m_threshold, !rule.watchesCable());
}

AlertRule AlertPanel::rule() const
{
    AlertRule rule;
    rule.subject = static_cast<AlertSubject>(m_subject->currentData().toInt());
    rule.enabled = m_enabled;
    rule.name = m_name->text().trimmed();
    rule.duration = m_duration->value();
    if (rule.watchesCable())
        return rule;
    rule.rising = m_direction->currentData().toBool();
    rule.threshold = m_threshold->threshold();
    if (rule.subject == AlertSubject::ProcessShare)
        rule.part = m_process->currentText().trimmed();
    if (rule.subject == AlertSubject::Temperature)
        rule.part = m_sensor->currentData().toString();
    return rule;
}

QString AlertPanel::problem() const
{
    const AlertRule now = rule();
    if (!now.watchesCable() && !m_threshold->isSound())
        return text("The threshold must be a number.");
    if (now.subject == AlertSubject::Temperature && m_sensor->count() == 0)
        return text("There is no sensor to choose.");
    if (!m_duration->hasAcceptableInput())
        return text("The duration must be a number of seconds.");
    return alertProblem(now);
}

void AlertPanel::refresh()
{
    AlertRule nameless = rule();
    nameless.name.clear();
    const QString wrong = problem();
    m_problem->setText(wrong);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(wrong.isEmpty());
    m_buttons->button(QDialogButtonBox::Ok)->setAccessibleDescription(wrong);
    m_name->setPlaceholderText(wrong.isEmpty() ? alertRuleText(nameless, m_fahrenheit) : QString());
}

void AlertPanel::accept()
{
    if (!problem().isEmpty())
        return;
    m_accepted(rule());
    QDialog::accept();
}

} // namespace pulsebar
