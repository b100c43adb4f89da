#pragma once

#include <QDialog>

class QCheckBox;
class QDoubleSpinBox;
class QFormLayout;
class QRadioButton;
class QSlider;

namespace pulsebar {

class ColorButton;
class GraphViewSetting;

/// The controls of one graph window's settings. They and the settings follow each other at once:
/// there is no copy, no "apply" and no way back.
class GraphSettingPanel : public QDialog
{
    Q_OBJECT

public:
    /// @param setting must outlive the panel
    /// @param dataUnit of the threshold, such as "%" or "KB/s"
    GraphSettingPanel(GraphViewSetting &setting, const QString &dataUnit);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The close button was pressed.
    void closeRequested();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makeControls(const QString &dataUnit);
    void addColors(QFormLayout &form);
    ColorButton *addColor(QFormLayout &form, const QString &label, const char *field);
    void addOpacities(QFormLayout &form);
    QSlider *addOpacity(QFormLayout &form, const QString &label, const char *field);
    void addThreshold(QFormLayout &form, const QString &dataUnit);
    void addSides(QFormLayout &form);
    void followSetting();
    void showColors();
    void showOpacities();
    void showThreshold();

    GraphViewSetting &m_setting;
    ColorButton *m_lineColor = nullptr;
    ColorButton *m_backgroundColor = nullptr;
    QSlider *m_alphaAtPoint = nullptr;
    QSlider *m_alphaWithoutPoint = nullptr;
    QCheckBox *m_useThreshold = nullptr;
    QDoubleSpinBox *m_threshold = nullptr;
    QRadioButton *m_below = nullptr;
    QRadioButton *m_above = nullptr;
};

} // namespace pulsebar
