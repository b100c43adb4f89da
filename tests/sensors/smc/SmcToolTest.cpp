#include "sensors/smc/SmcTool.h"

#include "sensors/smc/Smc.h"
#include "support/FakeSmc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What a routine writes.
std::string written(const std::function<void(std::FILE *)> &routine)
{
    char *text = nullptr;
    std::size_t size = 0;
    std::FILE *out = ::open_memstream(&text, &size);
    routine(out);
    std::fclose(out);
    std::string all(text, size);
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc)
    return all;
}

class SmcTool : public testing::Test
{
protected:
    void SetUp() override { SMCOpen(m_smc); }
    std::string printed(const std::string &key)
    {
        SmcValue value;
        SMCReadKey(key, value, m_smc);
        return written([&](std::FILE *out) { printVal(value, out); });
    }
    std::string all()
    {
        return written([&](std::FILE *out) { SMCPrintAll(m_smc, out); });
    }
    FakeSmc m_smc;
};

TEST_F(SmcTool, ALinePerValue)
{
    m_smc.set("FNum", "ui8 ", {2});
    m_smc.set("Some", "ui16", {0x01, 0x02});
    m_smc.set("#KEY", "ui32", {0, 0, 0, 0xFF});
    m_smc.set("F0Ac", "fpe2", {0x1F, 0x40});
    m_smc.set("Tcp0", "sp78", {0x2F, 0x80});
    EXPECT_EQ(printed("FNum"), "  FNum  [ui8 ]  2 (bytes 02)\n");
    EXPECT_EQ(printed("Some"), "  Some  [ui16]  2 (bytes 01 02)\n");
    EXPECT_EQ(printed("#KEY"), "  #KEY  [ui32]  255 (bytes 00 00 00 ff)\n");
    EXPECT_EQ(printed("F0Ac"), "  F0Ac  [fpe2]  2000 (bytes 1f 40)\n");
    EXPECT_EQ(printed("Tcp0"), "  Tcp0  [sp78]  (bytes 2f 80)\n");
    EXPECT_EQ(printed("none"), "  none  [    ]  no data\n");
    EXPECT_EQ(printed("x"), "  x     [    ]  no data\n");
}

TEST_F(SmcTool, ThePiecesOfALine)
{
    SmcValue value;
    value.size = 2;
    value.bytes = {0x1F, 0x40};
    EXPECT_EQ(written([&](std::FILE *out) { printFPE2(value, out); }), "2000 ");
    EXPECT_EQ(written([&](std::FILE *out) { printUInt(value, out); }), "64 ");
    EXPECT_EQ(written([&](std::FILE *out) { printBytesHex(value, out); }), "(bytes 1f 40)\n");
}

TEST_F(SmcTool, AnAnswerCannotSpeakToTheTerminal)
{
    m_smc.set("\x1B[2J", "\x1B]0;", {1});
    m_smc.set(std::string("A\0BC", 4), "\x9B\n\r\x7F", {1});
    EXPECT_EQ(printed("\x1B[2J"), "  ?[2J  [?]0;]  (bytes 01)\n");
    EXPECT_EQ(printed(std::string("A\0BC", 4)), "  A     [????]  (bytes 01)\n");
}

TEST_F(SmcTool, ASizeBeyondTheRecordPrintsTheRecord)
{
    m_smc.set("Huge", "ui8 ", FakeSmc::Bytes(32, 0x11)).size = 0xFFFFFFFF;
    const std::string line = printed("Huge");
    EXPECT_EQ(line.size(), std::string("  Huge  [ui8 ]  17 (bytes)\n").size() + 32 * 3);
    EXPECT_THAT(line, HasSubstr("  Huge  [ui8 ]  17 (bytes 11 11"));
}

TEST_F(SmcTool, AllKeysAreListedByIndex)
{
    m_smc.set("#KEY", "ui32", {0, 0, 0, 3});
    m_smc.setDegrees("Tcp0", 0x20);
    m_smc.setRpm("F0Ac", 1200);
    m_smc.setDegrees("More", 30);
    EXPECT_EQ(all(), "  #KEY  [ui32]  3 (bytes 00 00 00 03)\n"
                     "  Tcp0  [sp78]  (bytes 20 00)\n"
                     "  F0Ac  [fpe2]  1200 (bytes 12 c0)\n");
}

