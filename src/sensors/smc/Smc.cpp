#include "sensors/smc/Smc.h"

#include "sensors/smc/SmcDecode.h"

#include <algorithm>
#include <cstdio>

namespace pulsebar {

namespace {

SmcRecord request(SmcCommand command, std::uint32_t keyCode)
{
    SmcRecord record{};
    record.keyCode = keyCode;
    record.command = static_cast<std::uint8_t>(command);
    return record;
}

std::string withStatus(const char *call, SmcStatus status)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "Error: %s() = %08x", call, status);
    return text.data();
}

} // namespace

void printSmcLine(std::string_view line)
{
    std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
}

std::string smcOpenMessage(const SmcOpenResult &result)
{
    switch (result.opening) {
    case SmcOpening::Opened:
        return {};
    case SmcOpening::MatchingFailed:
        return withStatus("IOServiceGetMatchingServices", result.status);
    case SmcOpening::NoService:
        return "Error: no SMC found";
    case SmcOpening::Refused:
        return withStatus("IOServiceOpen", result.status);
    }
    return {};
}

int SMCOpen(SmcTransport &connection, const SmcReporter &report)
{
    const SmcOpenResult result = connection.open();
    if (result.opening == SmcOpening::Opened)
        return 0;
    report(smcOpenMessage(result));
    return 1;
}

void SMCClose(SmcTransport &connection)
{
    connection.close();
}

SmcStatus SMCCall(std::uint32_t selector, const SmcRecord &input, SmcRecord &output,
                  SmcTransport &connection)
{
    return connection.call(selector, input, output);
}

SmcStatus SMCReadKey(std::string_view key, SmcValue &value, SmcTransport &connection)
{
    value = {};
    std::copy_n(key.begin(), std::min<std::size_t>(key.size(), 4), value.key.begin());
    SmcRecord input = request(SmcCommand::ReadInfo, smcKeyCode(key));
    SmcRecord output{};
    if (const SmcStatus status = SMCCall(kSmcSelector, input, output, connection))
        return status;
    value.size = output.valueSize;
    _ultostr(value.type, output.valueType);

    input.valueSize = value.size;
    input.command = static_cast<std::uint8_t>(SmcCommand::ReadBytes);
    output = {};
    if (const SmcStatus status = SMCCall(kSmcSelector, input, output, connection))
        return status;
    value.bytes = output.value;
    return kSmcSuccess;
}

SmcStatus SMCWriteKey(SmcTransport &connection, const SmcValue &value)
{
    SmcValue present;
    if (const SmcStatus status = SMCReadKey(smcText(value.key), present, connection))
        return status;
    if (present.size != value.size)
        return kSmcGeneralError;
    SmcRecord input = request(SmcCommand::WriteBytes, smcKeyCode(smcText(value.key)));
    input.valueSize = value.size;
    input.value = value.bytes;
    SmcRecord output{};
    return SMCCall(kSmcSelector, input, output, connection);
}

SmcStatus SMCReadKeyAt(std::uint32_t index, SmcCode &key, SmcTransport &connection)
{
    SmcRecord input = request(SmcCommand::ReadIndex, 0);
    input.argument = index;
    SmcRecord output{};
    const SmcStatus status = SMCCall(kSmcSelector, input, output, connection);
    _ultostr(key, output.keyCode);
    return status;
}

std::uint32_t SMCReadIndexCount(SmcTransport &connection)
{
    SmcValue value;
    SMCReadKey("#KEY", value, connection);
    return smcInteger(value);
}

double SMCGetTemperature(std::string_view key, SmcTransport &connection)
{
    SmcValue value;
    if (SMCReadKey(key, value, connection) != kSmcSuccess || value.size == 0 ||
        !value.isType("sp78"))
        return 0.0;
    return smcDegrees(value);
}

std::uint32_t SMCGetFanRpm(std::string_view key, SmcTransport &connection)
{
    SmcValue value;
    if (SMCReadKey(key, value, connection) != kSmcSuccess || value.size == 0 ||
        !value.isType("fpe2"))
        return kSmcNoRpm;
    // By way of a signed number, since a first byte of 0x80 or more decodes to less than 0.
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(smcFixedPoint(value)));
}

} // namespace pulsebar
