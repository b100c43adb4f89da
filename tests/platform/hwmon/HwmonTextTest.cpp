#include "platform/linux_/hwmon/hwmon_text.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ParseHwmonNumber, TakesWholeDecimalNumbers)
{
    EXPECT_EQ(parseHwmonNumber("47000\n"), 47000);
    EXPECT_EQ(parseHwmonNumber("0"), 0);
    EXPECT_EQ(parseHwmonNumber("-12500\n"), -12500);
    EXPECT_EQ(parseHwmonNumber(" 31000 \n"), 31000);
}

TEST(ParseHwmonNumber, HasNothingToSayOfAnythingElse)
{
    for (const char *text : {"", "\n", "-", "47.5", "47000x", "47000 48000", "0x2F", "N/A", "+5",
                             "99999999999999999999", "4 7"})
        EXPECT_FALSE(parseHwmonNumber(text)) << text;
}

TEST(ReadableText, IsTheFirstLineWithoutBlanksAtItsEnds)
{
    EXPECT_EQ(readableText("Package id 0\n"), "Package id 0");
    EXPECT_EQ(readableText("\t Core 1 \r\n"), "Core 1");
    EXPECT_EQ(readableText("one\ntwo\n"), "one");
    EXPECT_EQ(readableText("\n  \n"), "");
    EXPECT_EQ(readableText(""), "");
}

TEST(ReadableText, ReplacesWhatIsNoText)
{
    EXPECT_EQ(readableText("a\x01z"), "a\uFFFDz");
    EXPECT_EQ(readableText(std::string_view("a\0z", 3)), "a\uFFFDz");
    EXPECT_EQ(readableText("a\x7Fz"), "a\uFFFDz");
    EXPECT_EQ(readableText("a\xC2\x85z"), "a\uFFFDz"); // a C1 control
    EXPECT_EQ(readableText("\x1B[31mred"), "\uFFFD[31mred");
    EXPECT_EQ(readableText("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(readableText("caf\xC3"), "caf\uFFFD");
    EXPECT_EQ(readableText("\xC0\xAFz"), "\uFFFD\uFFFDz");                   // overlong
    EXPECT_EQ(readableText("\xE0\x80\xAFz"), "\uFFFD\uFFFD\uFFFDz");         // overlong
    EXPECT_EQ(readableText("\xED\xA0\x80z"), "\uFFFD\uFFFD\uFFFDz");         // a surrogate
    EXPECT_EQ(readableText("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD"); // beyond Unicode
}

TEST(ReadableText, LeavesTextInAnyLanguage)
{
    EXPECT_EQ(readableText("Gehäuse"), "Gehäuse");
    EXPECT_EQ(readableText("温度 🌡"), "温度 🌡");
    EXPECT_EQ(readableText("\u00A0x"), "\u00A0x");
}

TEST(ReadableText, IsCutByCharacters)
{
    EXPECT_EQ(readableText(std::string(64, 'x')), std::string(64, 'x'));
    EXPECT_EQ(readableText(std::string(65, 'x')), std::string(63, 'x') + "…");
    EXPECT_EQ(readableText(std::string(4096, 'x')), std::string(63, 'x') + "…");
    EXPECT_EQ(readableText("äöüß", 4), "äöüß");
    EXPECT_EQ(readableText("äöüß", 3), "äö…");
    EXPECT_EQ(readableText(std::string(4096, '\xFF'), 2), "\uFFFD…");
}

TEST(ParseHwmonFileName, TakesInputsOfBothKinds)
{
    const auto temperature = parseHwmonFileName("temp12_input");
    ASSERT_TRUE(temperature);
    EXPECT_EQ(temperature->kind, HwmonFile::Kind::Temperature);
    EXPECT_EQ(temperature->number, 12);
    EXPECT_EQ(temperature->detail, "input");
    const auto fan = parseHwmonFileName("fan3_target");
    ASSERT_TRUE(fan);
    EXPECT_EQ(fan->kind, HwmonFile::Kind::Fan);
    EXPECT_EQ(fan->number, 3);
    EXPECT_EQ(fan->detail, "target");
}

TEST(ParseHwmonFileName, LeavesOtherFilesAlone)
{
    for (const char *name : {"name", "in0_input", "temp_input", "temp1", "tempx_input", "fan", "",
                             "temp-1_input", "temp99999999999_input", "pwm1", "temp1input"})
        EXPECT_FALSE(parseHwmonFileName(name)) << name;
}

TEST(ParseHwmonFolderName, IsAWordAndANumber)
{
    EXPECT_EQ(parseHwmonFolderName("hwmon0"), 0);
    EXPECT_EQ(parseHwmonFolderName("hwmon17"), 17);
    for (const char *name : {"hwmon", "hwmon1x", "hwmon-1", "hw1", ".", "..", "hwmonx"})
        EXPECT_FALSE(parseHwmonFolderName(name)) << name;
}

} // namespace
} // namespace pulsebar
