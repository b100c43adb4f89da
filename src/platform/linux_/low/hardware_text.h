#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pulsebar {

/// A size as /sys/devices/system/cpu/cpuN/cache/indexM/size prints it: "48K", "2048K", "16M",
/// in bytes; a number without a letter is bytes. Absent when it is none or does not fit.
std::optional<std::int64_t> parseCacheSize(std::string_view text);

/// One unsigned decimal number with blanks around it, as most files of /sys hold.
/// Absent when there is none, when it does not fit, or when something else follows it.
std::optional<std::int64_t> parseSysNumber(std::string_view text);

/// Big-endian cell(s) of a device tree property, 4 or 8 bytes; absent for any other length.
std::optional<std::int64_t> parseDeviceTreeCell(std::string_view bytes);

/// The first "cpu MHz" line of /proc/cpuinfo, in hertz; absent when there is none.
std::optional<std::int64_t> parseCpuMegahertz(std::string_view cpuinfo);

/// A name that firmware supplies (DMI, device tree): what stands before the first NUL or newline,
/// without blanks around it and without control characters; bytes that are not UTF-8 become
/// U+FFFD. Absent when nothing is left, or when the maker left a placeholder such as
/// "To Be Filled By O.E.M." in it.
std::optional<std::string> parseFirmwareName(std::string_view text);

} // namespace pulsebar
