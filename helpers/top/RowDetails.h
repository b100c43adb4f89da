#pragma once

#include "common/UserNames.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/Sysroot.h"
#include "top/Columns.h"
#include "top/Process.h"
#include "top/Row.h"

#include <unordered_map>
#include <vector>

namespace pulsebar::top {

/// Turns the processes that are printed into rows. Only here status, cmdline, io and thread
/// folders are read, and nothing is read again while the process has not run.
class RowDetails
{
public:
    RowDetails(const Sysroot &sysroot, const std::vector<Column> &columns);

    /// `now`: ns on the monotonic clock.
    Row rowOf(const Process &process, std::uint64_t now);
    /// Forgets processes that were not shown lately; once per report.
    void endReport();

private:
    /// What was learnt of a process when it was shown.
    struct Details
    {
        std::uint64_t startTicks = 0;
        std::uint64_t cpuTime = 0;
        std::uint64_t knownAt = 0; ///< moment up to which the figures hold
        std::uint64_t reportNumber = 0;
        std::string comm;
        std::string name;
        std::optional<std::uint32_t> uid;
        std::optional<std::uint64_t> calls;
        std::optional<std::uint64_t> runningThreads;
        std::optional<std::uint64_t> switches;
        bool allThreadsCounted = false;
        double wakeUpsPerSecond = 0;
        bool isRead = false;
        /// Kept open while the process is shown report after report.
        bool keepsFiles = false;
        std::optional<SmallFile> statusFile;
        std::optional<SmallFile> ioFile;
    };
    /// Voluntary context switches and running threads of a process.
    struct Activity
    {
        std::optional<std::uint32_t> uid;
        std::optional<std::uint64_t> runningThreads;
        std::optional<std::uint64_t> switches;
        bool allThreadsCounted = false;
    };

    Details &detailsOf(const Process &process);
    void update(Details &details, const Process &process, std::uint64_t now);
    void updateName(Details &details, const Process &process);
    void updateCalls(Details &details, const Process &process);
    void updateActivity(Details &details, const Process &process, std::uint64_t now);
    Activity readActivity(Details &details, const Process &process);
    std::optional<std::string_view> readFile(std::optional<SmallFile> &kept, pid_t pid,
                                             std::string_view name, bool keep);
    void addThreads(Activity &activity, pid_t pid) const;
    void decideOnFiles(Details &details);
    std::string pathOf(pid_t pid, std::string_view file) const;

    Sysroot m_sysroot;
    std::uint64_t m_pageSize;
    bool m_wantsStatus;
    bool m_wantsCalls;
    UserNames m_users;
    std::unordered_map<pid_t, Details> m_details;
    std::uint64_t m_reportNumber = 0;
    std::size_t m_rowsWithFiles = 0;
    std::string m_text;
};

} // namespace pulsebar::top
