#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pulsebar {

/// The number of a file such as temp1_input (thousandths of a degree) or fan1_input (revolutions
/// per minute). Absent unless the text is one whole decimal number, with or without a minus.
std::optional<std::int64_t> parseHwmonNumber(std::string_view text);

/// A name or label for people: the first line without blanks at its ends; each control character,
/// and each byte that is not part of valid UTF-8, becomes U+FFFD. Of a text that is longer than
/// that many characters the last that is left is "…".
std::string readableText(std::string_view text, std::size_t longest = 64);

/// A file of a chip's folder, by its name.
struct HwmonFile
{
    enum class Kind { Temperature, Fan };

    Kind kind = Kind::Temperature;
    int number = 0;          ///< as the kernel counts: N of tempN_input
    std::string_view detail; ///< "input", "label", "min", ...: a part of the name that was given
};

/// Absent for files of other kinds.
std::optional<HwmonFile> parseHwmonFileName(std::string_view name);

/// N of "hwmonN"; absent for other names.
std::optional<int> parseHwmonFolderName(std::string_view name);

} // namespace pulsebar
