#include "sensors/smc/SmcDecode.h"

#include <algorithm>
#include <array>

namespace pulsebar {

namespace {

constexpr int UnsignedBase = 16;
constexpr int FixedPointBits = 2;
constexpr double DegreesPerStep = 0.015625;

std::int32_t signedByte(std::uint8_t byte)
{
    return static_cast<std::int8_t>(byte);
}

/// Wide shifts leave nothing; the language leaves them undefined.
std::uint32_t shiftedLeft(std::uint8_t byte, int bits)
{
    return bits < 32 ? static_cast<std::uint32_t>(signedByte(byte)) << static_cast<unsigned>(bits)
                     : 0;
}

} // namespace

std::uint32_t _strtoul(const std::uint8_t *bytes, int size, int base)
{
    std::uint32_t total = 0;
    for (int i = 0; i < size; ++i) {
        const std::uint32_t term = shiftedLeft(bytes[i], 8 * (size - 1 - i));
        total += base == UnsignedBase ? term : term & 0xFFU;
    }
    return total;
}

float _strtof(const std::uint8_t *bytes, int size, int fractionBits)
{
    const int fraction = std::clamp(fractionBits, 0, 8);
    float total = 0.0F;
    for (int i = 0; i + 1 < size; ++i) {
        const std::uint32_t term = shiftedLeft(bytes[i], (8 - fraction) * (size - 1 - i));
        total += static_cast<float>(static_cast<std::int32_t>(term));
    }
    if (size > 0)
        total += static_cast<float>(bytes[size - 1] >> static_cast<unsigned>(fraction));
    return total;
}

void _ultostr(SmcCode &text, std::uint32_t value)
{
    text = {static_cast<char>(value >> 24U), static_cast<char>(value >> 16U),
            static_cast<char>(value >> 8U), static_cast<char>(value), '\0'};
}

std::uint32_t smcKeyCode(std::string_view text)
{
    std::array<std::uint8_t, 4> bytes{};
    std::copy_n(text.begin(), std::min(text.size(), bytes.size()), bytes.begin());
    return _strtoul(bytes.data(), static_cast<int>(bytes.size()), UnsignedBase);
}

std::uint32_t smcInteger(const SmcValue &value)
{
    return _strtoul(value.bytes.data(), value.byteCount(), 10);
}

float smcFixedPoint(const SmcValue &value)
{
    return _strtof(value.bytes.data(), value.byteCount(), FixedPointBits);
}

double smcDegrees(const SmcValue &value)
{
    const int raw = signedByte(value.bytes[0]) * 256 + signedByte(value.bytes[1]);
    return (raw >> 2) * DegreesPerStep;
}

} // namespace pulsebar
