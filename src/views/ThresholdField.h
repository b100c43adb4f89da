#pragma once

#include "menu/AlertRule.h"

#include <QWidget>

class QComboBox;

namespace pulsebar {

/// A number with the unit of what it is the threshold of; rates have a unit to choose.
class ThresholdField : public QWidget
{
    Q_OBJECT

public:
    explicit ThresholdField(bool fahrenheit, QWidget *parent = nullptr);

    /// Takes on the range and the unit of a subject.
    void setSubject(AlertSubject subject);
    /// In the subject's unit, rates in bytes per second.
    void setThreshold(double threshold);
    double threshold() const;
    /// Whether what is typed is a number. It may be one that is of no use: see alertProblem().
    bool isSound() const;

    /// The part that a label stands for.
    QWidget *buddy() const;

Q_SIGNALS:
    /// What is typed or chosen is another one.
    void edited();

private:
    class Number;

    double unitBytes() const;
    void fitRange();

    bool m_fahrenheit;
    AlertSubject m_subject = AlertSubject::CpuLoad;
    Number *m_number;
    QComboBox *m_unit;
};

} // namespace pulsebar
