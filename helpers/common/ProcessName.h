#pragma once

#include <string>
#include <string_view>

namespace pulsebar {

/// The full form of a name that the kernel cut at 15 bytes, where the command line knows it:
/// the last path component of the program (or, for a script, of its file) when it begins with
/// `comm`; else `comm` itself. `commandLine` is /proc/PID/cmdline, arguments ended by NUL.
std::string completeName(std::string_view comm, std::string_view commandLine);

/// A process's name in the form in which it stands in a report's row, where columns are set apart
/// by blanks and a reader finds the end of the name by the CPU column after it ("12.5").
///
/// Plain words with single blanks stay as they are. Else:
/// - bytes that are not UTF-8, control characters, line separators and characters that turn the
///   direction of text become U+FFFD;
/// - a blank at the beginning or the end becomes U+2423 (open box);
/// - a blank within a run of blanks, and one before a word that would read as a number or holds
///   a "%", becomes a no-break space (U+00A0);
/// - an empty name becomes "?", and "N/A" (the sign of an unknown value) gets a division slash;
/// - what is longer than 64 characters is cut.
std::string nameForRow(std::string_view name);

/// As nameForRow for a text of one word: blanks become "_". (No number is due after it.)
std::string wordForRow(std::string_view text);

} // namespace pulsebar
