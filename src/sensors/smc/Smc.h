#pragma once

#include "platform/SmcTransport.h"
#include "sensors/smc/SmcValue.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>

namespace pulsebar {

/// Takes one line without its end.
using SmcReporter = std::function<void(std::string_view line)>;

/// Writes the line to standard output.
void printSmcLine(std::string_view line);

/// What an opening that failed has to say; empty when it did not fail.
std::string smcOpenMessage(const SmcOpenResult &result);

/// Opens the connection.
/// @param report told why, when that fails
/// @return 0, or 1 on any failure
int SMCOpen(SmcTransport &connection, const SmcReporter &report = printSmcLine);

void SMCClose(SmcTransport &connection);

/// One call of the given method with a record of 80 bytes in both directions.
SmcStatus SMCCall(std::uint32_t selector, const SmcRecord &input, SmcRecord &output,
                  SmcTransport &connection);

/// Reads a key: its size and type, then its bytes. A key that does not exist is read with success
/// and size 0.
/// @param key its first four characters count; a shorter one is filled up with zeros
/// @param value overwritten in any case
/// @return the status of the call that failed, or 0
SmcStatus SMCReadKey(std::string_view key, SmcValue &value, SmcTransport &connection);

/// Writes the bytes of a key, once it was found to have that size.
/// @return kSmcGeneralError when the size differs, else the status of the call that failed, or 0
SmcStatus SMCWriteKey(SmcTransport &connection, const SmcValue &value);

/// The key at an index, by SmcCommand::ReadIndex.
/// @return the call's status; what it put into `key` means something only with success
SmcStatus SMCReadKeyAt(std::uint32_t index, SmcCode &key, SmcTransport &connection);

/// The number of keys, of which only the last byte is kept: 300 keys are 44.
std::uint32_t SMCReadIndexCount(SmcTransport &connection);

/// Degrees Celsius; 0.0 when the key cannot be read, has no bytes, or is not of type "sp78".
double SMCGetTemperature(std::string_view key, SmcTransport &connection);

inline constexpr std::uint32_t kSmcNoRpm = std::numeric_limits<std::uint32_t>::max();

/// Revolutions per minute; kSmcNoRpm when the key cannot be read, has no bytes, or is not of type
/// "fpe2".
std::uint32_t SMCGetFanRpm(std::string_view key, SmcTransport &connection);

} // namespace pulsebar
