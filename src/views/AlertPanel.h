#pragma once

#include "menu/AlertEdit.h"

#include <QDialog>

#include <functional>

class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace pulsebar {

class ThresholdField;

/// Edits one alert. What cannot be used is said below the fields as it is typed, and cannot be
/// accepted. The return key accepts, the escape key cancels.
class AlertPanel : public QDialog
{
    Q_OBJECT

public:
    AlertPanel(const AlertEdit &edit, std::function<void(const AlertRule &)> accepted,
               QWidget *parent = nullptr);

    /// What the fields say now.
    AlertRule rule() const;

    void accept() override;

private:
    void makeFields(const AlertEdit &edit);
    void fillChoices(const AlertEdit &edit);
    void layOut();
    void connectFields();
    void showRule(const AlertRule &rule);
    void subjectChosen();
    void showFieldsOf(const AlertRule &rule);
    void refresh();
    QString problem() const;

    bool m_enabled;
    bool m_fahrenheit;
    std::function<void(const AlertRule &)> m_accepted;
    QFormLayout *m_form;
    QComboBox *m_subject;
    QComboBox *m_process;
    QComboBox *m_sensor;
    QComboBox *m_direction;
    ThresholdField *m_threshold;
    QSpinBox *m_duration;
    QLineEdit *m_name;
    QLabel *m_problem;
    QDialogButtonBox *m_buttons;
};

} // namespace pulsebar
