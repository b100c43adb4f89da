#include "app/Manuals.h"

#include <QDir>

namespace pulsebar {

QStringList manualPlaces(const QString &programFolder)
{
    const QDir folder(programFolder);
    QStringList places;
    for (const char *file : {"pulsebar/manual/index.html", "doc/pulsebar/README.md"}) {
        const QString name = QString::fromLatin1(file);
        places += QDir::cleanPath(
            folder.absoluteFilePath(QStringLiteral(PULSEBAR_DATA_FROM_BIN "/") + name));
        places += QStringLiteral(PULSEBAR_DATA_INSTALLED "/") + name;
    }
    return places;
}

} // namespace pulsebar
