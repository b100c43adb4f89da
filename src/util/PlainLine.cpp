#include "util/PlainLine.h"

namespace pulsebar {

namespace {

bool turnsDirection(QChar c)
{
    return (c >= QChar(0x202A) && c <= QChar(0x202E)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

bool breaksLine(QChar c)
{
    return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
           c.category() == QChar::Separator_Paragraph;
}

QString cut(const QString &text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    if (longest < 1)
        return {};
    qsizetype kept = longest - 1;
    if (kept > 0 && text[kept - 1].isHighSurrogate())
        --kept;
    return text.first(kept) + QChar(0x2026);
}

/// Whether the surrogate at `index` stands with its other half.
bool isPaired(const QString &text, qsizetype index)
{
    if (text[index].isHighSurrogate())
        return index + 1 < text.size() && text[index + 1].isLowSurrogate();
    return index > 0 && text[index - 1].isHighSurrogate();
}

} // namespace

QString plainLine(const QString &text, qsizetype longest)
{
    // Copied only where something is wrong, which is seldom.
    QString line = cut(text, longest);
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (breaksLine(c) || turnsDirection(c) || (c.isSurrogate() && !isPaired(line, i)))
            line[i] = QChar(QChar::ReplacementCharacter);
    }
    return line;
}

} // namespace pulsebar
