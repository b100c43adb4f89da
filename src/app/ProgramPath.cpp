#include "app/ProgramPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

namespace pulsebar {

namespace {

/// Where the search path leads, the first first.
QStringList installedPrograms(const QByteArray &searchPath)
{
    QStringList programs;
    for (const QByteArray &folder : searchPath.split(':')) {
        const QFileInfo file(QFile::decodeName(folder) + QStringLiteral("/pulsebar"));
        if (folder.startsWith('/') && file.isFile() && file.isExecutable())
            programs += QDir::cleanPath(file.filePath());
    }
    return programs;
}

bool isBuildTree(const QString &program)
{
    return QFileInfo::exists(QFileInfo(program).path() + QStringLiteral("/../CMakeCache.txt"));
}

} // namespace

QString lastingProgramPath(const QString &running, const QString &startedAs,
                           const QByteArray &searchPath)
{
    const auto leadsToUs = [&running](const QString &path) {
        return QFileInfo(path).canonicalFilePath() == running;
    };
    const QStringList installed = installedPrograms(searchPath);
    const auto name = std::find_if(installed.cbegin(), installed.cend(), leadsToUs);
    if (name != installed.cend())
        return *name;
    const bool passing = isBuildTree(running) || !QFileInfo::exists(running);
    if (passing && !installed.isEmpty())
        return installed.constFirst();
    return QDir::isAbsolutePath(startedAs) && leadsToUs(startedAs) ? startedAs : running;
}

} // namespace pulsebar
