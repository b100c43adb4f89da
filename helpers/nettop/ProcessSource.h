#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pulsebar::nettop {

/// What is asked about processes. Every answer may be out of date when it arrives.
class ProcessSource
{
public:
    struct Facts
    {
        std::uint64_t startTicks =
            0; ///< since boot: tells a process from its successor in the number
        std::uint32_t uid = 0;
        std::string comm; ///< the process's own choice: any bytes
    };
    /// Answers false to see no more.
    using SocketTaker = std::function<bool(std::uint32_t inode, std::uint32_t descriptor)>;
    enum class Look {
        Whole,   ///< all that the process holds was seen, or nothing may be seen
        Stopped, ///< the taker had enough
    };

    ProcessSource() = default;
    virtual ~ProcessSource() = default;
    ProcessSource(const ProcessSource &) = delete;
    ProcessSource &operator=(const ProcessSource &) = delete;

    /// False where nothing tells whether a process ran; clock() is absent then.
    virtual bool hasClocks() const = 0;
    /// All processes that can be seen, in any order.
    virtual std::vector<pid_t> list() = 0;
    /// CPU time in ns; absent when the process is gone. While it stands still, the process holds
    /// what it held, and has the name that it had.
    virtual std::optional<std::uint64_t> clock(pid_t pid) = 0;
    /// Absent when the process is gone or may not be seen.
    virtual std::optional<Facts> facts(pid_t pid) = 0;
    /// Its arguments, each ended by NUL; empty when they may not be seen.
    virtual std::string commandLine(pid_t pid) = 0;
    /// The sockets that it holds, the highest descriptor first (where the newest are, as a rule).
    virtual Look lookAtSockets(pid_t pid, const SocketTaker &take) = 0;
    /// Does that descriptor of the process lead to the socket?
    virtual bool holds(pid_t pid, std::uint32_t descriptor, std::uint32_t inode) = 0;
};

} // namespace pulsebar::nettop
