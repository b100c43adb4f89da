#include "GraphKeys.h"

#include "PrintableText.h"

namespace pulsebar::cli {

QString linesOfKeys(const QStringList &keys)
{
    QString lines;
    for (const QString &key : keys)
        lines += printableText(key) + u'\n';
    return lines;
}

} // namespace pulsebar::cli
