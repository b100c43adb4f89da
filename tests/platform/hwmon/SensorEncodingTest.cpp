#include "platform/linux_/hwmon/sensor_encoding.h"
#include "sensors/smc/SmcDecode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace pulsebar {
namespace {

/// What the controller's client makes of the bytes.
double decodedDegrees(const EncodedValue &encoded)
{
    SmcValue value;
    std::copy(encoded.bytes.begin(), encoded.bytes.end(), value.bytes.begin());
    value.size = encoded.size;
    return smcDegrees(value);
}

float decodedRpm(const EncodedValue &encoded)
{
    return _strtof(encoded.bytes.data(), static_cast<int>(encoded.size), 2);
}

TEST(EncodeTemperature, EverySixtyFourthOfADegreeComesBackAsItIs)
{
    for (int n = -40 * 64; n <= 127 * 64; ++n) {
        const double degrees = n / 64.0;
        ASSERT_EQ(decodedDegrees(encodeTemperature(std::llround(degrees * 1000))), degrees);
    }
}

TEST(EncodeTemperature, EveryThousandthComesBackAsTheNearestSixtyFourth)
{
    for (int millidegrees = -40'000; millidegrees <= 127'000; ++millidegrees) {
        const double nearest = std::round(millidegrees * 64 / 1000.0) / 64;
        ASSERT_EQ(decodedDegrees(encodeTemperature(millidegrees)), nearest) << millidegrees;
    }
}

TEST(EncodeTemperature, WhatIsBeyondIsTheEndOfWhatCanBeSaid)
{
    EXPECT_EQ(decodedDegrees(encodeTemperature(127'400)), 127.40625);
    EXPECT_EQ(decodedDegrees(encodeTemperature(127'500)), 127.484375);
    EXPECT_EQ(decodedDegrees(encodeTemperature(150'000)), 127.484375);
    EXPECT_EQ(decodedDegrees(encodeTemperature(INT64_MAX)), 127.484375);
    EXPECT_EQ(decodedDegrees(encodeTemperature(-128'000)), -128.0);
    EXPECT_EQ(decodedDegrees(encodeTemperature(-128'500)), -128.5);
    EXPECT_EQ(decodedDegrees(encodeTemperature(-273'150)), -128.5);
    EXPECT_EQ(decodedDegrees(encodeTemperature(INT64_MIN)), -128.5);
}

TEST(EncodeTemperature, IsTwoBytesOfItsType)
{
    const auto value = encodeTemperature(47'250);
    EXPECT_EQ(value.type, 0x73703738U); // "sp78"
    EXPECT_EQ(value.size, 2U);
    EXPECT_EQ(value.bytes[0], 0x2F);
    EXPECT_EQ(value.bytes[1], 0x40);
}

TEST(EncodeFanSpeed, EverySpeedOfAFanComesBackAsItIs)
{
    for (int rpm = 0; rpm <= 70'000; ++rpm)
        ASSERT_EQ(decodedRpm(encodeFanSpeed(rpm)), static_cast<float>(rpm));
    for (int rpm = 70'001; rpm < 10'000'000; rpm += 997)
        ASSERT_EQ(decodedRpm(encodeFanSpeed(rpm)), static_cast<float>(rpm));
    for (const int rpm : {524'287, 524'288, 10'000'000, 16'777'216})
        EXPECT_EQ(decodedRpm(encodeFanSpeed(rpm)), static_cast<float>(rpm));
}

TEST(EncodeFanSpeed, TakesAsManyBytesAsItNeeds)
{
    EXPECT_EQ(encodeFanSpeed(0).size, 2U);
    EXPECT_EQ(encodeFanSpeed(8191).size, 2U);
    EXPECT_EQ(encodeFanSpeed(8192).size, 3U);
    EXPECT_EQ(encodeFanSpeed(524'287).size, 3U);
    EXPECT_EQ(encodeFanSpeed(524'288).size, 4U);
    const auto usual = encodeFanSpeed(2000);
    EXPECT_EQ(usual.type, 0x66706532U); // "fpe2"
    EXPECT_EQ(usual.bytes[0], 0x1F);
    EXPECT_EQ(usual.bytes[1], 0x40);
}

TEST(EncodeFanSpeed, WhatIsBeyondIsTheEndOfWhatCanBeSaid)
{
    EXPECT_EQ(decodedRpm(encodeFanSpeed(-1)), 0.0F);
    EXPECT_EQ(decodedRpm(encodeFanSpeed(INT64_MIN)), 0.0F);
    EXPECT_EQ(decodeFanSpeed({encodeFanSpeed(INT64_MAX).bytes.data(), 4}), 33'554'431);
}

TEST(DecodeFanSpeed, TakesBackWhatWasEncoded)
{
    for (const int rpm : {0, 1, 63, 64, 1234, 8191, 8192, 12'345, 524'288, 33'554'431}) {
        const auto value = encodeFanSpeed(rpm);
        EXPECT_EQ(decodeFanSpeed({value.bytes.data(), value.size}), rpm);
    }
}

TEST(DecodeFanSpeed, RefusesWhatIsNoSpeed)
{
    const std::array<std::uint8_t, 5> bytes{0x80, 0, 0, 0, 0};
    EXPECT_FALSE(decodeFanSpeed({}));
    EXPECT_FALSE(decodeFanSpeed({bytes.data(), 2}));
    EXPECT_FALSE(decodeFanSpeed({bytes.data() + 1, 0}));
    EXPECT_FALSE(decodeFanSpeed(bytes));
    EXPECT_EQ(decodeFanSpeed({bytes.data() + 1, 4}), 0);
}

TEST(EncodeCounts, AreMostSignificantByteFirst)
{
    EXPECT_EQ(encodeCount(6).type, 0x75693820U); // "ui8 "
    EXPECT_EQ(encodeCount(6).size, 1U);
    EXPECT_EQ(encodeCount(6).bytes[0], 6);
    const auto total = encodeTotal(0x01020304);
    EXPECT_EQ(total.type, 0x75693332U); // "ui32"
    EXPECT_EQ(total.size, 4U);
    EXPECT_EQ(total.bytes[0], 1);
    EXPECT_EQ(total.bytes[3], 4);
}

} // namespace
} // namespace pulsebar
