#include "platform/linux_/DesktopWorkspace.h"

#include "platform/linux_/low/process_origin.h"

#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>
#include <QStandardPaths>

#include <utility>

namespace pulsebar {

namespace {

/// The file that a program's path or name means, links followed; empty without one.
QString programFile(const QString &program)
{
    if (program.startsWith(u'/'))
        return QFileInfo(program).canonicalFilePath();
    if (program.isEmpty() || program.contains(u'/'))
        return {};
    const QString found = QStandardPaths::findExecutable(program);
    return found.isEmpty() ? QString() : QFileInfo(found).canonicalFilePath();
}

std::vector<std::string> userLanguages()
{
    const std::string name = QLocale().name().toStdString(); // such as "pt_BR"
    return {name, name.substr(0, name.find('_'))};
}

QString fileName(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

} // namespace

DesktopWorkspace::DesktopWorkspace(std::shared_ptr<DesktopEntries> entries)
    : m_entries(std::move(entries))
{
}

std::optional<DesktopEntry> DesktopWorkspace::entryOfProgram(const QString &program) const
{
    const QString file = programFile(program);
    if (file.isEmpty() || isInterpreter(fileName(file).toStdString()))
        return std::nullopt;
    const auto matches = [&](const DesktopEntry &entry) {
        const auto candidate = QString::fromStdString(DesktopEntries::programOf(entry.command));
        return programFile(candidate) == file;
    };
    return m_entries->find(matches, userLanguages());
}

QString DesktopWorkspace::iconForFile(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isAbsolute() || !file.exists())
        return {};
    if (file.isDir())
        return QStringLiteral("folder");
    const std::string program = path.toStdString();
    if (!isInterpreter(baseName(program))) {
        if (const auto *application = m_entries->byProgram(program))
            return QString::fromStdString(application->icon);
    }
    if (file.isExecutable())
        return QStringLiteral("application-x-executable");
    // By name alone: nobody's file is opened for its icon.
    return QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension).iconName();
}

QString DesktopWorkspace::displayName(const QString &path)
{
    const auto entry = entryOfProgram(path);
    return entry && !entry->localName.empty() ? QString::fromStdString(entry->localName)
                                              : fileName(path);
}

QString DesktopWorkspace::fullPathForApplication(const QString &name)
{
    if (name.isEmpty())
        return {};
    const std::string wanted = name.toStdString();
    const auto entry = m_entries->find(
        [&wanted](const DesktopEntry &candidate) {
            return candidate.localName == wanted || candidate.name == wanted ||
                   baseName(DesktopEntries::programOf(candidate.command)) == wanted;
        },
        userLanguages());
    const QString program =
        entry ? programFile(QString::fromStdString(DesktopEntries::programOf(entry->command)))
              : QString();
    return program.isEmpty() ? programFile(name) : program;
}

QStringList DesktopWorkspace::commandForProgram(const QString &program)
{
    QStringList command;
    if (const auto entry = entryOfProgram(program)) {
        for (const std::string &word : entry->command)
            command.append(QString::fromStdString(word));
    }
    return command;
}

} // namespace pulsebar
