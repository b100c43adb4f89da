#pragma once

#include "platform/LoginItems.h"

#include <QByteArray>
#include <QStringList>

namespace pulsebar {

/// The user's folder of the Desktop Application Autostart Specification: a desktop entry file per
/// program. A folder that does not exist is an empty list, and is made when there is something to
/// put into it. Only the user's own folder is looked at, not the system's.
///
/// Items have a third key, "File": the name of the entry's file. An entry is in force unless it is
/// marked as removed (Hidden), switched off (X-GNOME-Autostart-enabled=false), or starts no program
/// that is there.
class AutostartFolder : public LoginItems
{
public:
    /// Our own entry has a name that never changes, whatever it starts.
    static constexpr QLatin1String kOwnFile{"org.pulsebar.Pulsebar.desktop"};

    /// @param folder     absolute path
    /// @param searchPath folders in which programs are looked up, with colons between, as in $PATH
    AutostartFolder(QString folder, QByteArray searchPath);

    /// The folder in the user's configuration folder (XDG Base Directory Specification).
    static QString standardFolder();

    /// Absent when the folder cannot be read.
    std::optional<QVariantList> items(const QString &ownPath) override;
    bool setItems(const QVariantList &items) override;

private:
    std::optional<QVariant> itemFrom(const QString &file, const QString &ownPath) const;
    bool removeEntry(const QString &file) const;
    bool writeOwnEntry(const QString &path) const;
    QString filePath(const QString &file) const;

    QString m_folder;
    QByteArray m_searchPath;
    /// The files of the items that were handed out last.
    QStringList m_listed;
};

} // namespace pulsebar
