#include "sensors/smc/Smc.h"

#include "support/FakeSmc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using Sent = std::array<std::uint8_t, 80>;

class Smc : public testing::Test
{
protected:
    void SetUp() override { SMCOpen(m_smc); }

    /// Bytes of a record that is all zeros but for these, by offset.
    static Sent bytes(std::initializer_list<std::pair<std::size_t, std::uint8_t>> set)
    {
        Sent all{};
        for (const auto &[offset, byte] : set)
            all.at(offset) = byte;
        return all;
    }

    FakeSmc m_smc;
    SmcValue m_value;
};

TEST_F(Smc, AKeyIsReadByItsInformationAndThenItsBytes)
{
    m_smc.set("TC0F", "sp78", {0x2F, 0x40});
    EXPECT_EQ(SMCReadKey("TC0F", m_value, m_smc), kSmcSuccess);
    EXPECT_EQ(m_value.size, 2U);
    EXPECT_STREQ(m_value.key.data(), "TC0F");
    EXPECT_STREQ(m_value.type.data(), "sp78");
    EXPECT_EQ(m_value.bytes[0], 0x2F);
    EXPECT_EQ(m_value.bytes[1], 0x40);
    EXPECT_EQ(m_value.bytes[2], 0);

    ASSERT_EQ(m_smc.calls.size(), 2U);
    EXPECT_THAT(m_smc.selectors, ElementsAre(2U, 2U));
    EXPECT_EQ(m_smc.sent(0), bytes({{0, 0x46}, {1, 0x30}, {2, 0x43}, {3, 0x54}, {42, 9}}));
    EXPECT_EQ(m_smc.sent(1), bytes({{0, 0x46}, {1, 0x30}, {2, 0x43}, {3, 0x54}, {28, 2}, {42, 5}}));
}

TEST_F(Smc, AMissingKeyIsReadWithSizeZero)
{
    m_value.size = 7;
    m_value.bytes.fill(0xAA);
    EXPECT_EQ(SMCReadKey("none", m_value, m_smc), kSmcSuccess);
    EXPECT_EQ(m_value.size, 0U);
    EXPECT_EQ(m_value.bytes, (std::array<std::uint8_t, 32>{}));
    EXPECT_EQ(SMCGetTemperature("none", m_smc), 0.0);
    EXPECT_EQ(SMCGetFanRpm("none", m_smc), 4294967295U);
}

TEST_F(Smc, AFailingCallEndsTheReadingAtOnce)
{
    m_smc.setDegrees("Bad1", 40).infoStatus = kSmcIoError;
    EXPECT_EQ(SMCReadKey("Bad1", m_value, m_smc), kSmcIoError);
    EXPECT_EQ(m_smc.calls.size(), 1U);

    m_smc.setDegrees("Bad2", 40).bytesStatus = kSmcNotPrivileged;
    EXPECT_EQ(SMCReadKey("Bad2", m_value, m_smc), kSmcNotPrivileged);
    EXPECT_EQ(m_value.size, 2U);
    EXPECT_EQ(m_value.bytes[0], 0);
    EXPECT_EQ(SMCGetTemperature("Bad2", m_smc), 0.0);
}

TEST_F(Smc, WhatAValueHeldBeforeIsGoneInAnyCase)
{
    m_value.size = 7;
    m_value.type = {'u', 'i', '8', ' ', '\0'};
    m_value.bytes.fill(0xAA);
    m_smc.setDegrees("Bad1", 40).infoStatus = kSmcIoError;
    SMCReadKey("Bad1", m_value, m_smc);
    EXPECT_EQ(m_value.size, 0U);
    EXPECT_STREQ(m_value.key.data(), "Bad1");
    EXPECT_STREQ(m_value.type.data(), "");
    EXPECT_EQ(m_value.bytes, (std::array<std::uint8_t, 32>{}));
}

TEST_F(Smc, KeysOfOtherLengthsAreCutOrFilledUp)
{
    m_smc.setRpm("F10A", 900);
    EXPECT_EQ(SMCGetFanRpm("F10Ac", m_smc), 900U);
    SMCReadKey("AB", m_value, m_smc);
    EXPECT_EQ(m_smc.calls.back().keyCode, 0x41420000U);
    EXPECT_STREQ(m_value.key.data(), "AB");
    SMCReadKey("ABCDEF", m_value, m_smc);
    EXPECT_STREQ(m_value.key.data(), "ABCD");
}

