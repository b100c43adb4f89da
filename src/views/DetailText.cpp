#include "views/DetailText.h"

#include "util/Localisation.h"
#include "util/ReadableText.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextCursor>

#include <algorithm>

namespace pulsebar {

namespace {

QFont reportFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    // Where no desktop names a font, that one has letters of any width.
    if (!QFontInfo(font).fixedPitch())
        font = QFont(QStringLiteral("monospace"), font.pointSize());
    font.setStyleHint(QFont::Monospace);
    return font;
}

} // namespace

DetailText::DetailText(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setFont(reportFont());
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(localizedString(QStringLiteral("Detailed Information")));
}

void DetailText::setReport(const QString &report)
{
    if (m_selecting || report == m_report)
        return;
    m_report = report;
    const int across = horizontalScrollBar()->value();
    const int down = verticalScrollBar()->value();
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    setPlainText(readableText(report));

    const int end = std::max(document()->characterCount() - 1, 0);
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    horizontalScrollBar()->setValue(across);
    verticalScrollBar()->setValue(down);
}

void DetailText::mousePressEvent(QMouseEvent *event)
{
    m_selecting = true;
    QPlainTextEdit::mousePressEvent(event);
}

void DetailText::mouseReleaseEvent(QMouseEvent *event)
{
    m_selecting = event->buttons() != Qt::NoButton;
    QPlainTextEdit::mouseReleaseEvent(event);
}

} // namespace pulsebar
