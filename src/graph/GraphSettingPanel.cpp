#include "graph/GraphSettingPanel.h"

#include "graph/ColorButton.h"
#include "graph/GraphViewSetting.h"
#include "util/Localisation.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

#include <cmath>
#include <initializer_list>

namespace pulsebar {

namespace {

constexpr int kWholePercent = 100;
/// Far beyond any rate in KB; below what the field's digits can tell apart in single precision.
constexpr double kLargestThreshold = 1e9;

/// A text of ours without the mark of its mnemonic, as a screen reader says it.
QString spoken(QString text)
{
    return text.remove(u'&');
}

QString percentText(int percent)
{
    return localizedFormat(QStringLiteral("%d%%"), percent);
}

/// Wide enough for every value, so that the slider keeps its length.
QLabel *makePercentLabel(const QSlider &slider)
{
    auto *label = new QLabel(percentText(kWholePercent));
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(label->sizeHint().width());
    label->setText(percentText(slider.value()));
    QObject::connect(&slider, &QSlider::valueChanged, label,
                     [label](int percent) { label->setText(percentText(percent)); });
    return label;
}

double stepFor(const QString &dataUnit)
{
    if (dataUnit == u"RPM")
        return 100.0;
    return dataUnit == u"KB/s" ? 10.0 : 1.0;
}

int percentOf(float opacity)
{
    return int(std::lround(double(opacity) * kWholePercent));
}

/// Asks for as much room as its content needs: only the screen is a reason to scroll.
class ContentArea : public QScrollArea
{
public:
    explicit ContentArea(QWidget *content)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
        setWidget(content);
    }

    QSize sizeHint() const override { return widget()->sizeHint(); }
};

} // namespace

GraphSettingPanel::GraphSettingPanel(GraphViewSetting &setting, const QString &dataUnit)
    : m_setting(setting)
{
    // The graph itself stands above other windows, and must not cover its own settings.
    setWindowFlag(Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_QuitOnClose, false);
    setModal(false);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *close = buttons->button(QDialogButtonBox::Close);
    close->setText(localizedString(QStringLiteral("&Close")));
    close->setAccessibleName(spoken(close->text()));
    // The return key belongs to the number field.
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &GraphSettingPanel::closeRequested);
    auto *all = new QVBoxLayout(this);
    all->addWidget(new ContentArea(makeControls(dataUnit)));
    all->addWidget(buttons);
    followSetting();
    m_lineColor->setFocus();
}

QWidget *GraphSettingPanel::makeControls(const QString &dataUnit)
{
    auto *controls = new QWidget;
    auto *form = new QFormLayout(controls);
    form->setContentsMargins(0, 0, 0, 0);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    addColors(*form);
    addOpacities(*form);
    addThreshold(*form, dataUnit);
    return controls;
}

void GraphSettingPanel::addColors(QFormLayout &form)
{
    m_lineColor = addColor(form, localizedString(QStringLiteral("&Line color:")), "lineColor");
    m_backgroundColor =
        addColor(form, localizedString(QStringLiteral("&Background color:")), "backgroundColor");
}

ColorButton *GraphSettingPanel::addColor(QFormLayout &form, const QString &label, const char *field)
{
    auto *button = new ColorButton(spoken(label).remove(u':'));
    connect(button, &ColorButton::colorChosen, this,
            [this, field](const QColor &color) { m_setting.setProperty(field, color); });
    form.addRow(label, button);
    return button;
}

void GraphSettingPanel::addOpacities(QFormLayout &form)
{
    m_alphaAtPoint = addOpacity(
        form, localizedString(QStringLiteral("Opacity under the &pointer:")), "alphaAtPoint");
    m_alphaWithoutPoint = addOpacity(form, localizedString(QStringLiteral("Opacity &otherwise:")),
                                     "alphaWithoutPoint");
}

QSlider *GraphSettingPanel::addOpacity(QFormLayout &form, const QString &label, const char *field)
{
    auto *slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, kWholePercent);
    slider->setPageStep(10);
    slider->setAccessibleName(spoken(label).remove(u':'));
    slider->setMinimumWidth(fontMetrics().averageCharWidth() * 16);
    connect(slider, &QSlider::valueChanged, this, [this, field](int percent) {
        // Rounded for the eye only: the setting keeps what it has.
        if (percentOf(m_setting.property(field).toFloat()) != percent)
            m_setting.setProperty(field, float(percent) / float(kWholePercent));
    });
    auto *row = new QHBoxLayout;
    row->addWidget(slider, 1);
    row->addWidget(makePercentLabel(*slider));
    form.addRow(label, row);
    static_cast<QLabel *>(form.labelForField(row))->setBuddy(slider);
    return slider;
}