TEST_F(Smc, TemperaturesAreOfTheirTypeOnly)
{
    m_smc.set("T1ok", "sp78", {0x2F, 0x80});
    m_smc.set("T2fl", "flt ", {0x2F, 0x40});
    m_smc.set("T3no", "sp78", {});
    EXPECT_EQ(SMCGetTemperature("T1ok", m_smc), 46.5);
    EXPECT_EQ(SMCGetTemperature("T2fl", m_smc), 0.0);
    EXPECT_EQ(SMCGetTemperature("T3no", m_smc), 0.0);
    m_smc.find("T1ok")->size = 0;
    EXPECT_EQ(SMCGetTemperature("T1ok", m_smc), 0.0);
}

TEST_F(Smc, FanSpeedsAreOfTheirTypeOnly)
{
    m_smc.setRpm("F0Ac", 2000);
    m_smc.set("F1Ac", "ui16", {0x1F, 0x40});
    m_smc.set("F2Ac", "fpe2", {0x80, 0x04});
    EXPECT_EQ(SMCGetFanRpm("F0Ac", m_smc), 2000U);
    EXPECT_EQ(SMCGetFanRpm("F1Ac", m_smc), kSmcNoRpm);
    EXPECT_EQ(SMCGetFanRpm("F2Ac", m_smc), 0xFFFFE001U); // -8191, as 32 bits without a sign
    m_smc.find("F0Ac")->size = 0;
    EXPECT_EQ(SMCGetFanRpm("F0Ac", m_smc), kSmcNoRpm);
    m_smc.find("F2Ac")->infoStatus = kSmcIoError;
    EXPECT_EQ(SMCGetFanRpm("F2Ac", m_smc), kSmcNoRpm);
}

TEST_F(Smc, ASizeBeyondTheRecordDoesNoHarm)
{
    for (const std::uint32_t size : {33U, 0x80000000U, 0xFFFFFFFFU}) {
        m_smc.set("Huge", "fpe2", FakeSmc::Bytes(32, 0x04)).size = size;
        EXPECT_EQ(SMCReadKey("Huge", m_value, m_smc), kSmcSuccess);
        EXPECT_EQ(m_value.size, size);
        EXPECT_EQ(m_smc.calls.back().valueSize, size);
        EXPECT_NE(SMCGetFanRpm("Huge", m_smc), kSmcNoRpm);
    }
}

TEST_F(Smc, AKeyIsWrittenOnceItsSizeIsKnown)
{
    m_smc.setRpm("F0Mn", 1000);
    SMCReadKey("F0Mn", m_value, m_smc);
    m_value.bytes = {0x1F, 0x40};
    m_smc.calls.clear();
    EXPECT_EQ(SMCWriteKey(m_smc, m_value), kSmcSuccess);
    ASSERT_EQ(m_smc.calls.size(), 3U);
    EXPECT_EQ(m_smc.calls[0].command, 9);
    EXPECT_EQ(m_smc.calls[1].command, 5);
    EXPECT_EQ(m_smc.sent(2), bytes({{0, 0x6E},
                                    {1, 0x4D},
                                    {2, 0x30},
                                    {3, 0x46},
                                    {28, 2},
                                    {42, 6},
                                    {48, 0x1F},
                                    {49, 0x40}}));
    EXPECT_THAT(m_smc.find("F0Mn")->bytes, ElementsAre(0x1F, 0x40));
}

TEST_F(Smc, AllBytesOfTheValueAreSent)
{
    m_smc.set("Long", "ch8*", FakeSmc::Bytes(32, 0));
    SMCReadKey("Long", m_value, m_smc);
    m_value.bytes.fill(0x5A);
    EXPECT_EQ(SMCWriteKey(m_smc, m_value), kSmcSuccess);
    EXPECT_EQ(m_smc.sent(m_smc.calls.size() - 1).back(), 0x5A);
}

