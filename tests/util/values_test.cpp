#include "support/QtPrinting.h"
#include "util/DecimalText.h"
#include "util/Values.h"

#include <QLocale>
#include <QObject>

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

QVariantMap holder()
{
    return {{QStringLiteral("twelve"), QStringLiteral("12abc")},
            {QStringLiteral("real"), QStringLiteral("3.5x")},
            {QStringLiteral("big"), QVariant::fromValue<quint64>(18446744073709551615U)},
            {QStringLiteral("negative"), -7.9},
            {QStringLiteral("yes"), QStringLiteral("  Yes")},
            {QStringLiteral("inner"),
             QVariantMap{{QStringLiteral("a.b"), 4}, {QStringLiteral("value"), 2.25F}}}};
}

TEST(Values, AMissingKeyReadsAsNothing)
{
    const QString key = QStringLiteral("missing");
    EXPECT_EQ(intValueForKey(holder(), key), 0);
    EXPECT_EQ(longValueForKey(holder(), key), 0);
    EXPECT_EQ(floatValueForKey(holder(), key), 0.0F);
    EXPECT_EQ(doubleValueForKey(holder(), key), 0.0);
    EXPECT_FALSE(boolValueForKey(holder(), key));
}

TEST(Values, TextsReadAsLeadingDecimalNumbers)
{
    EXPECT_EQ(intValueForKey(holder(), QStringLiteral("twelve")), 12);
    EXPECT_EQ(floatValueForKey(holder(), QStringLiteral("real")), 3.5F);
    EXPECT_EQ(intFromText(u"  -42"), -42);
    EXPECT_EQ(intFromText(u"+7"), 7);
    EXPECT_EQ(intFromText(u"3.9"), 3);
    EXPECT_EQ(doubleFromText(u".5"), 0.5);
    EXPECT_EQ(doubleFromText(u"5."), 5.0);
    EXPECT_EQ(doubleFromText(u"1,5"), 1.0);
    EXPECT_EQ(doubleFromText(u"-1.25%"), -1.25);
    EXPECT_EQ(doubleFromText(u"1e3"), 1000.0);
    EXPECT_EQ(doubleFromText(u"2e"), 2.0);
    EXPECT_EQ(doubleFromText(u"2e+x"), 2.0);
    EXPECT_EQ(doubleFromText(u""), 0.0);
    EXPECT_EQ(doubleFromText(u"."), 0.0);
    EXPECT_EQ(doubleFromText(u"-"), 0.0);
    EXPECT_EQ(doubleFromText(u"--1"), 0.0);
}

TEST(Values, OnlyPlainDecimalNumbersAreNumbers)
{
    for (const QStringView text :
         {u"inf", u"INFINITY", u"-inf", u"nan", u"NaN", u"0x1p3", u"0xff", u"٣", u"１２"}) {
        EXPECT_EQ(doubleFromText(text), 0.0) << text.toString().toStdString();
        EXPECT_EQ(floatFromText(text), 0.0F) << text.toString().toStdString();
        EXPECT_EQ(intFromText(text), 0) << text.toString().toStdString();
    }
}