TEST_F(SmcTool, AnIndexThatFailsIsLeftOut)
{
    m_smc.set("#KEY", "ui32", {0, 0, 0, 9});
    EXPECT_EQ(all(), "  #KEY  [ui32]  9 (bytes 00 00 00 09)\n");
}

TEST_F(SmcTool, TheListGoesOnWhereTheCountEnds)
{
    m_smc.set("#KEY", "ui32", {0, 0, 1, 1});
    for (int i = 0; i < 256; ++i) {
        const std::string name = "t" + std::to_string(1000 + i).substr(1);
        m_smc.setDegrees(name, 40);
    }
    EXPECT_EQ(all(), "  #KEY  [ui32]  1 (bytes 00 00 01 01)\n");
    const std::string rest =
        written([&](std::FILE *out) { printKeysFrom(SMCReadIndexCount(m_smc), m_smc, out); });
    EXPECT_EQ(std::count(rest.begin(), rest.end(), '\n'), 256);
    EXPECT_THAT(rest, HasSubstr("  t000  [sp78]  (bytes 28 00)\n"));
    EXPECT_THAT(rest, HasSubstr("  t255  [sp78]  (bytes 28 00)\n"));
}

TEST_F(SmcTool, AListWithoutEndIsEnded)
{
    struct Endless : FakeSmc
    {
        SmcStatus call(std::uint32_t, const SmcRecord &, SmcRecord &output) override
        {
            output = {};
            output.keyCode = 0x41414141;
            return kSmcSuccess;
        }
    } endless;
    const std::string text = written([&](std::FILE *out) { printKeysFrom(0xFFF0, endless, out); });
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 16);
}

TEST_F(SmcTool, AKeyOfZerosEndsTheList)
{
    struct Zeros : FakeSmc
    {
        SmcStatus call(std::uint32_t, const SmcRecord &, SmcRecord &output) override
        {
            output = {};
            return kSmcSuccess;
        }
    } zeros;
    EXPECT_EQ(written([&](std::FILE *out) { printKeysFrom(0, zeros, out); }), "");
}

TEST_F(SmcTool, FansWithTheirSpeeds)
{
    m_smc.setFans(2);
    m_smc.setRpm("F0Ac", 2000);
    m_smc.setRpm("F0Mn", 1000);
    m_smc.setRpm("F0Mx", 6000);
    m_smc.setRpm("F0Sf", 900);
    m_smc.setRpm("F0Tg", 2100);
    m_smc.setRpm("F1Ac", 1500);
    m_smc.set("FS! ", "ui16", {0x00, 0x02});
    EXPECT_EQ(written([&](std::FILE *out) { EXPECT_EQ(SMCPrintFans(m_smc, out), kSmcSuccess); }),
              "Total fans in system: 2\n"
              "\nFan #0:\n"
              "    Actual speed : 2000\n"
              "    Minimum speed: 1000\n"
              "    Maximum speed: 6000\n"
              "    Safe speed   : 900\n"
              "    Target speed : 2100\n"
              "    Mode         : auto\n"
              "\nFan #1:\n"
              "    Actual speed : 1500\n"
              "    Minimum speed: 0\n"
              "    Maximum speed: 0\n"
              "    Safe speed   : 0\n"
              "    Target speed : 0\n"
              "    Mode         : forced\n");
}

TEST_F(SmcTool, TheModeIsABitOfSixteen)
{
    m_smc.setFans(40);
    m_smc.set("FS! ", "ui16", {0x81, 0x80});
    const std::string text = written([&](std::FILE *out) { SMCPrintFans(m_smc, out); });
    std::string modes;
    for (std::size_t at = text.find("Mode"); at != std::string::npos;
         at = text.find("Mode", at + 1))
        modes += text.substr(at).find("forced") == 15 ? 'f' : 'a';
    EXPECT_EQ(modes, "aaaaaaaffaaaaaaf" + std::string(24, 'a'));
}

