#include "platform/linux_/DesktopProcessIcons.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/proc_pid_stat.h"
#include "platform/linux_/low/process_origin.h"

#include <array>
#include <limits>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

constexpr int mostParents = 4;
// A command line can be megabytes long; the program stands at its start.
constexpr std::size_t longestRead = 16U << 10U;

/// The kernel appends this to the name of an executable that was replaced, as upgrades do.
std::string_view withoutDeletedMark(std::string_view path)
{
    constexpr std::string_view mark = " (deleted)";
    if (path.ends_with(mark))
        path.remove_suffix(mark.size());
    return path;
}

} // namespace

DesktopProcessIcons::DesktopProcessIcons(Sysroot root, std::shared_ptr<DesktopEntries> entries,
                                         std::size_t mostAnswers)
    : m_root(std::move(root))
    , m_entries(std::move(entries))
    , m_mostAnswers(mostAnswers)
{
}

std::string DesktopProcessIcons::file(int pid, const char *name) const
{
    const std::string path = "/proc/" + std::to_string(pid) + '/' + name;
    return readWholeFile(m_root.path(path), longestRead).value_or(std::string());
}

std::string DesktopProcessIcons::executable(int pid) const
{
    std::array<char, 4096> target{};
    const auto path = m_root.path("/proc/" + std::to_string(pid) + "/exe");
    const auto length = ::readlink(path.c_str(), target.data(), target.size());
    if (length <= 0)
        return {};
    const std::string_view text(target.data(), static_cast<std::size_t>(length));
    return std::string(withoutDeletedMark(text));
}

const DesktopEntries::Application *DesktopProcessIcons::applicationOf(int pid)
{
    for (const auto &id : desktopIdsOfCgroup(file(pid, "cgroup"))) {
        if (const auto *application = m_entries->byId(id))
            return application;
    }
    auto programs = programsOfCommandLine(file(pid, "cmdline"));
    programs.insert(programs.begin(), executable(pid));
    for (const auto &program : programs) {
        if (isInterpreter(baseName(program)))
            continue;
        if (const auto *application = m_entries->byProgram(program))
            return application;
    }
    return nullptr;
}

QString DesktopProcessIcons::find(int pid, int parent)
{
    const auto *application = applicationOf(pid);
    // Process 1 and the kernel's own are nobody's application.
    for (int step = 0; !application && step < mostParents && parent > 1; ++step) {
        application = applicationOf(parent);
        if (application && !application->shown)
            return {};
        parent = identityOf(parent).parent;
    }
    return application ? QString::fromStdString(application->icon) : QString();
}

DesktopProcessIcons::Identity DesktopProcessIcons::identityOf(int pid) const
{
    const std::string text = file(pid, "stat");
    const auto stat = parsePidStat(text);
    if (!stat || stat->parent > std::numeric_limits<int>::max())
        return {};
    return {true, static_cast<int>(stat->parent), stat->startTicks};
}

QString DesktopProcessIcons::iconForPID(const QString &pid)
{
    bool isNumber = false;
    const int number = pid.toInt(&isNumber);
    const Identity identity = isNumber && number > 0 ? identityOf(number) : Identity();
    if (!identity.exists)
        return {};
    const auto known = m_answers.find(number);
    if (known != m_answers.end() && known->second.startTime == identity.startTime)
        return known->second.icon;
    if (m_answers.size() >= m_mostAnswers)
        m_answers.clear();
    QString icon = find(number, identity.parent);
    m_answers[number] = {identity.startTime, icon};
    return icon;
}

} // namespace pulsebar
