#include "app/HelperPaths.h"

#include <QDir>
#include <QFileInfo>

namespace pulsebar {

QStringList helperFolders(const QString &programFolder)
{
    const QString chosen = qEnvironmentVariable("PULSEBAR_LIBEXEC_DIR");
    if (!chosen.isEmpty())
        return {chosen};
    const QDir folder(programFolder);
    return {
        QDir::cleanPath(folder.absoluteFilePath(QStringLiteral(PULSEBAR_LIBEXEC_FROM_BIN))),
        QStringLiteral(PULSEBAR_LIBEXEC_INSTALLED),
        QDir::cleanPath(folder.absoluteFilePath(QStringLiteral("../libexec/pulsebar"))),
    };
}

QString helperPath(const QString &name, const QStringList &folders)
{
    for (const QString &folder : folders) {
        const QFileInfo file(QDir(folder), name);
        if (file.isFile() && file.isExecutable())
            return file.absoluteFilePath();
    }
    return {};
}

} // namespace pulsebar
