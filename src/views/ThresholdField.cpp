#include "views/ThresholdField.h"

#include "util/Localisation.h"
#include "views/ByteRates.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLineEdit>

#include <algorithm>
#include <cmath>

namespace pulsebar {

namespace {

bool isRate(AlertSubject subject)
{
    return subject == AlertSubject::NetworkIn || subject == AlertSubject::NetworkOut;
}

} // namespace

/// Shows no more decimals than the number has. Stays within its limits when stepped, but takes
/// numbers beyond them from the keyboard: were a digit refused, "150" would become 15 unnoticed.
class ThresholdField::Number : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    void setLimits(double least, double most)
    {
        m_least = least;
        m_most = most;
        static constexpr double kReach = 1000;
        const double far = kReach * std::max(std::abs(least), std::abs(most));
        setRange(-far, far);
    }

    void stepBy(int steps) override
    {
        QDoubleSpinBox::stepBy(steps);
        setValue(std::clamp(value(), m_least, m_most));
    }

    QString textFromValue(double value) const override
    {
        QString number = QDoubleSpinBox::textFromValue(value);
        const QString point = locale().decimalPoint();
        if (!number.contains(point))
            return number;
        while (number.endsWith(locale().zeroDigit()))
            number.chop(1);
        if (number.endsWith(point))
            number.chop(point.size());
        return number;
    }

protected:
    StepEnabled stepEnabled() const override
    {
        return (value() < m_most ? StepUpEnabled : StepNone) |
               (value() > m_least ? StepDownEnabled : StepNone);
    }

private:
    double m_least = 0;
    double m_most = 0;
};

ThresholdField::ThresholdField(bool fahrenheit, QWidget *parent)
    : QWidget(parent)
    , m_fahrenheit(fahrenheit)
    , m_number(new Number(this))
    , m_unit(new QComboBox(this))
{
    m_number->setAccessibleName(localizedString(QStringLiteral("Threshold")));
    m_unit->setAccessibleName(localizedString(QStringLiteral("Unit")));
    for (const byterates::Unit &unit : byterates::kUnits)
        m_unit->addItem(localizedString(QString::fromLatin1(unit.text)));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_number, 1);
    row->addWidget(m_unit);
    setFocusProxy(m_number);
    connect(m_number->findChild<QLineEdit *>(), &QLineEdit::textChanged, this,
            &ThresholdField::edited);
    // A step changes the text silently. So does Return in an empty field, which brings the old
    // number back: that one is looked at after the key, lest the key accept what nobody saw.
    connect(m_number, &QDoubleSpinBox::valueChanged, this, &ThresholdField::edited,
            Qt::QueuedConnection);
    connect(m_unit, &QComboBox::currentIndexChanged, this, [this] {
        fitRange();
        Q_EMIT edited();
    });
}

void ThresholdField::setSubject(AlertSubject subject)
{
    m_subject = subject;
    m_unit->setVisible(isRate(subject));
    m_number->setSuffix(isRate(subject) ? QString() : alertUnitText(subject, m_fahrenheit));
    fitRange();
}

double ThresholdField::unitBytes() const
{
    return isRate(m_subject)
               ? byterates::kUnits[static_cast<std::size_t>(std::max(m_unit->currentIndex(), 0))]
                     .bytes
               : 1.0;
}

void ThresholdField::fitRange()
{
    const AlertThresholdRange range = alertThresholdRange(m_subject, m_fahrenheit);
    const bool inBytes = !isRate(m_subject) || unitBytes() == 1.0;
    m_number->setDecimals(inBytes ? range.decimals : byterates::kDecimals);
    m_number->setLimits(range.least / unitBytes(), range.most / unitBytes());
    m_number->setSingleStep(inBytes ? range.step : 1.0);
}

void ThresholdField::setThreshold(double threshold)
{
    if (isRate(m_subject)) {
        m_unit->setCurrentIndex(byterates::unitFor(threshold));
        fitRange();
    }
    m_number->setValue(threshold / unitBytes());
}

double ThresholdField::threshold() const
{
    const double value = m_number->value() * unitBytes();
    return isRate(m_subject) ? std::round(value) : value;
}

QWidget *ThresholdField::buddy() const
{
    return m_number;
}

bool ThresholdField::isSound() const
{
    return m_number->hasAcceptableInput();
}

} // namespace pulsebar
