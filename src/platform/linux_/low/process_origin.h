#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// Identifiers of desktop entries (without ".desktop") that the process's control group is named
/// for, likeliest first. Desktops that start applications as units of the user's systemd name
/// them "app[-launcher]-ID-number.scope" or "app[-launcher]-ID@number.service", snaps are
/// "snap.NAME.APP[.more].scope". Empty when the group names no application.
/// @param cgroup content of /proc/PID/cgroup
std::vector<std::string> desktopIdsOfCgroup(std::string_view cgroup);

/// The words of /proc/PID/cmdline that name the program: the first, and, where that is an
/// interpreter, the script that it runs. At most two; empty for a kernel thread.
std::vector<std::string> programsOfCommandLine(std::string_view cmdline);

/// True for a program that runs the script it is given, such as "python3.11"; its own name says
/// nothing about the application.
bool isInterpreter(std::string_view program);

/// What follows the last slash.
std::string_view baseName(std::string_view path);

} // namespace pulsebar
