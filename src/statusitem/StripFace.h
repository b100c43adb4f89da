#pragma once

#include "statusitem/ItemContent.h"
#include "statusitem/PanelStatusItem.h"

#include <QPoint>
#include <QWidget>

#include <optional>

namespace pulsebar {

/// The item as a small window of its own: one line, above the others, on every workspace, never
/// focused, dragged anywhere. A click that does not drag is a click on the item.
class StripFace : public QWidget
{
    Q_OBJECT

public:
    StripFace(StripPlace place, WindowHints *hints);

    void setContent(const ItemContent &content);

Q_SIGNALS:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void followScreens();
    void fitToContent();
    void putInPlace();
    QPoint wantedTopLeft() const;
    void rememberPlace();

    StripPlace m_place;
    WindowHints *m_hints;
    ItemContent m_content;
    /// Where the user left it, counted upward; nothing while it stands at its default place.
    std::optional<QPoint> m_left;
    /// Where we put it last: a window manager's answer is not to be relied on.
    QPoint m_topLeft;
    std::optional<QPoint> m_pressed;
    QPoint m_pressedAt;
    bool m_dragging = false;
    bool m_hinted = false;
};

} // namespace pulsebar
