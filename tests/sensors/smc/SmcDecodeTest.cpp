#include "sensors/smc/SmcDecode.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace pulsebar {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t integer(const Bytes &bytes, int base)
{
    return _strtoul(bytes.data(), static_cast<int>(bytes.size()), base);
}

float fixedPoint(const Bytes &bytes, int fractionBits = 2)
{
    return _strtof(bytes.data(), static_cast<int>(bytes.size()), fractionBits);
}

SmcValue valueOf(const Bytes &bytes)
{
    SmcValue value;
    value.size = static_cast<std::uint32_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), value.bytes.begin());
    return value;
}

TEST(SmcDecode, Base16SumsAllBytes)
{
    EXPECT_EQ(integer({0x01, 0x02}, 16), 258U);
    EXPECT_EQ(integer({0x54, 0x43, 0x30, 0x46}, 16), 0x54433046U);
    EXPECT_EQ(integer({0x7F}, 16), 127U);
}

TEST(SmcDecode, Base16ReadsEachByteAsSigned)
{
    EXPECT_EQ(integer({0xFF}, 16), 0xFFFFFFFFU);
    EXPECT_EQ(integer({0x01, 0x80}, 16), 0x80U); // 256 - 128
    EXPECT_EQ(integer({0x80, 0x00, 0x00, 0x00}, 16), 0x80000000U);
}

TEST(SmcDecode, OtherBasesKeepTheLastByteAlone)
{
    EXPECT_EQ(integer({0x01, 0x02}, 10), 2U);
    EXPECT_EQ(integer({0x00, 0x00, 0x01, 0x2C}, 10), 44U);
    EXPECT_EQ(integer({0xFF}, 10), 255U);
    EXPECT_EQ(integer({0x80, 0x80}, 8), 128U);
}

TEST(SmcDecode, NoBytesAreZero)
{
    const Bytes bytes{1, 2, 3};
    for (const int size : {0, -1, -2147483647}) {
        EXPECT_EQ(_strtoul(bytes.data(), size, 16), 0U);
        EXPECT_EQ(_strtof(bytes.data(), size, 2), 0.0F);
    }
}

TEST(SmcDecode, WhatIsShiftedOutIsLost)
{
    EXPECT_EQ(integer({0xFF, 0x01, 0x02, 0x03, 0x04}, 16), 0x01020304U);
    EXPECT_EQ(integer(Bytes(32, 0xFF), 10), 255U);
    EXPECT_EQ(fixedPoint({0x01, 0, 0, 0, 0, 0}), 1073741824.0F);
    EXPECT_EQ(fixedPoint({0x04, 0, 0, 0, 0, 0}), 0.0F);
    EXPECT_EQ(fixedPoint(Bytes(32, 0)), 0.0F);
    Bytes wide(32, 0);
    wide.front() = 0x7F;
    EXPECT_EQ(fixedPoint(wide), 0.0F);
}

TEST(SmcDecode, FixedPointDropsTheFraction)
{
    EXPECT_EQ(fixedPoint({0x1F, 0x40}), 2000.0F);
    EXPECT_EQ(fixedPoint({0x1F, 0x43}), 2000.0F);
    EXPECT_EQ(fixedPoint({0x1F, 0x44}), 2001.0F);
    EXPECT_EQ(fixedPoint({0xFF}), 63.0F); // the last byte is unsigned
    EXPECT_EQ(fixedPoint({0x12, 0x34}, 0), 0x1234);
    EXPECT_EQ(fixedPoint({0x12, 0x34}, 8), 0x12);
}

TEST(SmcDecode, FixedPointReadsAllButTheLastByteAsSigned)
{
    EXPECT_EQ(fixedPoint({0x80, 0x00}), -8192.0F);
    EXPECT_EQ(fixedPoint({0x7F, 0xFF}), 127.0F * 64 + 63);
    EXPECT_EQ(fixedPoint({0x02, 0x80, 0x04}), 2.0F * 4096 - 128.0F * 64 + 1);
    EXPECT_EQ(fixedPoint({0x01, 0x00, 0x00, 0x00}), 262144.0F);
}

TEST(SmcDecode, FractionBitsBeyondAByteCountAsThoseOfAByte)
{
    EXPECT_EQ(fixedPoint({0x12, 0x34}, 9), fixedPoint({0x12, 0x34}, 8));
    EXPECT_EQ(fixedPoint({0x12, 0x34}, -1), fixedPoint({0x12, 0x34}, 0));
}

TEST(SmcDecode, CodesAndTextsTurnIntoEachOther)
{
    EXPECT_EQ(smcKeyCode("TC0F"), 0x54433046U);
    EXPECT_EQ(smcKeyCode("F10Ac"), smcKeyCode("F10A"));
    EXPECT_EQ(smcKeyCode("AB"), 0x41420000U);
    EXPECT_EQ(smcKeyCode(""), 0U);
    EXPECT_EQ(smcKeyCode("\xFF\x01\x01\x01"), 0xFF010101U);
    EXPECT_EQ(smcKeyCode("\x01\xFF\x01\x01"), 0x00FF0101U); // a signed byte borrows from the first
    SmcCode text{'x', 'x', 'x', 'x', 'x'};
    _ultostr(text, 0x75693820);
    EXPECT_STREQ(text.data(), "ui8 ");
    EXPECT_EQ(text.back(), '\0');
}

TEST(SmcDecode, DegreesReadBothBytesAsSigned)
{
    EXPECT_EQ(smcDegrees(valueOf({0x2F, 0x40})), 47.25);
    EXPECT_EQ(smcDegrees(valueOf({0x2F, 0x80})), 46.5);
    EXPECT_EQ(smcDegrees(valueOf({0x2F, 0x43})), 47.25); // a step has four raw ones
    EXPECT_EQ(smcDegrees(valueOf({0xFF, 0x00})), -1.0);
    EXPECT_EQ(smcDegrees(valueOf({0x00, 0xFF})), -0.015625); // rounds downward
    EXPECT_EQ(smcDegrees(valueOf({0x7F, 0x7F})), 127.484375);
}

TEST(SmcDecode, ASizeBeyondTheBytesMeansAllOfThem)
{
    SmcValue value = valueOf(Bytes(32, 0x21));
    for (const std::uint32_t size : {33U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        value.size = size;
        EXPECT_EQ(value.byteCount(), 32);
        EXPECT_EQ(smcInteger(value), 0x21U);
    }
    value.size = 0;
    EXPECT_EQ(smcInteger(value), 0U);
    EXPECT_EQ(smcFixedPoint(value), 0.0F);
}

} // namespace
} // namespace pulsebar
