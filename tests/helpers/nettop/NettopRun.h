#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace pulsebar::nettop {

/// A line of a report about a connection.
struct ReportedConnection
{
    std::string type;
    std::string address;
    std::string interface;
    std::string state;
    std::uint64_t in = 0;
    std::uint64_t out = 0;
};

/// A line about a process or a user, and the connections under it.
struct ReportedOwner
{
    std::uint64_t in = 0;
    std::uint64_t out = 0;
    std::vector<ReportedConnection> connections;
};

/// Owners by their names.
using ReportedOwners = std::map<std::string, ReportedOwner>;

/// Reads a report as its readers do; fails the running test where a line is not of the form.
ReportedOwners parseReport(const std::string &text);

/// How the sampler is run.
struct NettopSetting
{
    std::vector<std::string> arguments{"-L1", "-m", "tcp", "-c"};
    std::string runtimeFolder; ///< as XDG_RUNTIME_DIR; empty: unset
    std::string sysroot;
    uid_t user = 0; ///< who runs it, when this is root
};

/// A run of the sampler as a child process. Its output is a packet pipe: a read is one write (of no
/// more than a page).
class NettopRun
{
public:
    explicit NettopRun(const NettopSetting &setting);
    ~NettopRun();
    NettopRun(const NettopRun &) = delete;
    NettopRun &operator=(const NettopRun &) = delete;

    pid_t pid() const { return m_pid; }
    std::string readOnce() const;
    std::string readAll() const;
    std::string readErrors() const;
    void closeOutput();
    /// The exit code, or minus the signal that ended it.
    int wait();

private:
    pid_t m_pid = 0;
    int m_out = -1;
    int m_errors = -1;
};

/// One report of a run that has to succeed.
ReportedOwners reportOf(const NettopSetting &setting);

} // namespace pulsebar::nettop
