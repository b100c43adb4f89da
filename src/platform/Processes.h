#pragma once

#include <QString>
#include <QtGlobal>

#include <memory>

namespace pulsebar {

/// One running process, told apart from whoever gets its number after it.
class HeldProcess
{
public:
    virtual ~HeldProcess() = default;

    /// Always above 1.
    virtual qint64 pid() const = 0;
    /// When it was started, in clock ticks after boot (field 22 of /proc/PID/stat on Linux); with
    /// the number it names a process for good.
    virtual quint64 startTime() const = 0;
    /// Whether the number still belongs to this process, asked anew at each call. False as soon as
    /// it has ended.
    virtual bool isRunning() const = 0;
    /// Asks it to end (SIGTERM) without going by its number.
    /// @return false when it has ended or may not be signalled
    virtual bool askToEnd() = 0;
    /// A descriptor that becomes readable when the process ends, owned by this object; -1 where the
    /// system has none.
    virtual int endDescriptor() const = 0;
};

/// Finds running processes to act on.
class Processes
{
public:
    virtual ~Processes() = default;

    /// Now, in clock ticks after boot, on the clock of HeldProcess::startTime().
    virtual quint64 now() const = 0;
    /// @param pid process number as a list of processes shows it
    /// @param listedAt when that list was made, as now() told it then. A process that was started
    ///        later is another one than was listed.
    /// @return null unless `pid` is a decimal number above 1 of a process that ran at that time
    ///         and runs still
    virtual std::shared_ptr<HeldProcess> hold(const QString &pid, quint64 listedAt) = 0;
};

} // namespace pulsebar
