#include "platform/linux_/AutostartFolder.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/desktop_entry.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QStandardPaths>
#include <QVariantMap>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string>
#include <vector>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcLogin, "pulsebar.login")

const QString kPath = QStringLiteral("Path");
const QString kHide = QStringLiteral("Hide");
const QString kFile = QStringLiteral("File");

/// The names of the desktop entry files of a folder, in their order; absent when it cannot be read.
std::optional<std::vector<std::string>> entryFiles(const QString &folder)
{
    // No session has nearly as many programs; a folder full of rubbish is not for us to read.
    static constexpr std::size_t kMost = 4096;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(
        ::opendir(QFile::encodeName(folder).constData()), &::closedir);
    if (!stream)
        return errno == ENOENT ? std::make_optional<std::vector<std::string>>() : std::nullopt;
    std::vector<std::string> names;
    while (const dirent *entry = names.size() < kMost ? ::readdir(stream.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with('.') && name.ends_with(".desktop"))
            names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isProgram(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

/// The program that a word of a command line starts: an absolute path, or the word itself when no
/// such program is there.
QString programOf(const std::string &word, const QByteArray &searchPath)
{
    QString program = QFile::decodeName(QByteArray::fromStdString(word));
    program.replace(QStringLiteral("%%"), QStringLiteral("%"));
    if (program.contains(u'/'))
        return program;
    for (const QByteArray &folder : searchPath.split(':')) {
        QString path = QFile::decodeName(folder) + u'/' + program;
        if (folder.startsWith('/') && isProgram(path))
            return path;
    }
    return program;
}

QByteArray entryText(const std::string &path)
{
    QByteArray text = "[Desktop Entry]\n"
                      "Type=Application\n"
                      "Version=1.4\n"
                      "Name=Pulsebar\n"
                      "Comment=Live figures of this machine in the panel\n"
                      "Icon=org.pulsebar.Pulsebar\n"
                      "Terminal=false\n"
                      "StartupNotify=false\n";
    // A program that was taken off the machine is passed over without a word.
    text += "TryExec=" + QByteArray::fromStdString(desktopEntryString(path)) + '\n';
    text += "Exec=" + QByteArray::fromStdString(desktopEntryString(desktopEntryWord(path))) + '\n';
    return text;
}

/// Folders of the user's own are for the user alone (XDG Base Directory Specification).
bool makeFolder(const QString &folder)
{
    if (QFileInfo(folder).isDir())
        return true;
    return QDir().mkpath(QFileInfo(folder).path()) &&
           ::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0;
}

} // namespace

AutostartFolder::AutostartFolder(QString folder, QByteArray searchPath)
    : m_folder(std::move(folder))
    , m_searchPath(std::move(searchPath))
{
}

QString AutostartFolder::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart");
}

QString AutostartFolder::filePath(const QString &file) const
{
    return m_folder + u'/' + file;
}

std::optional<QVariantList> AutostartFolder::items(const QString &ownPath)
{
    m_listed.clear();
    const auto files = entryFiles(m_folder);
    if (!files) {
        qCWarning(lcLogin, "The folder of programs started at login cannot be read: %ls",
                  qUtf16Printable(m_folder));
        return std::nullopt;
    }
    QVariantList list;
    for (const std::string &name : *files) {
        const QString file = QFile::decodeName(QByteArray::fromStdString(name));
        const std::optional<QVariant> item = itemFrom(file, ownPath);
        if (!item)
            continue;
        list += *item;
        m_listed += file;
    }
    return list;
}

std::optional<QVariant> AutostartFolder::itemFrom(const QString &file, const QString &ownPath) const
{
    static constexpr std::size_t kLongest = 256U << 10U;
    const auto text = readWholeFile(QFile::encodeName(filePath(file)).toStdString(), kLongest);
    if (!text)
        return std::nullopt;
    const DesktopEntry entry = parseDesktopEntry(*text);
    if (entry.removed || !entry.autostart || entry.command.empty())
        return std::nullopt;
    QString program = programOf(entry.command[0], m_searchPath);
    if (file == kOwnFile) {
        // What is left of a program that is gone is not in force: it is written anew when wanted.
        if (!isProgram(program))
            return std::nullopt;
        program = ownPath;
    }
    return QVariantMap{{kPath, program}, {kHide, false}, {kFile, file}};
}

bool AutostartFolder::setItems(const QVariantList &items)
{
    QStringList kept;
    QString added;
    for (const QVariant &item : items) {
        const QVariantMap entry = item.toMap();
        const QString file = entry.value(kFile).toString();
        if (file.isEmpty())
            added = entry.value(kPath).toString();
        else
            kept += file;
    }
    bool done = true;
    for (const QString &file : std::as_const(m_listed)) {
        if (!kept.contains(file))
            done = removeEntry(file) && done;
    }
    m_listed = kept;
    return (added.isEmpty() || writeOwnEntry(added)) && done;
}

bool AutostartFolder::removeEntry(const QString &file) const
{
    QFile entry(filePath(file));
    if (entry.remove())
        return true;
    qCWarning(lcLogin, "The login item %ls cannot be removed: %ls", qUtf16Printable(file),
              qUtf16Printable(entry.errorString()));
    return false;
}

bool AutostartFolder::writeOwnEntry(const QString &path) const
{
    const QString name = filePath(kOwnFile);
    // A link is replaced, not followed: what it leads to is not ours to change.
    if (QFileInfo(name).isSymLink())
        QFile::remove(name);
    QSaveFile file(name);
    const bool written = makeFolder(m_folder) && file.open(QIODevice::WriteOnly) &&
                         file.write(entryText(QFile::encodeName(path).toStdString())) > 0 &&
                         file.commit();
    if (!written)
        qCWarning(lcLogin, "The login item cannot be written: %ls", qUtf16Printable(name));
    return written;
}

} // namespace pulsebar
