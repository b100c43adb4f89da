#pragma once

#include <QPoint>
#include <QString>

#include <functional>

class QWidget;

namespace pulsebar {

/// A tooltip about the very place to which the pointer points: once it has come up it follows the
/// pointer and what is shown there. Its text is asked for only when the tooltip comes up, and while
/// it is on the screen.
class PointedToolTip
{
public:
    /// @param widget whose tooltip it is; its window then has tooltips though another one is active
    /// @param textAt answers the text of a place in the widget, which is never taken for markup;
    ///        empty: there is none
    PointedToolTip(QWidget *widget, std::function<QString(QPoint place)> textAt);

    /// At the event that asks for a tooltip. @return whether there is one
    bool show(QPoint place);
    /// The pointer moved.
    void follow(QPoint place);
    /// What is shown at a place has become another.
    void refresh();
    /// The widget is no longer on the screen.
    void end();

private:
    bool isShown() const;

    QWidget *m_widget;
    std::function<QString(QPoint place)> m_textAt;
    QPoint m_place;
    QString m_shown; ///< as the toolkit has it
};

} // namespace pulsebar
