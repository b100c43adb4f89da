#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pulsebar {

/// Four characters and a terminating zero: a key or a type. A character may be any byte.
using SmcCode = std::array<char, 5>;

/// A code without its terminating zero.
inline std::string_view smcText(const SmcCode &code)
{
    return {code.data(), code.size() - 1};
}

/// What a key holds.
struct SmcValue
{
    SmcCode key{};
    std::uint32_t size = 0; ///< as the controller says: 0 = no such key; may exceed the bytes
    SmcCode type{};         ///< "ui8 ", "ui16", "ui32", "fpe2", "sp78" or another
    std::array<std::uint8_t, 32> bytes{};

    /// How many of the bytes mean something: never more than there are.
    int byteCount() const { return static_cast<int>(std::min<std::size_t>(size, bytes.size())); }
    bool isType(std::string_view code) const { return smcText(type) == code; }
};

} // namespace pulsebar
