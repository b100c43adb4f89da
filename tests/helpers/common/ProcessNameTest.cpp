#include "common/ProcessName.h"

#include "common/Utf8.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(CompleteName, TakesTheProgramsNameWhenTheKernelCutIt)
{
    EXPECT_EQ(completeName("chromium-browse", "/usr/lib/chromium-browser\0--type=x\0"sv),
              "chromium-browser");
    EXPECT_EQ(completeName("chromium-browse", "/usr/lib/chromium-browser --type=x --dir=/a/b"sv),
              "chromium-browser");
    EXPECT_EQ(completeName("Isolated Web Co", "/opt/Isolated Web Content\0-x\0"sv),
              "Isolated Web Content");
}

TEST(CompleteName, TakesAScriptsName)
{
    EXPECT_EQ(
        completeName("networkd-dispat", "/usr/bin/python3\0/usr/bin/networkd-dispatcher\0-x\0"sv),
        "networkd-dispatcher");
}

TEST(CompleteName, KeepsAShortOrUnrelatedName)
{
    EXPECT_EQ(completeName("bash", "/bin/bash-static\0"sv), "bash");
    EXPECT_EQ(completeName("my chosen name!", "/bin/other\0file\0my chosen name!!\0"sv),
              "my chosen name!");
    EXPECT_EQ(completeName("fifteen-bytes-x", ""sv), "fifteen-bytes-x");
}

TEST(NameForRow, BindsWordsThatReadAsNumbers)
{
    EXPECT_EQ(nameForRow("Web 2.5 Server"), "Web\u00a02.5 Server");
    EXPECT_EQ(nameForRow("a 1 2.5 b"), "a\u00a01\u00a02.5 b");
    EXPECT_EQ(nameForRow("half 50% done"), "half\u00a050% done");
    EXPECT_EQ(nameForRow("Volume 2"), "Volume 2");
    EXPECT_EQ(nameForRow("to inf.5 and NaN,"), "to\u00a0inf.5 and\u00a0NaN,");
    EXPECT_EQ(nameForRow("info v2.5"), "info v2.5");
}

TEST(NameForRow, ShowsBlanksThatWouldGetLost)
{
    EXPECT_EQ(nameForRow("   "), "\u2423\u2423\u2423");
    EXPECT_EQ(nameForRow(" a "), "\u2423a\u2423");
    EXPECT_EQ(nameForRow("a   b"), "a\u00a0\u00a0\u00a0b");
    EXPECT_EQ(nameForRow("a \u3000b"), "a\u00a0\u3000b");
}

TEST(NameForRow, LetsNoControlCharacterThrough)
{
    EXPECT_EQ(nameForRow("a\nb\rc\x1b[0m\x7f"), "a\ufffdb\ufffdc\ufffd[0m\ufffd");
    EXPECT_EQ(nameForRow("a\u2028b\u202ec\u0085"), "a\ufffdb\ufffdc\ufffd");
    EXPECT_EQ(nameForRow("\0x"s), "\ufffdx");
}

TEST(NameForRow, MakesValidUtf8)
{
    EXPECT_EQ(nameForRow("\xff\xc3"), "\ufffd\ufffd");
    EXPECT_EQ(nameForRow("\xc0\xaf\xed\xa0\x80\xf5"), "\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd");
    EXPECT_EQ(nameForRow("字é😀"), "字é😀");
}

TEST(NameForRow, IsNeverEmptyNeverUnknownAndNeverLong)
{
    EXPECT_EQ(nameForRow(""), "?");
    EXPECT_EQ(nameForRow("N/A"), "N\u2215A");
    EXPECT_EQ(nameForRow("N/A x"), "N/A\u00a0x");
    EXPECT_EQ(nameForRow(std::string(1'000'000, 'x')).size(), 64U);
}

TEST(WordForRow, HasNoBlank)
{
    EXPECT_EQ(wordForRow("DOMAIN\\First Last"), "DOMAIN\\First_Last");
    EXPECT_EQ(wordForRow("a\u00a0b\u3000c\n"), "a_b_c\ufffd");
    EXPECT_EQ(wordForRow(""), "?");
}

TEST(WordForRow, IsNeverUnknown)
{
    EXPECT_EQ(wordForRow("N/A"), "N\u2215A");
}

TEST(Utf8, EveryScalarValueSurvives)
{
    for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 97) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        std::string bytes;
        appendUtf8(bytes, c);
        Utf8Reader reader(bytes);
        ASSERT_EQ(reader.next(), c);
        ASSERT_TRUE(reader.atEnd());
    }
}

} // namespace
} // namespace pulsebar
