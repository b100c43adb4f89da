#include "top/RowDetails.h"

#include "common/ProcessName.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_pid_io.h"
#include "platform/linux_/low/proc_pid_status.h"

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <string>
#include <unistd.h>

namespace pulsebar::top {

namespace {

/// Threads are walked one by one only where it tells something: the process was busy (1/1000 of a
/// core and more), and it has not so many of them that looking costs more than it does.
constexpr std::uint32_t busy = 10;
constexpr std::uint32_t mostThreads = 64;
constexpr std::uint64_t reportsToRemember = 16;
/// Rows whose files are kept open, two each.
constexpr std::size_t mostRowsWithFiles = 64;
constexpr std::size_t cmdlineLimit = 4096;
constexpr double nsPerSecond = 1e9;

std::string readCommOfStat(const std::string &text, std::string_view fallback)
{
    const auto stat = parsePidStat(text);
    return std::string(stat ? stat->comm : fallback);
}

} // namespace

RowDetails::RowDetails(const Sysroot &sysroot, const std::vector<Column> &columns)
    : m_sysroot(sysroot)
    , m_pageSize(static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)))
{
    const auto wants = [&](Column column) {
        return std::find(columns.begin(), columns.end(), column) != columns.end();
    };
    m_wantsStatus = wants(Column::User) || wants(Column::Power) || wants(Column::Threads);
    m_wantsCalls = wants(Column::UnixCalls);
}

std::string RowDetails::pathOf(pid_t pid, std::string_view file) const
{
    return m_sysroot.path("/proc/" + std::to_string(pid) + '/').append(file);
}

Row RowDetails::rowOf(const Process &process, std::uint64_t now)
{
    auto &details = detailsOf(process);
    update(details, process, now);
    Row row;
    row.pid = process.pid;
    row.name = details.name;
    row.tenthsOfPercent = process.tenthsOfPercent;
    row.cpuTime = process.cpuTime;
    row.threads = process.threads;
    row.runningThreads = details.runningThreads;
    if (details.uid)
        row.user = m_users.nameOf(*details.uid);
    row.calls = details.calls;
    row.wakeUpsPerSecond = details.wakeUpsPerSecond;
    row.majorFaults = process.majorFaults;
    row.residentBytes = process.residentPages * m_pageSize;
    row.virtualBytes = process.virtualBytes;
    return row;
}

RowDetails::Details &RowDetails::detailsOf(const Process &process)
{
    auto &details = m_details[process.pid];
    if (details.startTicks != process.startTicks) {
        details = {};
        details.startTicks = process.startTicks;
    }
    details.reportNumber = m_reportNumber;
    return details;
}

void RowDetails::update(Details &details, const Process &process, std::uint64_t now)
{
    const bool sleptOn = details.isRead && details.cpuTime == process.cpuTime;
    if (sleptOn) {
        details.wakeUpsPerSecond = 0;
        details.runningThreads.reset();
    } else {
        decideOnFiles(details);
        updateName(details, process);
        if (m_wantsStatus)
            updateActivity(details, process, now);
        if (m_wantsCalls)
            updateCalls(details, process);
    }
    details.isRead = true;
    details.cpuTime = process.cpuTime;
    details.knownAt = now;
}

/// The file's text, valid until the next call; absent when it may not be read.
std::optional<std::string_view> RowDetails::readFile(std::optional<SmallFile> &kept, pid_t pid,
                                                     std::string_view name, bool keep)
{
    if (!kept && keep)
        kept.emplace(pathOf(pid, name));
    if (kept)
        return kept->read();
    auto text = readWholeFile(pathOf(pid, name));
    if (!text)
        return std::nullopt;
    m_text = std::move(*text);
    return m_text;
}

/// A row that was read before and is read again is likely to be read once more.
void RowDetails::decideOnFiles(Details &details)
{
    if (details.keepsFiles || !details.isRead || m_rowsWithFiles >= mostRowsWithFiles)
        return;
    details.keepsFiles = true;
    ++m_rowsWithFiles;
}

