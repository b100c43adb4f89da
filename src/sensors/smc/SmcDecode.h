#pragma once

#include "sensors/smc/SmcValue.h"

#include <cstdint>

namespace pulsebar {

// The decoders narrow on purpose: what the controller's other clients show is what they give.
// Sums and shifts are of 32 bits; what is shifted out is lost. `bytes` holds at least `size` bytes;
// a size below 1 gives 0.

/// The bytes as an integer, most significant first, each read as signed. With base 16 all bytes
/// count (keys and types are packed so); with any other base only the low 8 bits of each shifted
/// byte do, so that a value of several bytes gives its last one alone.
std::uint32_t _strtoul(const std::uint8_t *bytes, int size, int base);

/// A fixed-point number, its fraction dropped: 0x1F 0x40 with 2 bits is 2000. All bytes but the
/// last are read as signed.
/// @param fractionBits 0 to 8
float _strtof(const std::uint8_t *bytes, int size, int fractionBits);

/// The four bytes of a number as characters, most significant first, and a terminating zero.
void _ultostr(SmcCode &text, std::uint32_t value);

/// The first four characters of a text as a number; a shorter text is filled up with zeros.
std::uint32_t smcKeyCode(std::string_view text);

/// An integer value ("ui8 ", "ui16", "ui32") by _strtoul with base 10.
std::uint32_t smcInteger(const SmcValue &value);

/// A whole number by _strtof with the two fraction bits of "fpe2", whatever the value's type.
float smcFixedPoint(const SmcValue &value);

/// Degrees from the first two bytes, both read as signed: 0x2F40 is 47.25, 0x2F80 is 46.5.
double smcDegrees(const SmcValue &value);

} // namespace pulsebar
