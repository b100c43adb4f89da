#include "nettop/Sampler.h"

#include "nettop/Accounts.h"
#include "nettop/MemoryFile.h"
#include "nettop/Names.h"
#include "nettop/Report.h"
#include "nettop/SocketList.h"

#include <linux/netlink.h>

#include <ctime>
#include <unistd.h>
#include <utility>

namespace pulsebar::nettop {

namespace {

constexpr std::size_t someNew = 64;

timespec now(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return time;
}

} // namespace

Sampler::Sampler(const Sysroot &sysroot, std::string runtimeFolder)
    : m_processes(sysroot)
    , m_runtimeFolder(sysroot.isRecorded() ? std::string() : std::move(runtimeFolder))
    , m_dump(NETLINK_SOCK_DIAG)
{
}

std::optional<std::string> Sampler::sample()
{
    const MemoryFile file(m_runtimeFolder,
                          m_runtimeFolder.empty() ? MemoryOrigin() : MemoryOrigin::here());
    if (auto remembered = file.read())
        m_memory = std::move(*remembered);
    const auto sockets = readTcpSockets(m_dump, m_memory.sockets.size() + someNew);
    if (!sockets)
        return std::nullopt;
    Accounts accounts(m_memory, m_processes, ::geteuid());
    accounts.update(*sockets, static_cast<std::uint32_t>(now(CLOCK_BOOTTIME).tv_sec));
    if (accounts.hasChanged())
        file.write(m_memory);
    InterfaceNames interfaces(m_dump.descriptor());
    Report report(m_memory, interfaces,
                  [this](std::uint32_t uid) { return fieldForUser(m_users.nameOf(uid)); });
    return report.write(*sockets, accounts, now(CLOCK_REALTIME));
}

} // namespace pulsebar::nettop
