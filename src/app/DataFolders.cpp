#include "app/DataFolders.h"

#include <QDir>
#include <QStandardPaths>

namespace pulsebar {

QStringList dataFolders(const QString &programFolder)
{
    const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QDir folder(programFolder);
    return {own + QStringLiteral("/pulsebar"),
            QDir::cleanPath(
                folder.absoluteFilePath(QStringLiteral(PULSEBAR_DATA_FROM_BIN "/pulsebar"))),
            QStringLiteral(PULSEBAR_DATA_INSTALLED "/pulsebar")};
}

} // namespace pulsebar
