#include "graph/PointedToolTip.h"

#include <QRect>
#include <QToolTip>
#include <QWidget>

#include <utility>

namespace pulsebar {

namespace {

/// The toolkit guesses whether a text is markup. What certainly is leaves it no choice. It breaks
/// markup early, but for paragraphs that forbid it; only what is too long for one line is broken.
QString asMarkup(const QString &text)
{
    static constexpr qsizetype longestLine = 80;
    const QString spaces =
        text.size() > longestLine ? QStringLiteral("pre-wrap") : QStringLiteral("pre");
    return QStringLiteral("<p style=\"margin:0; white-space:") + spaces + QStringLiteral("\">") +
           text.toHtmlEscaped() + QStringLiteral("</p>");
}

} // namespace

PointedToolTip::PointedToolTip(QWidget *widget, std::function<QString(QPoint place)> textAt)
    : m_widget(widget)
    , m_textAt(std::move(textAt))
{
    m_widget->window()->setAttribute(Qt::WA_AlwaysShowToolTips);
}

/// The toolkit has one tooltip for all widgets.
bool PointedToolTip::isShown() const
{
    return !m_shown.isEmpty() && QToolTip::isVisible() && QToolTip::text() == m_shown;
}

bool PointedToolTip::show(QPoint place)
{
    const QString text = m_textAt(place);
    if (text.isEmpty()) {
        end();
        return false;
    }
    m_place = place;
    m_shown = asMarkup(text);
    // Good for this one place: so the tooltip moves whenever the pointer does.
    QToolTip::showText(m_widget->mapToGlobal(place), m_shown, m_widget, QRect(place, QSize(1, 1)));
    return true;
}

void PointedToolTip::follow(QPoint place)
{
    if (isShown()) {
        show(place);
    }
}

void PointedToolTip::refresh()
{
    if (isShown()) {
        show(m_place);
    }
}

void PointedToolTip::end()
{
    if (isShown()) {
        QToolTip::hideText();
    }
    m_shown.clear();
}

} // namespace pulsebar
