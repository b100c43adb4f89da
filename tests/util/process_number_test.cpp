#include "support/QtPrinting.h"
#include "util/ProcessNumber.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ProcessNumber, IsADecimalNumberAboveOne)
{
    EXPECT_EQ(processNumber(u"2"), 2);
    EXPECT_EQ(processNumber(u"412"), 412);
    EXPECT_EQ(processNumber(u"4194304"), 4194304);
    EXPECT_EQ(processNumber(u"2147483647"), 2147483647);
}

TEST(ProcessNumber, IsNothingElse)
{
    for (const char16_t *text : {u"",
                                 u"0",
                                 u"1",
                                 u"00",
                                 u"-1",
                                 u"-412",
                                 u"+412",
                                 u" 412",
                                 u"412 ",
                                 u"412\n",
                                 u"0412",
                                 u"0x19c",
                                 u"412-2",
                                 u"4.1e2",
                                 u"2147483648",
                                 u"4294967708",
                                 u"18446744073709552028",
                                 u"99999999999999999999999",
                                 u"abc",
                                 u"４１２",
                                 u"٤١٢",
                                 u"--",
                                 u"-"})
        EXPECT_FALSE(processNumber(QStringView(text)))
            << QStringView(text).toString().toStdString();
    EXPECT_FALSE(processNumber(QStringView(u"412\0", 4)));
    EXPECT_FALSE(processNumber(QStringView()));
}

} // namespace
} // namespace pulsebar
