#include "support/QtPrinting.h"
#include "util/Format.h"

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

const std::optional<QString> Mismatch;

std::optional<QString> checked(QStringView format, const FormatArguments &arguments)
{
    return formatChecked(format, arguments, QStringLiteral("."));
}

TEST(Format, FillsTextsNumbersAndPercentSigns)
{
    EXPECT_EQ(plainFormat(u"%.1f%%", 12.34F), QStringLiteral("12.3%"));
    EXPECT_EQ(plainFormat(u"%@ %@", QStringLiteral("In"), QStringLiteral("1.5KB")),
              QStringLiteral("In 1.5KB"));
    EXPECT_EQ(plainFormat(u"CPU:%.0f%@", 50.4, QStringLiteral("℃")), QStringLiteral("CPU:50℃"));
    EXPECT_EQ(plainFormat(u"%d of %llu", -3, std::numeric_limits<quint64>::max()),
              QStringLiteral("-3 of 18446744073709551615"));
    EXPECT_EQ(plainFormat(u"%f", 0.125), QStringLiteral("0.125000"));
    EXPECT_EQ(plainFormat(u"100%%"), QStringLiteral("100%"));
    EXPECT_EQ(plainFormat(u""), QString());
}

TEST(Format, KnowsWidthsFlagsAndPositions)
{
    EXPECT_EQ(plainFormat(u"%02llu:%-4d|", 7, 5), QStringLiteral("07:5   |"));
    EXPECT_EQ(plainFormat(u"%+d %5.1f", 5, 2.25), QStringLiteral("+5   2.2"));
    EXPECT_EQ(plainFormat(u"%6@|%-6@|", QStringLiteral("ab"), QStringLiteral("cd")),
              QStringLiteral("    ab|cd    |"));
    EXPECT_EQ(plainFormat(u"%2$@ %1$d", 1, QStringLiteral("one")), QStringLiteral("one 1"));
    EXPECT_EQ(plainFormat(u"%06.1f", -2.5), QStringLiteral("-002.5"));
    EXPECT_EQ(plainFormat(u"%.2@", QStringLiteral("abcd")), QStringLiteral("ab"));
}

TEST(Format, PrintsWhatIsNoNumber)
{
    EXPECT_EQ(plainFormat(u"%.0fRPM", std::nan("")), QStringLiteral("nanRPM"));
    EXPECT_EQ(plainFormat(u"%.0fRPM", -std::nan("")), QStringLiteral("nanRPM"));
    EXPECT_EQ(plainFormat(u"%05.1f", std::numeric_limits<double>::infinity()),
              QStringLiteral("  inf"));
}

TEST(Format, ChecksThePlaceholdersAgainstTheArguments)
{
    const QString text = QStringLiteral("x");
    EXPECT_EQ(checked(u"%@", {}), Mismatch);
    EXPECT_EQ(checked(u"%d", {text}), Mismatch);
    EXPECT_EQ(checked(u"%f", {1}), Mismatch);
    EXPECT_EQ(checked(u"%@", {1.0}), Mismatch);
    EXPECT_EQ(checked(u"%@", {text, text}), Mismatch);
    EXPECT_EQ(checked(u"%3$@", {text, text}), Mismatch);
    EXPECT_EQ(checked(u"no place", {text}), Mismatch);
    EXPECT_EQ(plainFormat(u"%d", text), QStringLiteral("%d"));
}

TEST(Format, RefusesWhatCouldReadOrFillMemory)
{
    const QString text = QStringLiteral("x");
    for (const QStringView format : {u"%s", u"%n", u"%p", u"%*d", u"%", u"%.", u"%$", u"%999999d",
                                     u"%.999999f", u"%99999999999999999999d", u"%1$", u"{}"}) {
        EXPECT_EQ(checked(format, {text}), Mismatch) << format.toString().toStdString();
        EXPECT_EQ(checked(format, {1}), Mismatch) << format.toString().toStdString();
        EXPECT_EQ(checked(format, {1.0}), Mismatch) << format.toString().toStdString();
    }
}

TEST(Format, TheDecimalPointIsTheCallers)
{
    EXPECT_EQ(formatChecked(u"%.1f.%d", {1.5, 3}, QStringLiteral(",")), QStringLiteral("1,5.3"));
}

} // namespace
} // namespace pulsebar
