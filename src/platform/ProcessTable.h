#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace pulsebar {

class HeldProcess;

/// What the system tells about processes beside their figures.
class ProcessTable
{
public:
    virtual ~ProcessTable() = default;

    /// The short command names of all processes, in no order; a name stands there once for each
    /// process that has it. Absent when the table cannot be read.
    virtual std::optional<QStringList> shortNames() const = 0;

    /// The process that started this one, or has taken it over since.
    /// @return null when there is none, when it belongs to another user, or when one of the two
    ///         has ended
    virtual std::shared_ptr<HeldProcess> parent(const HeldProcess &process) = 0;

    /// The programs that a process is: first its executable file as the system knows it (an
    /// absolute path), then what its command line says, be it a path or not.
    /// Empty unless the process runs as this program does: as the same user and with the same view
    /// of the file system, so that to start such a program gives nobody more rights than he has.
    virtual QStringList programs(const HeldProcess &process) const = 0;
};

} // namespace pulsebar
