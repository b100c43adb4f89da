#include "graph/ColorButton.h"

#include "util/Format.h"

#include <QColorDialog>
#include <QEvent>
#include <QFontMetrics>
#include <QIcon>
#include <QPainter>
#include <QSignalBlocker>

namespace pulsebar {

namespace {

constexpr int kSquare = 4;

/// The colour over a checkerboard, within a frame that stands out from any button.
QPixmap swatch(const QColor &color, QSize size, double scale)
{
    QPixmap pixmap(size * scale);
    pixmap.setDevicePixelRatio(scale);
    const QRect all(QPoint(0, 0), size);
    QPainter painter(&pixmap);
    painter.fillRect(all, Qt::black);
    const QRect inside = all.adjusted(1, 1, -1, -1);
    painter.fillRect(inside, Qt::white);
    painter.setClipRect(inside);
    for (int y = 0; y < size.height(); y += kSquare) {
        for (int x = y % (2 * kSquare); x < size.width(); x += 2 * kSquare)
            painter.fillRect(x, y, kSquare, kSquare, Qt::lightGray);
    }
    if (color.isValid())
        painter.fillRect(inside, color);
    return pixmap;
}

QString colorText(const QColor &color)
{
    if (!color.isValid())
        return QStringLiteral("\u2013");
    return plainFormat(u"%@  %.0f%%", color.name().toUpper(), color.alphaF() * 100.0F);
}

} // namespace

ColorButton::ColorButton(const QString &name, QWidget *parent)
    : QPushButton(parent)
    , m_name(name)
{
    setAutoDefault(false);
    setAccessibleName(name);
    showColor();
    connect(this, &QPushButton::clicked, this, &ColorButton::openDialog);
}

void ColorButton::setColor(const QColor &color)
{
    if (color == m_color)
        return;
    m_color = color;
    showColor();
    if (m_dialog) {
        const QSignalBlocker quiet(m_dialog);
        m_dialog->setCurrentColor(color);
    }
}

void ColorButton::closeDialog()
{
    if (m_dialog)
        m_dialog->close();
}

void ColorButton::openDialog()
{
    if (!m_dialog) {
        m_dialog = new QColorDialog(m_color, this);
        m_dialog->setAttribute(Qt::WA_DeleteOnClose);
        m_dialog->setWindowTitle(m_name);
        // The desktop's own dialog may tell of a colour only when it is closed, and of no alpha.
        m_dialog->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::NoButtons |
                             QColorDialog::DontUseNativeDialog);
        m_dialog->setWindowModality(Qt::NonModal);
        connect(m_dialog, &QColorDialog::currentColorChanged, this, &ColorButton::choose);
    }
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

void ColorButton::choose(const QColor &color)
{
    if (color == m_color)
        return;
    m_color = color;
    showColor();
    Q_EMIT colorChosen(color);
}

void ColorButton::showColor()
{
    const int height = fontMetrics().height();
    const QSize size(3 * height, height);
    setIconSize(size);
    setIcon(swatch(m_color, size, devicePixelRatioF()));
    setText(colorText(m_color));
    setAccessibleDescription(text());
}

void ColorButton::changeEvent(QEvent *event)
{
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange)
        showColor();
}

} // namespace pulsebar
