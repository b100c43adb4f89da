#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pulsebar {

/// The result of a call, in IOKit's numbers; 0 is success.
using SmcStatus = std::uint32_t;

inline constexpr SmcStatus kSmcSuccess = 0;
inline constexpr SmcStatus kSmcGeneralError = 0xE00002BC;
inline constexpr SmcStatus kSmcNoDevice = 0xE00002C0;
inline constexpr SmcStatus kSmcNotPrivileged = 0xE00002C1;
inline constexpr SmcStatus kSmcBadArgument = 0xE00002C2;
inline constexpr SmcStatus kSmcUnsupported = 0xE00002C7;
inline constexpr SmcStatus kSmcIoError = 0xE00002CA;
inline constexpr SmcStatus kSmcNotOpen = 0xE00002CD;
inline constexpr SmcStatus kSmcNotWritable = 0xE00002CF;
inline constexpr SmcStatus kSmcNotFound = 0xE00002F0;

/// The method of the connection that every call goes to.
inline constexpr std::uint32_t kSmcSelector = 2;

/// What a call asks for, in the record's command byte.
enum class SmcCommand : std::uint8_t {
    ReadBytes = 5,
    WriteBytes = 6,
    ReadIndex = 8, ///< the key code at the index given in the argument
    ReadInfo = 9,  ///< the size and the type of a key's value
};

/// The structure exchanged with the System Management Controller, in both directions. Numbers of
/// several bytes are in the host's order, but for the value, whose bytes are the controller's:
/// most significant first.
struct SmcRecord
{
    /// Four characters, the first in the most significant byte ("TC0F" is 0x54433046).
    std::uint32_t keyCode;
    std::uint8_t versionMajor;
    std::uint8_t versionMinor;
    std::uint8_t versionBuild;
    std::uint8_t versionReserved;
    std::uint16_t versionRelease;
    std::array<std::uint8_t, 2> padding1;
    std::uint16_t powerLimitVersion;
    std::uint16_t powerLimitLength;
    std::uint32_t processorLimit;
    std::uint32_t graphicsLimit;
    std::uint32_t memoryLimit;
    std::uint32_t valueSize; ///< number of the value's bytes that mean something; 0 = no such key
    std::uint32_t valueType; ///< four characters, as in keyCode
    std::uint8_t valueAttributes;
    std::array<std::uint8_t, 3> padding2;
    std::uint8_t result;
    std::uint8_t status;
    std::uint8_t command; ///< a SmcCommand
    std::uint8_t padding3;
    std::uint32_t argument; ///< the index for SmcCommand::ReadIndex
    std::array<std::uint8_t, 32> value;
};

static_assert(sizeof(SmcRecord) == 80);
static_assert(offsetof(SmcRecord, powerLimitVersion) == 12);
static_assert(offsetof(SmcRecord, valueSize) == 28);
static_assert(offsetof(SmcRecord, result) == 40);
static_assert(offsetof(SmcRecord, argument) == 44);
static_assert(offsetof(SmcRecord, value) == 48);

/// How far an attempt to open the controller came.
enum class SmcOpening {
    Opened,
    MatchingFailed, ///< the system could not say whether there is a controller
    NoService,      ///< there is none
    Refused,        ///< there is one, and it could not be opened
};

struct SmcOpenResult
{
    SmcOpening opening = SmcOpening::NoService;
    SmcStatus status = kSmcSuccess; ///< of MatchingFailed and Refused
};

/// The way to the System Management Controller, or to what stands in for one: the record is its
/// only currency. One connection at a time; calls come from one thread.
class SmcTransport
{
public:
    virtual ~SmcTransport() = default;

    /// Opens the connection. What the machine has is looked at anew, as far as that is cheap.
    /// Between open() and close() a key's value is measured at most once.
    virtual SmcOpenResult open() = 0;

    /// One call. A key that does not exist is answered with success and a value size of 0.
    /// @return kSmcNotOpen without a connection
    virtual SmcStatus call(std::uint32_t selector, const SmcRecord &input, SmcRecord &output) = 0;

    virtual void close() = 0;
};

} // namespace pulsebar