void RowDetails::updateCalls(Details &details, const Process &process)
{
    const auto text = readFile(details.ioFile, process.pid, "io", details.keepsFiles);
    details.calls = parseIoCalls(text.value_or(std::string_view()));
}

void RowDetails::updateName(Details &details, const Process &process)
{
    // A kernel worker's name is longer than others' and follows its work.
    const auto comm =
        process.nameIsCut()
            ? readCommOfStat(readWholeFile(pathOf(process.pid, "stat")).value_or(std::string()),
                             process.name())
            : std::string(process.name());
    if (details.isRead && comm == details.comm)
        return;
    details.comm = comm;
    // Only a name that fills the kernel's space can be longer in truth.
    const bool mayBeLonger = comm.size() == Process::commSpace - 1;
    const auto cmdline = mayBeLonger ? readWholeFile(pathOf(process.pid, "cmdline"), cmdlineLimit)
                                     : std::optional<std::string>();
    details.name = nameForRow(completeName(comm, cmdline.value_or(std::string())));
}

void RowDetails::updateActivity(Details &details, const Process &process, std::uint64_t now)
{
    const auto activity = readActivity(details, process);
    details.uid = activity.uid;
    details.runningThreads = activity.runningThreads;
    const bool comparable = details.switches && activity.switches &&
                            details.allThreadsCounted == activity.allThreadsCounted &&
                            *activity.switches >= *details.switches && now > details.knownAt;
    details.wakeUpsPerSecond = comparable
                                   ? static_cast<double>(*activity.switches - *details.switches) *
                                         nsPerSecond / static_cast<double>(now - details.knownAt)
                                   : 0;
    details.switches = activity.switches;
    details.allThreadsCounted = activity.allThreadsCounted;
}

RowDetails::Activity RowDetails::readActivity(Details &details, const Process &process)
{
    Activity activity;
    const auto text = readFile(details.statusFile, process.pid, "status", details.keepsFiles);
    if (!text)
        return activity;
    const auto status = parsePidStatus(*text);
    activity.uid = status.effectiveUid;
    if (process.threads > 1 && process.threads <= mostThreads && process.tenthsOfPercent >= busy) {
        addThreads(activity, process.pid);
        return activity;
    }
    activity.switches = status.voluntarySwitches;
    activity.allThreadsCounted = process.threads <= 1;
    if (process.threads <= 1)
        activity.runningThreads = process.state == 'R' ? 1 : 0;
    return activity;
}

void RowDetails::addThreads(Activity &activity, pid_t pid) const
{
    const auto tasks = pathOf(pid, "task/");
    DIR *folder = ::opendir(tasks.c_str());
    if (!folder)
        return;
    std::uint64_t switches = 0;
    std::uint64_t running = 0;
    while (const dirent *entry = ::readdir(folder)) {
        if (entry->d_name[0] == '.')
            continue;
        const auto text = readWholeFile(tasks + entry->d_name + "/status");
        const auto status = parsePidStatus(text.value_or(std::string()));
        switches += status.voluntarySwitches.value_or(0);
        running += status.state == 'R' ? 1 : 0;
    }
    ::closedir(folder);
    activity.switches = switches;
    activity.runningThreads = running;
    activity.allThreadsCounted = true;
}

void RowDetails::endReport()
{
    std::erase_if(m_details, [&](const auto &entry) {
        return entry.second.reportNumber + reportsToRemember < m_reportNumber;
    });
    m_rowsWithFiles = 0;
    for (auto &[pid, details] : m_details) {
        if (details.reportNumber != m_reportNumber) {
            details.keepsFiles = false;
            details.statusFile.reset();
            details.ioFile.reset();
        }
        if (details.keepsFiles)
            ++m_rowsWithFiles;
    }
    ++m_reportNumber;
}

} // namespace pulsebar::top
