#include "PrintableText.h"

namespace pulsebar::cli {

namespace {

bool isPrintable(QChar c)
{
    return c.category() != QChar::Other_Control && c.category() != QChar::Separator_Line &&
           c.category() != QChar::Separator_Paragraph;
}

} // namespace

QString printableText(QString text)
{
    for (QChar &c : text) {
        if (!isPrintable(c))
            c = QChar(QChar::ReplacementCharacter);
    }
    return text;
}

} // namespace pulsebar::cli
