#pragma once

#include "nettop/ProcessSource.h"

#include <map>

namespace pulsebar::nettop {

/// Processes as a test tells them, and what was asked about them.
class FakeProcesses : public ProcessSource
{
public:
    struct Process
    {
        std::uint64_t start = 0;
        std::uint32_t uid = 1000;
        std::string comm = "program";
        std::map<std::uint32_t, std::uint32_t> sockets; ///< inodes by descriptor
        bool isOpen = true;                             ///< its descriptors may be seen
        std::uint64_t clock = 1000;
    };

    /// The process, made when it is missing; it runs, as it must to change.
    Process &run(pid_t pid)
    {
        auto &process = processes[pid];
        process.clock += 1000;
        return process;
    }
    void give(pid_t pid, std::uint32_t inode)
    {
        auto &process = run(pid);
        process.sockets[3 + static_cast<std::uint32_t>(process.sockets.size())] = inode;
    }
    void end(pid_t pid) { processes.erase(pid); }
    void forget()
    {
        looks.clear();
        lists = checks = factsRead = 0;
    }

    bool hasClocks() const override { return clocksWork; }
    std::vector<pid_t> list() override
    {
        ++lists;
        std::vector<pid_t> pids;
        for (const auto &[pid, process] : processes)
            pids.push_back(pid);
        return pids;
    }
    std::optional<std::uint64_t> clock(pid_t pid) override
    {
        const auto process = processes.find(pid);
        if (!clocksWork || process == processes.end())
            return std::nullopt;
        return process->second.clock;
    }
    std::optional<Facts> facts(pid_t pid) override
    {
        ++factsRead;
        const auto process = processes.find(pid);
        if (process == processes.end())
            return std::nullopt;
        return Facts{process->second.start, process->second.uid, process->second.comm};
    }
    std::string commandLine(pid_t /*pid*/) override { return {}; }
    Look lookAtSockets(pid_t pid, const SocketTaker &take) override
    {
        looks.push_back(pid);
        const auto process = processes.find(pid);
        if (process == processes.end() || !process->second.isOpen)
            return Look::Whole;
        const auto &sockets = process->second.sockets;
        for (auto socket = sockets.rbegin(); socket != sockets.rend(); ++socket) {
            if (!take(socket->second, socket->first))
                return Look::Stopped;
        }
        return Look::Whole;
    }
    bool holds(pid_t pid, std::uint32_t descriptor, std::uint32_t inode) override
    {
        ++checks;
        const auto process = processes.find(pid);
        if (process == processes.end() || !process->second.isOpen)
            return false;
        const auto socket = process->second.sockets.find(descriptor);
        return socket != process->second.sockets.end() && socket->second == inode;
    }

    std::map<pid_t, Process> processes;
    bool clocksWork = true;
    std::vector<pid_t> looks;
    int lists = 0;
    int checks = 0;
    int factsRead = 0;
};

} // namespace pulsebar::nettop
