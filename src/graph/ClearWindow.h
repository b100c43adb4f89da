#pragma once

#include <QColor>
#include <QRectF>
#include <QVector>
#include <QWidget>

namespace pulsebar {

class WindowServices;

/// A window without a frame through which the desktop shines: above the others, on all workspaces,
/// without a shadow, and in no list of windows. It takes the focus only when it is clicked.
///
/// Rectangles are counted upward from the bottom of the main screen. Opacity is painted, as not
/// every window system knows a window's opacity. What cannot be seen is not painted.
class ClearWindow : public QWidget
{
    Q_OBJECT

public:
    /// @param services must outlive the window
    explicit ClearWindow(WindowServices *services);

    /// Sets the window up. To be called once, before it is shown.
    /// @param contentRect its frame, as there is nothing around the content
    void initWithContentRect(const QRectF &contentRect);

    /// What it was given last, be it by setFrame(), by the user or by the window system.
    QRectF frame() const { return m_frame; }
    /// Never smaller than 120 by 42 points; the lower left corner is kept then. What lies beyond
    /// the window system's reach is brought back into it.
    void setFrame(const QRectF &frame);

    /// 0 (not to be seen) to 1.
    float alphaValue() const { return m_alphaValue; }
    /// Takes effect at once. What lies beyond the range is brought back into it.
    void setAlphaValue(float alpha);

    /// Shows the window above the others, without the focus; and takes it off the screen.
    void orderFront();
    void orderOut();
    /// Whether the window is to be on the screen. It may not be there yet, or for a while, as when
    /// a display without translucency cannot show it faded out.
    bool isOrderedIn() const { return m_orderedIn; }

    bool canBecomeKeyWindow() const { return true; }

Q_SIGNALS:
    /// Moved or resized, by whomever.
    void frameChanged();

protected:
    // What a window is like, asked once when it is set up.
    virtual QColor currentBackGroundColor() const { return Qt::transparent; }
    /// Of the status bar: above normal and floating windows.
    virtual int currentWindowLevel() const { return 25; }
    virtual bool currentWindowOpaque() const { return false; }
    virtual bool currentWindowShadow() const { return false; }

    /// Paints the content at the opacity, on a clear ground.
    /// @param opacity above 0
    virtual void paintContent(QPainter &painter, float opacity);

    /// Has the content painted anew: once when the run loop is reached, or when the window can be
    /// seen again.
    void setNeedsDisplay();

    WindowServices &services() const { return *m_services; }
    void paintEvent(QPaintEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    Qt::WindowFlags flagsOfLevel() const;
    void followMapping();
    void giveHints();
    void adoptFrame();
    void requestPaint();

    WindowServices *m_services;
    QRectF m_frame;
    /// What the toolkit was told and the window system has not confirmed yet, oldest first, behind
    /// the last one that it has.
    QVector<QRect> m_given;
    QColor m_backGroundColor;
    float m_alphaValue = 1.0F;
    bool m_shadow = true;
    bool m_orderedIn = false;
    bool m_settingFrame = false;
    bool m_hinted = false;
    bool m_displayDue = false; ///< what was to be painted while other windows covered this one
};

} // namespace pulsebar