TEST(Values, ANumberTooLargeForItsTypeIsTheLargest)
{
    using Float = std::numeric_limits<float>;
    using Double = std::numeric_limits<double>;
    EXPECT_EQ(intFromText(u"99999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(intFromText(u"-99999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(longFromText(u"9223372036854775808"), std::numeric_limits<qint64>::max());
    EXPECT_EQ(floatFromText(u"1e39"), Float::max());
    EXPECT_EQ(doubleFromText(u"-1e999"), -Double::max());
    EXPECT_EQ(doubleFromText(QString(400, QLatin1Char('9'))), Double::max());
    EXPECT_EQ(doubleFromText(u"1e-999"), 0.0);
    EXPECT_EQ(doubleFromText(QStringLiteral("0.") + QString(400, QLatin1Char('0')) + u'1'), 0.0);
}

TEST(Values, NumbersAreCutTowardsZeroAndKeptInRange)
{
    EXPECT_EQ(intValueForKey(holder(), QStringLiteral("negative")), -7);
    EXPECT_EQ(intValueForKey(holder(), QStringLiteral("big")), std::numeric_limits<int>::max());
    EXPECT_EQ(longValueForKey(holder(), QStringLiteral("big")), std::numeric_limits<qint64>::max());
    EXPECT_EQ(doubleValueForKey(holder(), QStringLiteral("big")), 18446744073709551616.0);
    EXPECT_EQ(longValue(QVariant(1e300)), std::numeric_limits<qint64>::max());
    EXPECT_EQ(longValue(QVariant(0x1p63)), std::numeric_limits<qint64>::max());
    EXPECT_EQ(longValue(QVariant(-1e300)), std::numeric_limits<qint64>::min());
    EXPECT_EQ(longValue(QVariant(std::nan(""))), 0);
    EXPECT_EQ(intValue(QVariant(qint64(1) << 40)), std::numeric_limits<int>::max());
    EXPECT_EQ(doubleValue(QVariant(true)), 1.0);
}

TEST(Values, WhatIsNeitherNumberNorTextReadsAsNothing)
{
    EXPECT_EQ(intValue(QVariant()), 0);
    EXPECT_EQ(doubleValue(QVariant(QVariantList{1, 2})), 0.0);
    EXPECT_EQ(longValue(QVariant(holder())), 0);
    EXPECT_FALSE(boolValue(QVariant(holder())));
}

TEST(Values, BooleansReadFromNumbersAndWords)
{
    EXPECT_TRUE(boolValueForKey(holder(), QStringLiteral("yes")));
    for (const QStringView text : {u"Y", u"y", u"true", u"T", u" 1", u"9", u"\t2"})
        EXPECT_TRUE(boolFromText(text)) << text.toString().toStdString();
    for (const QStringView text : {u"", u"no", u"0", u"N", u"-1", u"on", u"false"})
        EXPECT_FALSE(boolFromText(text)) << text.toString().toStdString();
    EXPECT_TRUE(boolValue(QVariant(-1)));
    EXPECT_TRUE(boolValue(QVariant(0.25)));
    EXPECT_TRUE(boolValue(QVariant::fromValue<quint64>(1)));
    EXPECT_FALSE(boolValue(QVariant(0.0)));
}

TEST(Values, TheLocaleHasNoSay)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(doubleFromText(u"1.5"), 1.5);
    EXPECT_EQ(floatValue(QVariant(QStringLiteral("1,5"))), 1.0F);
    QLocale::setDefault(before);
}

TEST(KeyPaths, WalkThroughDictionaries)
{
    EXPECT_EQ(floatValueForKeyPath(holder(), u"inner.value"), 2.25F);
    EXPECT_EQ(valueForKeyPath(holder(), u"twelve"), QVariant(QStringLiteral("12abc")));
    EXPECT_EQ(
        intValueForKey(holder().value(QStringLiteral("inner")).toMap(), QStringLiteral("a.b")), 4);
}

TEST(KeyPaths, ABrokenPathGivesNothing)
{
    EXPECT_EQ(floatValueForKeyPath(holder(), u"inner.missing"), 0.0F);
    EXPECT_EQ(floatValueForKeyPath(holder(), u"missing.value"), 0.0F);
    EXPECT_EQ(floatValueForKeyPath(holder(), u"real.value"), 0.0F);
    EXPECT_FALSE(valueForKeyPath(holder(), u"inner.value.more").isValid());
    EXPECT_FALSE(valueForKeyPath(holder(), u"").isValid());
}

TEST(KeyPaths, BeginAtAnObjectsProperty)
{
    QObject object;
    object.setObjectName(QStringLiteral("17 things"));
    object.setProperty("inner", QVariantMap{{QStringLiteral("x"), 3}});
    EXPECT_EQ(intValueForKey(object, QStringLiteral("objectName")), 17);
    EXPECT_EQ(floatValueForKeyPath(object, u"inner.x"), 3.0F);
    EXPECT_EQ(floatValueForKeyPath(object, u"inner.y"), 0.0F);
    EXPECT_FALSE(valueForKeyPath(object, u"nothing.x").isValid());
}

} // namespace
} // namespace pulsebar
