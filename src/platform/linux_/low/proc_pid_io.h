#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// The number of read and write calls in a /proc/PID/io (syscr + syscw); absent unless both are
/// there.
std::optional<std::uint64_t> parseIoCalls(std::string_view text);

} // namespace pulsebar
