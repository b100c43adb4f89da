#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pulsebar::nettop {

/// A process's name as the first part of a field: as the process sampler prints it, but never with
/// a comma (it becomes U+201A, which looks like one), and in single quotation marks when it begins
/// with "tcp", as only connections do.
std::string fieldForProcess(std::string_view comm, std::string_view commandLine);

/// The field for what belongs to a user and to no process that may be seen. It does not end with a
/// full stop and a number, as a process's does.
std::string fieldForUser(std::string_view userName);

} // namespace pulsebar::nettop
