#include "views/WidthSliderView.h"

#include "util/Localisation.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSlider>
#include <QStyle>

#include <utility>

namespace pulsebar {

namespace {

/// In a menu the keys up and down go from row to row.
class SidewaysSlider : public QSlider
{
public:
    using QSlider::QSlider;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
            event->ignore();
        else
            QSlider::keyPressEvent(event);
    }
};

} // namespace

WidthSliderView::WidthSliderView(int width, std::function<void(int width)> moved, QWidget *parent)
    : QWidget(parent)
    , m_slider(new SidewaysSlider(Qt::Horizontal, this))
{
    static constexpr int kStep = 10;
    static constexpr int kLength = 140;
    const QString title = localizedString(QStringLiteral("Width on menubar"));
    m_slider->setRange(kNarrowest, kWidest);
    m_slider->setSingleStep(1);
    m_slider->setPageStep(kStep);
    m_slider->setValue(width);
    m_slider->setMinimumWidth(kLength);
    m_slider->setAccessibleName(title);
    auto *label = new QLabel(title, this);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(m_slider);

    auto *row = new QHBoxLayout(this);
    // In line with the titles of the other rows, which leave room for marks.
    QMargins margins = row->contentsMargins();
    margins.setLeft(style()->pixelMetric(QStyle::PM_SmallIconSize) + margins.left());
    row->setContentsMargins(margins);
    row->addWidget(label);
    row->addWidget(m_slider, 1);
    // The menu hands the focus to the row as a whole.
    setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(m_slider);
    connect(m_slider, &QSlider::valueChanged, this, std::move(moved));
}

} // namespace pulsebar
