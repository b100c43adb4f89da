#pragma once

#include "platform/SmcTransport.h"
#include "sensors/smc/SmcValue.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace pulsebar {

// What a person at a terminal asks of the controller. Characters of keys and types that do not
// print are written as "?", so that an answer cannot speak to the terminal.

/// A line: key, type, the number if it is an integer or "fpe2", and the bytes.
void printVal(const SmcValue &value, std::FILE *out = stdout);
/// The three pieces of that line: a "fpe2" number, an integer, the bytes with the line's end.
void printFPE2(const SmcValue &value, std::FILE *out = stdout);
void printUInt(const SmcValue &value, std::FILE *out = stdout);
void printBytesHex(const SmcValue &value, std::FILE *out = stdout);

/// All keys that SMCReadIndexCount() counts, which are 255 at most.
void SMCPrintAll(SmcTransport &connection, std::FILE *out = stdout);

/// The keys from an index on until the controller has no further one (at most 65536).
void printKeysFrom(std::uint32_t index, SmcTransport &connection, std::FILE *out = stdout);

/// The fans with their speeds.
/// @return kSmcGeneralError when their number cannot be read
SmcStatus SMCPrintFans(SmcTransport &connection, std::FILE *out = stdout);

void usage(const char *program, std::FILE *out = stdout);

/// Writes bytes given as pairs of hexadecimal digits, and says so when that fails.
/// @return the status of SMCWriteKey(); kSmcBadArgument for a text of odd length, with anything but
///     hexadecimal digits, or of more than 32 pairs, of which nothing is written
SmcStatus SMCWriteSimple(std::string_view key, std::string_view hexText, SmcTransport &connection,
                         std::FILE *out = stdout);

/// Writes a speed as two bytes "fpe2".
/// @return kSmcBadArgument for a speed that does not fit, 0 to 16383
SmcStatus SMCSetFanRpm(std::string_view key, int rpm, SmcTransport &connection);

} // namespace pulsebar
