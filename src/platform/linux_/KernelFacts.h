#pragma once

#include "platform/SystemFacts.h"
#include "platform/linux_/low/Sysroot.h"

namespace pulsebar {

/// Hardware facts as the kernel describes the machine. They are read anew at each question: nobody
/// asks often.
///
/// | fact | from |
/// |---|---|
/// | machine, architecture | /proc/sys/kernel/arch, else uname(2) |
/// | model | /sys/class/dmi/id/product_name, then board_name; else the device tree's `model` |
/// | physical memory | MemTotal of /proc/meminfo |
/// | user memory | that, less what cannot be paged or reclaimed |
/// | page size | sysconf(3) |
/// | disk names | the whole disks, with blanks between |
/// | disk statistics | for each whole disk a line: its name and its `stat` figures |
/// | bus frequency | the device tree's `bus-frequency`; otherwise not known on Linux |
/// | CPU frequency | the first processor's base frequency, else its highest, else its present one |
/// | caches | /sys/devices/system/cpu/cpu0/cache |
/// | "hw.physicalcpu" | how many different sets of threads /sys/devices/system/cpu/cpuN/topology
/// tells |
///
/// Facts of text have no number and facts of numbers no text.
class KernelFacts : public SystemFacts
{
public:
    explicit KernelFacts(Sysroot root);
    std::optional<std::string> text(int selector) const override;
    std::optional<std::int64_t> number(int selector) const override;
    std::optional<std::int64_t> numberByName(std::string_view name) const override;

private:
    std::optional<std::string> file(const std::string &absolute) const;
    std::optional<std::int64_t> sysNumber(const std::string &absolute) const;
    std::optional<std::int64_t> deviceTreeCell(const std::string &absolute) const;
    std::optional<std::string> firmwareName(const std::string &absolute) const;

    std::optional<std::string> architecture() const;
    std::optional<std::string> model() const;
    std::optional<std::string> diskNames() const;
    std::optional<std::string> diskStatistics() const;
    std::optional<std::int64_t> physicalMemory() const;
    std::optional<std::int64_t> userMemory() const;
    std::optional<std::int64_t> cpuFrequency() const;
    std::optional<std::int64_t> physicalCores() const;
    std::optional<std::int64_t> cacheLine() const;
    std::optional<std::int64_t> cacheSize(int level, const std::string &kind) const;

    Sysroot m_root;
};

} // namespace pulsebar
