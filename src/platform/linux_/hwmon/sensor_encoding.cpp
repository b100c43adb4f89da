#include "platform/linux_/hwmon/sensor_encoding.h"

#include <algorithm>

namespace pulsebar {

namespace {

// In 1/64 degree: the ends of what two signed bytes can say.
constexpr std::int64_t coldest = -8224;
constexpr std::int64_t hottest = 8159;

constexpr unsigned digitBits = 6; // what is left of a byte beside two bits of fraction
constexpr std::int64_t largestFirstDigit = 127;
constexpr std::int64_t fastest = (largestFirstDigit << 18) + (1 << 18) - 1;

std::int64_t nearestSixtyFourth(std::int64_t millidegrees)
{
    const std::int64_t scaled = std::clamp<std::int64_t>(millidegrees, -1'000'000, 1'000'000) * 64;
    const std::int64_t half = scaled < 0 ? -500 : 500;
    return (scaled + half) / 1000; // never a tie: 64 n is 500 more than a multiple of 1000 for no n
}

std::uint32_t bytesFor(std::int64_t rpm)
{
    std::uint32_t size = 2;
    while (rpm >> (digitBits * (size - 1)) > largestFirstDigit)
        ++size;
    return size;
}

} // namespace

EncodedValue encodeTemperature(std::int64_t millidegrees)
{
    const auto raw = std::clamp(nearestSixtyFourth(millidegrees), coldest, hottest) * 4;
    const auto second = static_cast<std::int8_t>(raw & 0xFF);
    const auto first = (raw - second) / 256;
    EncodedValue value{smcCode("sp78"), 2, {}};
    value.bytes[0] = static_cast<std::uint8_t>(first & 0xFF);
    value.bytes[1] = static_cast<std::uint8_t>(second);
    return value;
}

EncodedValue encodeFanSpeed(std::int64_t rpm)
{
    auto rest = std::clamp<std::int64_t>(rpm, 0, fastest);
    EncodedValue value{smcCode("fpe2"), bytesFor(rest), {}};
    const auto last = value.size - 1;
    value.bytes[last] = static_cast<std::uint8_t>((rest & 0x3F) << 2);
    rest >>= digitBits;
    for (auto place = last - 1; place > 0; --place, rest >>= digitBits)
        value.bytes[place] = static_cast<std::uint8_t>(rest & 0x3F);
    value.bytes[0] = static_cast<std::uint8_t>(rest);
    return value;
}

std::optional<std::int64_t> decodeFanSpeed(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty() || bytes.size() > 4)
        return std::nullopt;
    std::int64_t rpm = bytes.back() >> 2U;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        const auto digit = static_cast<std::int8_t>(bytes[i]);
        rpm += digit * (std::int64_t{1} << (digitBits * (bytes.size() - 1 - i)));
    }
    if (rpm < 0)
        return std::nullopt;
    return rpm;
}

EncodedValue encodeCount(std::uint8_t count)
{
    EncodedValue value{smcCode("ui8 "), 1, {}};
    value.bytes[0] = count;
    return value;
}

EncodedValue encodeTotal(std::uint32_t number)
{
    EncodedValue value{smcCode("ui32"), 4, {}};
    for (std::size_t i = 0; i < 4; ++i)
        value.bytes[i] = static_cast<std::uint8_t>(number >> (8 * (3 - i)));
    return value;
}

} // namespace pulsebar
