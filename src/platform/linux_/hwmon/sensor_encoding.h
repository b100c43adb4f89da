#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace pulsebar {

/// Four characters as a key or type code, the first in the most significant byte.
constexpr std::uint32_t smcCode(std::string_view text)
{
    std::uint32_t code = 0;
    for (std::size_t i = 0; i < 4; ++i)
        code = code << 8U | static_cast<unsigned char>(i < text.size() ? text[i] : ' ');
    return code;
}

/// The value bytes of a key.
struct EncodedValue
{
    std::uint32_t type = 0; ///< as smcCode() makes it
    std::uint32_t size = 0;
    std::array<std::uint8_t, 32> bytes{};
};

/// A temperature in thousandths of a degree Celsius as two bytes "sp78". Decoders take both bytes
/// as signed, so a byte beyond 127 in the second place takes its 256 from the first: what comes out
/// is the reading to the nearest 1/64 degree. Beyond -128.5 and 127.484375 degrees it is that end
/// of what can be said.
EncodedValue encodeTemperature(std::int64_t millidegrees);

/// A speed in revolutions per minute as "fpe2". In two bytes up to 8191; faster ones in three or
/// four, in digits of six bits, which is how decoders sum the bytes of this type. Exact up to
/// 33,554,431, which stands for whatever is faster; a negative speed is 0.
EncodedValue encodeFanSpeed(std::int64_t rpm);
/// What encodeFanSpeed() encoded; fractions are dropped. Absent for no bytes, more than four, and
/// a negative sum.
std::optional<std::int64_t> decodeFanSpeed(std::span<const std::uint8_t> bytes);

EncodedValue encodeCount(std::uint8_t count);   ///< "ui8 "
EncodedValue encodeTotal(std::uint32_t number); ///< "ui32", most significant byte first

} // namespace pulsebar