TEST_F(SmcTool, WithoutANumberOfFansThereAreNone)
{
    m_smc.setFans(2).bytesStatus = kSmcNotFound;
    EXPECT_EQ(written([&](std::FILE *out) { EXPECT_EQ(SMCPrintFans(m_smc, out), 0xE00002BCU); }),
              "");
}

TEST_F(SmcTool, Usage)
{
    EXPECT_EQ(written([](std::FILE *out) { usage("smc%s", out); }),
              "Apple System Management Control (SMC) tool 0.01\n"
              "Usage:\n"
              "smc%s [options]\n"
              "    -f         : fan info decoded\n"
              "    -h         : help\n"
              "    -k <key>   : key to manipulate\n"
              "    -l         : list all keys and values\n"
              "    -r         : read the value of a key\n"
              "    -w <value> : write the specified value to a key\n"
              "    -v         : version\n"
              "\n");
}

TEST_F(SmcTool, HexadecimalTextIsWritten)
{
    m_smc.setRpm("F0Mn", 0);
    const std::string said = written([&](std::FILE *out) {
        EXPECT_EQ(SMCWriteSimple("F0Mn", "1F4a", m_smc, out), kSmcSuccess);
    });
    EXPECT_EQ(said, "");
    EXPECT_THAT(m_smc.find("F0Mn")->bytes, ElementsAre(0x1F, 0x4A));
    m_smc.set("Long", "ch8*", FakeSmc::Bytes(32, 0));
    EXPECT_EQ(SMCWriteSimple("Long", std::string(64, '7'), m_smc), kSmcSuccess);
    EXPECT_EQ(m_smc.find("Long")->bytes, FakeSmc::Bytes(32, 0x77));
}

TEST_F(SmcTool, OtherTextIsRefusedUnasked)
{
    m_smc.setRpm("F0Mn", 0);
    for (const std::string text : {"1", "1F4", "1g", "-1ff", "0x1f", " 1 f", "1F40 ", "+10f"}) {
        const std::string said = written([&](std::FILE *out) {
            EXPECT_EQ(SMCWriteSimple("F0Mn", text, m_smc, out), kSmcBadArgument) << text;
        });
        EXPECT_EQ(said, "Error: SMCWriteKey() = e00002c2\n");
    }
    EXPECT_EQ(SMCWriteSimple("F0Mn", std::string(66, '0'), m_smc), kSmcBadArgument);
    EXPECT_TRUE(m_smc.calls.empty());
}

TEST_F(SmcTool, AFailedWriteIsSaid)
{
    m_smc.setRpm("F0Mn", 1000);
    const std::string said = written([&](std::FILE *out) {
        EXPECT_EQ(SMCWriteSimple("F0Mn", "1f", m_smc, out), kSmcGeneralError);
    });
    EXPECT_EQ(said, "Error: SMCWriteKey() = e00002bc\n");
}

TEST_F(SmcTool, SpeedsAreWrittenAsFixedPoint)
{
    m_smc.setRpm("F0Mn", 0);
    EXPECT_EQ(SMCSetFanRpm("F0Mn", 2000, m_smc), kSmcSuccess);
    EXPECT_THAT(m_smc.find("F0Mn")->bytes, ElementsAre(0x1F, 0x40));
    EXPECT_EQ(SMCSetFanRpm("F0Mn", 16383, m_smc), kSmcSuccess);
    EXPECT_THAT(m_smc.find("F0Mn")->bytes, ElementsAre(0xFF, 0xFC));
    EXPECT_EQ(SMCSetFanRpm("F0Mn", 16384, m_smc), kSmcBadArgument);
    EXPECT_EQ(SMCSetFanRpm("F0Mn", -1, m_smc), kSmcBadArgument);
    EXPECT_THAT(m_smc.find("F0Mn")->bytes, ElementsAre(0xFF, 0xFC));
}

} // namespace
} // namespace pulsebar
