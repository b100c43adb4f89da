#pragma once

#include <string>
#include <string_view>

namespace pulsebar {

/// Where /proc and /sys are: the running kernel's, or a recorded machine's below $PULSEBAR_SYSROOT.
class Sysroot
{
public:
    /// The running system.
    Sysroot() = default;
    /// A folder that holds proc/ and sys/; empty means the running system.
    explicit Sysroot(std::string folder);

    /// As $PULSEBAR_SYSROOT says; the running system when it is unset or empty, and
    /// in a program that has more rights than its caller (secure_getenv(3)).
    static Sysroot fromEnvironment();

    /// True for a recorded machine: process clocks of the running kernel mean nothing there.
    bool isRecorded() const { return !m_folder.empty(); }
    /// The place of an absolute path, e.g. "/proc/stat".
    std::string path(std::string_view absolute) const;

private:
    std::string m_folder;
};

} // namespace pulsebar
