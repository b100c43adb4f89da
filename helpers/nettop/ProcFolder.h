#pragma once

#include "nettop/ProcessSource.h"
#include "platform/linux_/low/Sysroot.h"

namespace pulsebar::nettop {

/// Processes as /proc and their CPU clocks tell about them.
class ProcFolder : public ProcessSource
{
public:
    explicit ProcFolder(const Sysroot &sysroot);
    ~ProcFolder() override;

    bool hasClocks() const override { return m_hasClocks; }
    std::vector<pid_t> list() override;
    std::optional<std::uint64_t> clock(pid_t pid) override;
    std::optional<Facts> facts(pid_t pid) override;
    std::string commandLine(pid_t pid) override;
    Look lookAtSockets(pid_t pid, const SocketTaker &take) override;
    bool holds(pid_t pid, std::uint32_t descriptor, std::uint32_t inode) override;

private:
    std::size_t readFile(pid_t pid, const char *file, char *space, std::size_t size,
                         std::uint32_t *uid = nullptr) const;

    int m_folder;
    bool m_hasClocks;
    std::vector<char> m_entries;
    std::vector<std::uint32_t> m_descriptors;
};

/// The inode in the target of a descriptor's link, "socket:[4711]"; absent for another target.
std::optional<std::uint32_t> socketInodeOf(std::string_view target);

} // namespace pulsebar::nettop
