#pragma once

#include "platform/ProcessIcons.h"
#include "platform/linux_/DesktopEntries.h"
#include "platform/linux_/low/Sysroot.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace pulsebar {

/// Finds the desktop entry that a process belongs to, in this order:
/// 1. the application that its control group is named for (/proc/PID/cgroup);
/// 2. its executable file (/proc/PID/exe, own processes only) or the program that its command line
///    names, and the script that an interpreter runs;
/// 3. its parents, up to four of them: the processes of a browser's tabs have the browser's icon.
///    Only applications that stand in menus pass their icon on, so that what a panel or a session
///    starts does not look like the panel.
///
/// Answers are kept by process number and start time, for a bounded number of processes.
class DesktopProcessIcons : public ProcessIcons
{
public:
    /// @param mostAnswers for how many processes answers are kept
    DesktopProcessIcons(Sysroot root, std::shared_ptr<DesktopEntries> entries,
                        std::size_t mostAnswers = 512);
    QString iconForPID(const QString &pid) override;

private:
    struct Identity
    {
        bool exists = false;
        int parent = 0;
        std::uint64_t startTime =
            0; ///< ticks after boot; with the number it names a process for good
    };
    struct Answer
    {
        std::uint64_t startTime = 0;
        QString icon;
    };

    std::string file(int pid, const char *name) const;
    std::string executable(int pid) const;
    Identity identityOf(int pid) const;
    const DesktopEntries::Application *applicationOf(int pid);
    QString find(int pid, int parent);

    Sysroot m_root;
    std::shared_ptr<DesktopEntries> m_entries;
    std::size_t m_mostAnswers;
    std::unordered_map<int, Answer> m_answers;
};

} // namespace pulsebar
