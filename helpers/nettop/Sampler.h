#pragma once

#include "common/UserNames.h"
#include "nettop/Memory.h"
#include "nettop/ProcFolder.h"
#include "platform/linux_/low/netlink_dump.h"

#include <optional>
#include <string>

namespace pulsebar::nettop {

/// Makes one report after the other. What lasts from one to the next is in the memory's file, so
/// that it makes no difference whether the same program goes on or a new one is started.
class Sampler
{
public:
    /// @param runtimeFolder see MemoryFile. A recorded machine is not remembered.
    Sampler(const Sysroot &sysroot, std::string runtimeFolder);

    /// The text of the next report; absent when the kernel does not tell about sockets.
    std::optional<std::string> sample();
    /// Why it does not: an error number.
    int error() const { return m_dump.error(); }

private:
    ProcFolder m_processes;
    std::string m_runtimeFolder;
    NetlinkDump m_dump;
    UserNames m_users;
    Memory m_memory; ///< of the report before, in case the file is not there
};

} // namespace pulsebar::nettop
