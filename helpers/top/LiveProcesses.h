#pragma once

#include "top/PidLister.h"

#include <array>

namespace pulsebar::top {

/// A folder descriptor that is closed with its owner.
class Folder
{
public:
    explicit Folder(const char *path);
    ~Folder();
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// The processes of the running kernel: CPU times from their CPU clocks (a thirtieth of the cost of
/// reading `stat`, and no rights are needed), the rest from /proc.
class LiveProcesses : public ProcessSource
{
public:
    LiveProcesses();

    /// False where clocks and /proc do not tell of the same processes: /proc of another process
    /// namespace, or a kernel without such clocks.
    static bool works();

    bool listAll(const ListHint &hint, std::vector<pid_t> &pids) override;
    bool listNew(const ListHint &hint, std::vector<pid_t> &pids) override;
    std::optional<std::uint64_t> cpuTime(pid_t pid) override;
    std::optional<PidStat> stat(pid_t pid, KeptFile &file, bool keep) override;
    void close(KeptFile &file) override;
    bool startTimesAreLive() const override { return true; }

private:
    std::optional<PidStat> readKept(KeptFile &file);

    Folder m_folder;
    PidLister m_lister;
    std::array<char, 2048> m_text{};
};

/// Processes as files tell them, CPU times included: a recorded machine, or a /proc that is not
/// this namespace's.
class FileProcesses : public ProcessSource
{
public:
    /// `folder` is the place of "/proc".
    explicit FileProcesses(std::string folder);

    bool listAll(const ListHint &hint, std::vector<pid_t> &pids) override;
    bool listNew(const ListHint &hint, std::vector<pid_t> &pids) override;
    std::optional<std::uint64_t> cpuTime(pid_t pid) override;
    std::optional<PidStat> stat(pid_t pid, KeptFile &file, bool keep) override;
    void close(KeptFile &file) override;
    bool startTimesAreLive() const override { return false; }

private:
    bool read(pid_t pid);

    std::string m_path;
    pid_t m_readPid = 0;
    std::string m_text;
    std::optional<PidStat> m_stat;
};

} // namespace pulsebar::top
