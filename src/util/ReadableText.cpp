#include "util/ReadableText.h"

#include <QList>
#include <QStringView>

namespace pulsebar {

namespace {

// A text field lays out a line as a whole, and a text of a full process list is far below both.
constexpr qsizetype kLongestLine = 4096;
constexpr qsizetype kLongestText = 1 << 20;
constexpr QChar kEllipsis = u'\u2026';

/// Embeddings, overrides, isolates and marks of the bidirectional algorithm.
bool turnsDirection(QChar c)
{
    return (c >= u'\u202a' && c <= u'\u202e') || (c >= u'\u2066' && c <= u'\u2069') ||
           c == u'\u200e' || c == u'\u200f' || c == u'\u061c';
}

bool isHarmless(QChar c)
{
    return c == u'\t' || (c.category() != QChar::Other_Control && !turnsDirection(c));
}

void appendLine(QString &to, QStringView line)
{
    const bool cut = line.size() > kLongestLine;
    for (const QChar c : line.left(kLongestLine))
        to += isHarmless(c) ? c : QChar(QChar::ReplacementCharacter);
    if (cut)
        to += kEllipsis;
}

} // namespace

QString readableText(const QString &text)
{
    QString readable;
    const QStringView begin = QStringView(text).left(kLongestText);
    readable.reserve(begin.size());
    for (const QStringView line : begin.split(u'\n')) {
        if (line.data() != begin.data())
            readable += u'\n';
        appendLine(readable, line.endsWith(u'\r') ? line.chopped(1) : line);
    }
    if (text.size() > kLongestText)
        readable += kEllipsis;
    return readable;
}

} // namespace pulsebar
