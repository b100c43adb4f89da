#pragma once

#include "platform/Workspace.h"
#include "platform/linux_/DesktopEntries.h"

#include <memory>

namespace pulsebar {

/// The installed applications as their desktop entries describe them, and the kinds of other files
/// by the shared MIME database.
class DesktopWorkspace : public Workspace
{
public:
    explicit DesktopWorkspace(std::shared_ptr<DesktopEntries> entries);
    QString iconForFile(const QString &path) override;
    QString displayName(const QString &path) override;
    QString fullPathForApplication(const QString &name) override;
    QStringList commandForProgram(const QString &program) override;

private:
    std::optional<DesktopEntry> entryOfProgram(const QString &program) const;

    std::shared_ptr<DesktopEntries> m_entries;
};

} // namespace pulsebar
