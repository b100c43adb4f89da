#include "graph/ClearWindow.h"

#include "graph/ScreenSpace.h"
#include "graph/WindowDrag.h"
#include "graph/WindowServices.h"
#include "platform/WindowHints.h"

#include <QPainter>
#include <QScopedValueRollback>
#include <QWindow>

#include <algorithm>

namespace pulsebar {

namespace {

/// The window system counts points with 15 bits and a sign.
constexpr double farthest = 32767.0;

double withinReach(double value, double lowest)
{
    return std::clamp(value, lowest, farthest);
}

QRectF possibleFrame(const QRectF &frame)
{
    return {withinReach(frame.x(), -farthest), withinReach(frame.y(), -farthest),
            withinReach(frame.width(), double(smallestWidth)),
            withinReach(frame.height(), double(smallestHeight))};
}

} // namespace

ClearWindow::ClearWindow(WindowServices *services)
    : m_services(services)
{
    connect(services, &WindowServices::compositingChanged, this, [this] {
        followMapping();
        update();
    });
    connect(services, &WindowServices::uncovered, this, [this] {
        if (m_displayDue) {
            requestPaint();
        }
    });
}

Qt::WindowFlags ClearWindow::flagsOfLevel() const
{
    Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint;
    if (currentWindowLevel() > 0) {
        flags |= Qt::WindowStaysOnTopHint;
    }
    if (m_services->bypassesWindowManager()) {
        flags |= Qt::X11BypassWindowManagerHint;
    }
    return flags;
}

void ClearWindow::initWithContentRect(const QRectF &contentRect)
{
    setWindowFlags(flagsOfLevel());
    setAttribute(Qt::WA_TranslucentBackground, !currentWindowOpaque());
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setMinimumSize(int(smallestWidth), int(smallestHeight));
    m_backGroundColor = currentBackGroundColor();
    m_shadow = currentWindowShadow();
    setFrame(contentRect);
}

void ClearWindow::setFrame(const QRectF &frame)
{
    const QRectF wanted = possibleFrame(frame);
    // The same frame is another place once the main screen's lower edge is elsewhere.
    const QRect given = currentScreenSpace().flipped(wanted).toRect();
    if (wanted == m_frame && !m_given.isEmpty() && m_given.constLast() == given) {
        return;
    }
    m_frame = wanted;
    m_given.append(given);
    {
        const QScopedValueRollback<bool> setting(m_settingFrame, true);
        setGeometry(given);
    }
    Q_EMIT frameChanged();
}

/// The window system reports every frame that it was told, one after the other and late; only what
/// it was not told is a frame of its own or of the user's making.
void ClearWindow::adoptFrame()
{
    if (m_settingFrame || !windowHandle()) {
        return;
    }
    const QRect now = windowHandle()->geometry();
    const qsizetype known = m_given.indexOf(now);
    if (known >= 0) {
        m_given.remove(0, known);
        return;
    }
    m_given = {now};
    m_frame = currentScreenSpace().flipped(QRectF(now));
    Q_EMIT frameChanged();
}

void ClearWindow::setAlphaValue(float alpha)
{
    // Written so that what is not a number becomes 0.
    const float wanted = alpha > 0.0F ? std::min(alpha, 1.0F) : 0.0F;
    if (wanted == m_alphaValue) {
        return;
    }
    m_alphaValue = wanted;
    if (m_services->composes()) {
        requestPaint();
    } else {
        followMapping();
    }
}

void ClearWindow::orderFront()
{
    m_orderedIn = true;
    // One that is just shown is above the others anyway.
    if (isVisible() && m_services->placesWindows()) {
        raise();
    }
    followMapping();
}

void ClearWindow::orderOut()
{
    m_orderedIn = false;
    followMapping();
}

/// Where nothing can be translucent, a window that is faded out is taken off the screen. Elsewhere
/// it stays, so that the pointer still finds it.
void ClearWindow::followMapping()
{
    setVisible(m_orderedIn && (m_alphaValue > 0.0F || m_services->composes()));
}

void ClearWindow::setNeedsDisplay()
{
    // The opacity has it painted as soon as it rises.
    if (m_alphaValue > 0.0F) {
        requestPaint();
    }
}

void ClearWindow::requestPaint()
{
    // One that is not shown is painted when it is.
    if (!isVisible()) {
        return;
    }
    m_displayDue = m_services->isCovered(winId());
    if (!m_displayDue) {
        update();
    }
}

void ClearWindow::giveHints()
{
    WindowHints *hints = m_services->hints();
    // Painted means mapped: only now does a window manager listen.
    if (m_hinted || !hints) {
        return;
    }
    m_hinted = true;
    hints->keepOnAllWorkspaces(winId());
    if (!m_shadow) {
        hints->withoutShadow(winId());
    }
}

void ClearWindow::paintContent(QPainter & /*painter*/, float /*opacity*/) {}

void ClearWindow::paintEvent(QPaintEvent * /*event*/)
{
    giveHints();
    const bool composes = m_services->composes();
    const float opacity = composes ? m_alphaValue : 1.0F;
    QPainter painter(this);
    if (!composes) {
        painter.fillRect(rect(), Qt::black);
    }
    if (opacity > 0.0F) {
        if (m_backGroundColor.alpha() > 0) {
            painter.setOpacity(double(opacity));
            painter.fillRect(rect(), m_backGroundColor);
            painter.setOpacity(1.0);
        }
        paintContent(painter, opacity);
    }
}

void ClearWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    adoptFrame();
}

void ClearWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    adoptFrame();
}

void ClearWindow::hideEvent(QHideEvent *event)
{
    m_hinted = false;
    m_displayDue = false;
    QWidget::hideEvent(event);
}

void ClearWindow::mousePressEvent(QMouseEvent * /*event*/)
{
    // A window manager gives the focus to what is clicked; without one it has to be taken.
    if (canBecomeKeyWindow() && m_services->bypassesWindowManager() && !isActiveWindow()) {
        activateWindow();
    }
}

} // namespace pulsebar
