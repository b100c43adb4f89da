#pragma once

#include <QVector>
#include <QtGlobal>

namespace pulsebar {

/// The windows that the user can switch to, by the processes that they belong to.
class ApplicationWindows
{
public:
    virtual ~ApplicationWindows() = default;

    /// Numbers of the processes that have such windows, each once.
    virtual QVector<qint64> owners() const = 0;

    /// Brings the windows of a process to the front, and gives the focus to the one that was
    /// topmost among them.
    /// @return whether it has windows
    virtual bool raise(qint64 pid) = 0;

    /// Asks the windows of a process to close, as their close buttons do. The program may ask the
    /// user first, or refuse.
    /// @return whether there was a window to ask
    virtual bool askToClose(qint64 pid) = 0;
};

} // namespace pulsebar
