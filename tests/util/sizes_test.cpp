#include "support/QtPrinting.h"
#include "util/Sizes.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

constexpr double KiB = 1024.0;
constexpr double MiB = 1024.0 * KiB;
constexpr double GiB = 1024.0 * MiB;
constexpr double TiB = 1024.0 * GiB;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

TEST(FileSizeString, HasOneDecimalBelowTen)
{
    EXPECT_EQ(fileSizeString(5.0), QStringLiteral("5.0B"));
    EXPECT_EQ(fileSizeString(0.0), QStringLiteral("0.0B"));
    EXPECT_EQ(fileSizeString(1536.0), QStringLiteral("1.5KB"));
    EXPECT_EQ(fileSizeString(15 * MiB), QStringLiteral("15MB"));
    EXPECT_EQ(fileSizeString(9.96 * KiB), QStringLiteral("10.0KB"));
    EXPECT_EQ(fileSizeString(5000 * GiB), QStringLiteral("5000GB"));
}

TEST(FileSizeString, ExactlyOneOfAUnitStaysInTheLowerOne)
{
    EXPECT_EQ(fileSizeString(KiB), QStringLiteral("1024B"));
    EXPECT_EQ(fileSizeString(MiB), QStringLiteral("1024KB"));
    EXPECT_EQ(fileSizeString(GiB), QStringLiteral("1024MB"));
    EXPECT_EQ(fileSizeString(KiB + 1), QStringLiteral("1.0KB"));
}

TEST(FileSizeString, FollowsTheLocaleButByteSizeDoesNot)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(fileSizeString(1536.0), QStringLiteral("1,5KB"));
    EXPECT_EQ(stringWithByteSize(1536.0), QStringLiteral("1.5KB"));
    QLocale::setDefault(before);
}

TEST(FileSizeString, ReadsBoxedNumbersAndNothing)
{
    EXPECT_EQ(fileSizeString(QVariant::fromValue<quint64>(2048)), QStringLiteral("2.0KB"));
    EXPECT_EQ(fileSizeString(QVariant()), QStringLiteral("0.0B"));
    EXPECT_EQ(fileSizeString(-5.0), QStringLiteral("-5.0B"));
}

TEST(StringWithByteSize, GoesUpToTerabytes)
{
    EXPECT_EQ(stringWithByteSize(TiB), QStringLiteral("1024GB"));
    EXPECT_EQ(stringWithByteSize(1.5 * TiB), QStringLiteral("1.5TB"));
    EXPECT_EQ(stringWithByteSize(1024.0), QStringLiteral("1024B"));
}

TEST(StringWithTimeLong, IsAClock)
{
    EXPECT_EQ(stringWithTimeLong(0), QStringLiteral("00:00"));
    EXPECT_EQ(stringWithTimeLong(5), QStringLiteral("00:05"));
    EXPECT_EQ(stringWithTimeLong(59), QStringLiteral("00:59"));
    EXPECT_EQ(stringWithTimeLong(60), QStringLiteral("01:00"));
    EXPECT_EQ(stringWithTimeLong(600), QStringLiteral("10:00"));
    EXPECT_EQ(stringWithTimeLong(3599), QStringLiteral("59:59"));
    EXPECT_EQ(stringWithTimeLong(3600), QStringLiteral("1:00:00"));
    EXPECT_EQ(stringWithTimeLong(3725), QStringLiteral("1:02:05"));
    EXPECT_EQ(stringWithTimeLong(360000), QStringLiteral("100:00:00"));
    EXPECT_EQ(stringWithTimeLong(std::numeric_limits<quint64>::max()),
              QStringLiteral("5124095576030431:00:15"));
}

