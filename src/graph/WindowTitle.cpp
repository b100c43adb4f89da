#include "graph/WindowTitle.h"

namespace pulsebar {

QString literalWindowTitle(QString text)
{
    return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

} // namespace pulsebar
