#include "GraphKeys.h"

namespace pulsebar::cli {

namespace {

bool isPrintable(QChar c)
{
    return c.category() != QChar::Other_Control && c.category() != QChar::Separator_Line &&
           c.category() != QChar::Separator_Paragraph;
}

} // namespace

QString linesOfKeys(const QStringList &keys)
{
    QString lines;
    for (const QString &key : keys) {
        for (const QChar c : key)
            lines += isPrintable(c) ? c : QChar(QChar::ReplacementCharacter);
        lines += u'\n';
    }
    return lines;
}

} // namespace pulsebar::cli
