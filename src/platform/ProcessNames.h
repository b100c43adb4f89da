#pragma once

#include <QString>
#include <QtGlobal>

namespace pulsebar {

/// By what name a running process was started.
class ProcessNames
{
public:
    virtual ~ProcessNames() = default;

    /// The file name of the program as its command line gives it (such as "gnome-shell"), not the
    /// kernel's shortened one. Empty when the process is gone or may not be looked at.
    virtual QString programName(qint64 pid) const = 0;
};

} // namespace pulsebar