TEST_F(Smc, AnotherSizeIsNotWritten)
{
    m_smc.setRpm("F0Mn", 1000);
    SMCReadKey("F0Mn", m_value, m_smc);
    m_value.size = 1;
    m_smc.calls.clear();
    EXPECT_EQ(SMCWriteKey(m_smc, m_value), 0xE00002BCU);
    EXPECT_EQ(m_smc.calls.size(), 2U);
}

TEST_F(Smc, AWriteAnswersWhatFailed)
{
    m_smc.setRpm("F0Mn", 1000).writeStatus = kSmcNotWritable;
    SMCReadKey("F0Mn", m_value, m_smc);
    EXPECT_EQ(SMCWriteKey(m_smc, m_value), kSmcNotWritable);
    m_smc.find("F0Mn")->infoStatus = kSmcIoError;
    m_smc.calls.clear();
    EXPECT_EQ(SMCWriteKey(m_smc, m_value), kSmcIoError);
    EXPECT_EQ(m_smc.calls.size(), 1U);
}

TEST_F(Smc, TheNumberOfKeysIsOneByte)
{
    EXPECT_EQ(SMCReadIndexCount(m_smc), 0U);
    m_smc.set("#KEY", "ui32", {0, 0, 0, 17});
    EXPECT_EQ(SMCReadIndexCount(m_smc), 17U);
    m_smc.set("#KEY", "ui32", {0, 0, 1, 0x2C});
    EXPECT_EQ(SMCReadIndexCount(m_smc), 44U);
    m_smc.find("#KEY")->bytesStatus = kSmcIoError;
    EXPECT_EQ(SMCReadIndexCount(m_smc), 0U);
}

TEST_F(Smc, KeysAreEnumeratedByTheirIndex)
{
    m_smc.setDegrees("Tcp0", 40);
    m_smc.setDegrees("Tgp0", 50);
    SmcCode key{};
    EXPECT_EQ(SMCReadKeyAt(1, key, m_smc), kSmcSuccess);
    EXPECT_STREQ(key.data(), "Tgp0");
    EXPECT_EQ(m_smc.sent(0), bytes({{42, 8}, {44, 1}}));
    EXPECT_EQ(SMCReadKeyAt(0x01020304, key, m_smc), kSmcBadArgument);
    EXPECT_EQ(m_smc.sent(1), bytes({{42, 8}, {44, 4}, {45, 3}, {46, 2}, {47, 1}}));
}

TEST_F(Smc, WithoutAConnectionEverythingFails)
{
    m_smc.setDegrees("Tcp0", 40);
    SMCClose(m_smc);
    EXPECT_FALSE(m_smc.isOpen);
    EXPECT_EQ(SMCReadKey("Tcp0", m_value, m_smc), kSmcNotOpen);
    EXPECT_EQ(SMCGetTemperature("Tcp0", m_smc), 0.0);
    EXPECT_EQ(SMCGetFanRpm("Tcp0", m_smc), kSmcNoRpm);
}

TEST(SmcOpen, SaysWhyItFailed)
{
    const auto openingWith = [](SmcOpenResult result) {
        FakeSmc smc;
        smc.opening = result;
        std::vector<std::string> lines;
        const int status = SMCOpen(smc, [&](std::string_view line) { lines.emplace_back(line); });
        EXPECT_EQ(status, result.opening == SmcOpening::Opened ? 0 : 1);
        return lines;
    };
    EXPECT_THAT(openingWith({SmcOpening::Opened, 0}), ElementsAre());
    EXPECT_THAT(openingWith({SmcOpening::NoService, 0}), ElementsAre("Error: no SMC found"));
    EXPECT_THAT(openingWith({SmcOpening::MatchingFailed, 0x2BC}),
                ElementsAre("Error: IOServiceGetMatchingServices() = 000002bc"));
    EXPECT_THAT(openingWith({SmcOpening::Refused, kSmcNotPrivileged}),
                ElementsAre("Error: IOServiceOpen() = e00002c1"));
}

TEST(SmcOpen, WritesToStandardOutputByItself)
{
    FakeSmc smc;
    smc.opening = {SmcOpening::Refused, kSmcNotPrivileged};
    testing::internal::CaptureStdout();
    SMCOpen(smc);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error: IOServiceOpen() = e00002c1\n");
}

} // namespace
} // namespace pulsebar
