#pragma once

#include "platform/ProcessTable.h"
#include "platform/Processes.h"
#include "platform/linux_/low/Sysroot.h"

namespace pulsebar {

/// Processes held by a descriptor (pidfd_open(2)), where the kernel has them, and told apart by
/// the start time in /proc/PID/stat in any case.
///
/// A recorded machine's processes are not this machine's: the start time that stands in the record
/// must also be that of the running kernel's process of the same number.
class LinuxProcesses : public Processes
{
public:
    explicit LinuxProcesses(Sysroot root);
    quint64 now() const override;
    std::shared_ptr<HeldProcess> hold(const QString &pid, quint64 listedAt) override;

private:
    Sysroot m_root;
};

/// What the running kernel's /proc tells. Only held processes are asked about by number, and they
/// are the running kernel's.
class LinuxProcessTable : public ProcessTable
{
public:
    std::optional<QStringList> shortNames() const override;
    std::shared_ptr<HeldProcess> parent(const HeldProcess &process) override;
    QStringList programs(const HeldProcess &process) const override;
};

} // namespace pulsebar