void GraphSettingPanel::addThreshold(QFormLayout &form, const QString &dataUnit)
{
    m_useThreshold = new QCheckBox(localizedString(QStringLiteral("Use &threshold")));
    m_useThreshold->setAccessibleName(spoken(m_useThreshold->text()));
    connect(m_useThreshold, &QCheckBox::toggled, this,
            [this](bool on) { m_setting.setProperty("useThreshold", on); });
    form.addRow(m_useThreshold);

    const QString label = localizedString(QStringLiteral("Threshold &value:"));
    m_threshold = new QDoubleSpinBox;
    m_threshold->setRange(-kLargestThreshold, kLargestThreshold);
    m_threshold->setDecimals(1);
    m_threshold->setSingleStep(stepFor(dataUnit));
    m_threshold->setSuffix(u' ' + dataUnit);
    m_threshold->setAccessibleName(spoken(label).remove(u':'));
    connect(m_threshold, &QDoubleSpinBox::valueChanged, this,
            [this](double value) { m_setting.setProperty("threshold", float(value)); });
    form.addRow(label, m_threshold);
    addSides(form);
}

void GraphSettingPanel::addSides(QFormLayout &form)
{
    m_below = new QRadioButton(localizedString(QStringLiteral("&Fade out while below")));
    m_above = new QRadioButton(localizedString(QStringLiteral("Fade out while &above")));
    for (QRadioButton *side : {m_below, m_above}) {
        side->setAccessibleName(spoken(side->text()));
        form.addRow(side);
    }
    connect(m_below, &QRadioButton::toggled, this,
            [this](bool below) { m_setting.setProperty("thresholdType", below ? 1 : 0); });
}

void GraphSettingPanel::followSetting()
{
    connect(&m_setting, &GraphViewSetting::colorsChanged, this, &GraphSettingPanel::showColors);
    for (const auto changed :
         {&GraphViewSetting::alphaAtPointChanged, &GraphViewSetting::alphaWithoutPointChanged})
        connect(&m_setting, changed, this, &GraphSettingPanel::showOpacities);
    for (const auto changed :
         {&GraphViewSetting::useThresholdChanged, &GraphViewSetting::thresholdChanged,
          &GraphViewSetting::thresholdTypeChanged})
        connect(&m_setting, changed, this, &GraphSettingPanel::showThreshold);
    showColors();
    showOpacities();
    showThreshold();
}

void GraphSettingPanel::showColors()
{
    m_lineColor->setColor(m_setting.lineColor());
    m_backgroundColor->setColor(m_setting.backgroundColor());
}

void GraphSettingPanel::showOpacities()
{
    m_alphaAtPoint->setValue(percentOf(m_setting.alphaAtPoint()));
    m_alphaWithoutPoint->setValue(percentOf(m_setting.alphaWithoutPoint()));
}

void GraphSettingPanel::showThreshold()
{
    const QSignalBlocker quietUse(m_useThreshold);
    const QSignalBlocker quietValue(m_threshold);
    const QSignalBlocker quietSide(m_below);
    m_useThreshold->setChecked(m_setting.useThreshold());
    // Writing the number that is there anyway would disturb the one who types it.
    if (float(m_threshold->value()) != m_setting.threshold())
        m_threshold->setValue(double(m_setting.threshold()));
    (m_setting.thresholdType() != 0 ? m_below : m_above)->setChecked(true);
    for (QWidget *control : std::initializer_list<QWidget *>{m_threshold, m_below, m_above})
        control->setEnabled(m_setting.useThreshold());
}

QSize GraphSettingPanel::sizeHint() const
{
    const QSize titleBar(0, fontMetrics().height() * 2);
    const QSize room = screen()->availableSize() - titleBar;
    QSize wanted = QDialog::sizeHint();
    if (wanted.height() > room.height())
        wanted.rwidth() += style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    return wanted.boundedTo(room);
}

void GraphSettingPanel::hideEvent(QHideEvent *event)
{
    m_lineColor->closeDialog();
    m_backgroundColor->closeDialog();
    QDialog::hideEvent(event);
}

} // namespace pulsebar
