#include "views/ThresholdField.h"

#include "util/Localisation.h"
#include "views/ByteRates.h"

#include <QComboBox>
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

/// Shows no more decimals than the number has.
class ShortNumber : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

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
};

} // namespace

ThresholdField::ThresholdField(bool fahrenheit, QWidget *parent)
    : QWidget(parent)
    , m_fahrenheit(fahrenheit)
    , m_number(new ShortNumber(this))
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
    m_number->setRange(range.least / unitBytes(), range.most / unitBytes());
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

bool ThresholdField::isSound() const
{
    return m_number->hasAcceptableInput();
}

} // namespace pulsebar
