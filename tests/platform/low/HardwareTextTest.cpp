#include "platform/linux_/low/hardware_text.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(HardwareText, SizesOfCaches)
{
    EXPECT_EQ(parseCacheSize("48K\n"), 49152);
    EXPECT_EQ(parseCacheSize("2M"), 2 << 20);
    EXPECT_EQ(parseCacheSize("1G"), 1LL << 30);
    EXPECT_EQ(parseCacheSize("512\n"), 512);
    for (const char *text :
         {"", "K", "-1K", "48KB", "48 K", "99999999999999999999K", "18446744073709551615K"})
        EXPECT_FALSE(parseCacheSize(text)) << text;
}

TEST(HardwareText, NumbersStandAlone)
{
    EXPECT_EQ(parseSysNumber(" 64\n"), 64);
    for (const char *text : {"", "\n", "64 65", "0x40", "6.4", "-3", "18446744073709551615"})
        EXPECT_FALSE(parseSysNumber(text)) << text;
}

TEST(HardwareText, CellsOfADeviceTree)
{
    EXPECT_EQ(parseDeviceTreeCell(std::string_view("\x59\x68\x2f\x00", 4)), 1'500'000'000);
    EXPECT_EQ(parseDeviceTreeCell(std::string_view("\0\0\0\1\0\0\0\0", 8)), 1LL << 32);
    EXPECT_FALSE(parseDeviceTreeCell("\xff\xff\xff\xff\xff\xff\xff\xff"));
    EXPECT_FALSE(parseDeviceTreeCell("abc"));
    EXPECT_FALSE(parseDeviceTreeCell(""));
}

TEST(HardwareText, ClockOfTheFirstProcessor)
{
    EXPECT_EQ(parseCpuMegahertz("processor\t: 0\ncpu MHz\t\t: 1800.500\ncpu MHz : 1\n"),
              1'800'500'000);
    EXPECT_FALSE(parseCpuMegahertz("processor\t: 0\n"));
    for (const char *value : {"inf", "nan", "-3", "0", "1e3", "", "fast", "99999999999"})
        EXPECT_FALSE(parseCpuMegahertz(std::string("cpu MHz\t\t: ") + value)) << value;
}

TEST(HardwareText, NamesFromFirmware)
{
    EXPECT_EQ(parseFirmwareName("  Book 14 \n"), "Book 14");
    EXPECT_EQ(parseFirmwareName(std::string_view("Board\0rev", 9)), "Board");
    EXPECT_EQ(parseFirmwareName("A\x01\tB"), "AB");
    EXPECT_EQ(parseFirmwareName("\xc3\xa9t\xe9"), "\xc3\xa9t\xef\xbf\xbd");
    EXPECT_EQ(parseFirmwareName("\xf0\x9f\x92\xbb"), "\xf0\x9f\x92\xbb");
    EXPECT_EQ(parseFirmwareName("\xed\xa0\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    for (const char *text : {"", "\n", "Default string\n", "To Be Filled By O.E.M.", "\x02"})
        EXPECT_FALSE(parseFirmwareName(text)) << text;
}

} // namespace
} // namespace pulsebar
