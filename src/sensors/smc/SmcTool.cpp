#include "sensors/smc/SmcTool.h"

#include "sensors/smc/Smc.h"
#include "sensors/smc/SmcDecode.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace pulsebar {

namespace {

constexpr const char *ToolVersion = "0.01";
constexpr std::uint32_t KeysAtMost = 0x10000;
constexpr int HighestRpm = 0xFFFF / 4;

/// As far as its first zero.
std::string printable(const SmcCode &code)
{
    std::string text = code.data();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

bool isInteger(const SmcValue &value)
{
    return value.isType("ui8 ") || value.isType("ui16") || value.isType("ui32");
}

void printKey(const SmcCode &key, SmcTransport &connection, std::FILE *out)
{
    SmcValue value;
    SMCReadKey(smcText(key), value, connection);
    printVal(value, out);
}

SmcValue fanValue(int fan, const char *suffix, SmcTransport &connection)
{
    SmcValue value;
    SMCReadKey("F" + std::to_string(fan) + suffix, value, connection);
    return value;
}

bool isForced(int fan, SmcTransport &connection)
{
    SmcValue value;
    SMCReadKey("FS! ", value, connection);
    const unsigned mask = value.bytes[0] * 256U + value.bytes[1];
    return fan < 16 && (mask >> static_cast<unsigned>(fan) & 1U) != 0;
}

void printFan(int fan, SmcTransport &connection, std::FILE *out)
{
    const auto speed = [&](const char *suffix) {
        return static_cast<double>(smcFixedPoint(fanValue(fan, suffix, connection)));
    };
    std::fprintf(out, "\nFan #%d:\n", fan);
    std::fprintf(out, "    Actual speed : %.0f\n", speed("Ac"));
    std::fprintf(out, "    Minimum speed: %.0f\n", speed("Mn"));
    std::fprintf(out, "    Maximum speed: %.0f\n", speed("Mx"));
    std::fprintf(out, "    Safe speed   : %.0f\n", speed("Sf"));
    std::fprintf(out, "    Target speed : %.0f\n", speed("Tg"));
    std::fprintf(out, "    Mode         : %s\n", isForced(fan, connection) ? "forced" : "auto");
}

/// The bytes of a hexadecimal text; false when it is none.
bool parseHex(std::string_view text, SmcValue &value)
{
    if (text.size() % 2 != 0 || text.size() / 2 > value.bytes.size())
        return false;
    value.size = static_cast<std::uint32_t>(text.size() / 2);
    for (std::size_t i = 0; i < value.size; ++i) {
        const char *digits = text.data() + 2 * i;
        const auto [end, error] = std::from_chars(digits, digits + 2, value.bytes[i], 16);
        if (error != std::errc() || end != digits + 2)
            return false;
    }
    return true;
}

SmcValue named(std::string_view key)
{
    SmcValue value;
    std::copy_n(key.begin(), std::min<std::size_t>(key.size(), 4), value.key.begin());
    return value;
}

} // namespace

void printFPE2(const SmcValue &value, std::FILE *out)
{
    std::fprintf(out, "%.0f ", static_cast<double>(smcFixedPoint(value)));
}

void printUInt(const SmcValue &value, std::FILE *out)
{
    std::fprintf(out, "%u ", smcInteger(value));
}

void printBytesHex(const SmcValue &value, std::FILE *out)
{
    std::fputs("(bytes", out);
    for (int i = 0; i < value.byteCount(); ++i)
        std::fprintf(out, " %02x", value.bytes[static_cast<std::size_t>(i)]);
    std::fputs(")\n", out);
}

void printVal(const SmcValue &value, std::FILE *out)
{
    std::fprintf(out, "  %-4s  [%-4s]  ", printable(value.key).c_str(),
                 printable(value.type).c_str());
    if (value.size == 0) {
        std::fputs("no data\n", out);
        return;
    }
    if (isInteger(value))
        printUInt(value, out);
    else if (value.isType("fpe2"))
        printFPE2(value, out);
    printBytesHex(value, out);
}

void SMCPrintAll(SmcTransport &connection, std::FILE *out)
{
    const std::uint32_t count = SMCReadIndexCount(connection);
    for (std::uint32_t index = 0; index < count; ++index) {
        SmcCode key{};
        if (SMCReadKeyAt(index, key, connection) == kSmcSuccess)
            printKey(key, connection, out);
    }
}

void printKeysFrom(std::uint32_t index, SmcTransport &connection, std::FILE *out)
{
    for (; index < KeysAtMost; ++index) {
        SmcCode key{};
        if (SMCReadKeyAt(index, key, connection) != kSmcSuccess || key == SmcCode{})
            return;
        printKey(key, connection, out);
    }
}

SmcStatus SMCPrintFans(SmcTransport &connection, std::FILE *out)
{
    SmcValue number;
    if (SMCReadKey("FNum", number, connection) != kSmcSuccess)
        return kSmcGeneralError;
    const int fans = static_cast<int>(smcInteger(number));
    std::fprintf(out, "Total fans in system: %d\n", fans);
    for (int fan = 0; fan < fans; ++fan)
        printFan(fan, connection, out);
    return kSmcSuccess;
}

void usage(const char *program, std::FILE *out)
{
    std::fprintf(out, "Apple System Management Control (SMC) tool %s\n", ToolVersion);
    std::fputs("Usage:\n", out);
    std::fprintf(out, "%s [options]\n", program);
    std::fputs("    -f         : fan info decoded\n"
               "    -h         : help\n"
               "    -k <key>   : key to manipulate\n"
               "    -l         : list all keys and values\n"
               "    -r         : read the value of a key\n"
               "    -w <value> : write the specified value to a key\n"
               "    -v         : version\n"
               "\n",
               out);
}

SmcStatus SMCWriteSimple(std::string_view key, std::string_view hexText, SmcTransport &connection,
                         std::FILE *out)
{
    SmcValue value = named(key);
    const SmcStatus status =
        parseHex(hexText, value) ? SMCWriteKey(connection, value) : kSmcBadArgument;
    if (status != kSmcSuccess)
        std::fprintf(out, "Error: SMCWriteKey() = %08x\n", status);
    return status;
}

SmcStatus SMCSetFanRpm(std::string_view key, int rpm, SmcTransport &connection)
{
    if (rpm < 0 || rpm > HighestRpm)
        return kSmcBadArgument;
    SmcValue value = named(key);
    value.size = 2;
    value.bytes[0] = static_cast<std::uint8_t>(rpm * 4 / 256);
    value.bytes[1] = static_cast<std::uint8_t>(rpm * 4 % 256);
    return SMCWriteKey(connection, value);
}

} // namespace pulsebar