TEST(TimeStringFromSecond, CutsDigitsInsteadOfRounding)
{
    EXPECT_EQ(timeStringFromSecond(9000.0), QStringLiteral("2.5 Hours"));
    EXPECT_EQ(timeStringFromSecond(0.25), QStringLiteral("0.2 Seconds"));
    EXPECT_EQ(timeStringFromSecond(1.0), QStringLiteral("1 Seconds"));
    EXPECT_EQ(timeStringFromSecond(1.99), QStringLiteral("1 Seconds"));
    EXPECT_EQ(timeStringFromSecond(10.5), QStringLiteral("10 Seconds"));
    EXPECT_EQ(timeStringFromSecond(59.99999), QStringLiteral("59 Seconds"));
    EXPECT_EQ(timeStringFromSecond(90.0), QStringLiteral("1.5 Minutes"));
    EXPECT_EQ(timeStringFromSecond(3599.0), QStringLiteral("59 Minutes"));
    EXPECT_EQ(timeStringFromSecond(123.4 * 3600), QStringLiteral("123 Hours"));
    EXPECT_EQ(timeStringFromSecond(1e-7), QStringLiteral("0.0 Seconds"));
}

TEST(TimeStringFromSecond, AFullUnitStaysInTheLowerOne)
{
    EXPECT_EQ(timeStringFromSecond(60.0), QStringLiteral("60 Seconds"));
    EXPECT_EQ(timeStringFromSecond(3600.0), QStringLiteral("60 Minutes"));
}

TEST(TimeStringFromSecond, IsEmptyForWhatIsNoDuration)
{
    EXPECT_EQ(timeStringFromSecond(-1.0), QString());
    EXPECT_EQ(timeStringFromSecond(NaN), QString());
    EXPECT_EQ(timeStringFromSecond(Infinity), QStringLiteral("inf Hours"));
}

TEST(DetailedTimeString, RunsTheUnitsTogether)
{
    EXPECT_EQ(detailedTimeStringFromSecond(86400 + 2 * 3600 + 3 * 60 + 4.5),
              QStringLiteral("1 Days02 Hours03 Minutes04.50 Seconds"));
    EXPECT_EQ(detailedTimeStringFromSecond(3600.0), QStringLiteral("60 Minutes00.00 Seconds"));
    EXPECT_EQ(detailedTimeStringFromSecond(86401.0),
              QStringLiteral("1 Days00 Hours00 Minutes01.00 Seconds"));
    EXPECT_EQ(detailedTimeStringFromSecond(12 * 3600 + 30), // minutes follow hours, even with none
              QStringLiteral("12 Hours00 Minutes30.00 Seconds"));
    EXPECT_EQ(detailedTimeStringFromSecond(59.5), QStringLiteral("59.50 Seconds"));
    EXPECT_EQ(detailedTimeStringFromSecond(0.0), QStringLiteral("00.00 Seconds"));
}

TEST(DetailedTimeString, IsEmptyForWhatIsNoDuration)
{
    EXPECT_EQ(detailedTimeStringFromSecond(-0.5), QString());
    EXPECT_EQ(detailedTimeStringFromSecond(NaN), QString());
    EXPECT_TRUE(detailedTimeStringFromSecond(Infinity).endsWith(QStringLiteral(" Minutes")));
}

TEST(BoxedArithmetic, IsThatOfDoubles)
{
    EXPECT_EQ(add(1.5, 2.0), 3.5);
    EXPECT_EQ(subtract(1.0, 2.5), -1.5);
    EXPECT_EQ(multiply(3.0, 0.5), 1.5);
    EXPECT_EQ(divide(1.0, 4.0), 0.25);
    EXPECT_EQ(divide(1.0, 0.0), Infinity);
    EXPECT_TRUE(std::isnan(divide(0.0, 0.0)));
    EXPECT_EQ(increment(1.5), 2.5);
    EXPECT_EQ(decrement(1.5), 0.5);
}

TEST(HasAnyKey, FindsANumberWhateverItsType)
{
    const QVariantList numbers{1, 2.5, QStringLiteral("7")};
    EXPECT_TRUE(hasAnyKey(1.0, numbers));
    EXPECT_TRUE(hasAnyKey(2.5, numbers, 3));
    EXPECT_TRUE(hasAnyKey(7.0, numbers));
    EXPECT_FALSE(hasAnyKey(3.0, numbers));
    EXPECT_FALSE(hasAnyKey(0.0, {}));
}

} // namespace
} // namespace pulsebar
