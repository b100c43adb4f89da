#include "controller/BusValues.h"
#include "controller/Scripting.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

TEST(ScriptTitleTypes, NumbersAndFourCharacterCodes)
{
    EXPECT_EQ(titleTypeOfScript(1), 1);
    EXPECT_EQ(titleTypeOfScript(11), 11);
    EXPECT_EQ(titleTypeOfScript(0x6B547931), 1);  // kTy1
    EXPECT_EQ(titleTypeOfScript(0x6B547939), 9);  // kTy9
    EXPECT_EQ(titleTypeOfScript(0x6B543130), 10); // kT10
    EXPECT_EQ(titleTypeOfScript(0x6B543131), 11); // kT11
    for (const int other : {0, 12, -1, 0x6B547930, 0x6B54793A, 0x6B543132, 0x6B54312F})
        EXPECT_EQ(titleTypeOfScript(other), std::nullopt) << other;
}

TEST(BusValues, KeepWidthsAndWidenReals)
{
    EXPECT_EQ(busvalues::fromValue(0.5F).typeId(), QMetaType::Double);
    EXPECT_EQ(busvalues::fromValue(quint64(1)).typeId(), QMetaType::ULongLong);
    EXPECT_EQ(busvalues::fromValue(qint64(1)).typeId(), QMetaType::LongLong);
    EXPECT_EQ(busvalues::fromValue(1U).typeId(), QMetaType::UInt);
    EXPECT_EQ(busvalues::fromValue(1).typeId(), QMetaType::Int);
    EXPECT_EQ(busvalues::fromValue(true).typeId(), QMetaType::Bool);
    EXPECT_EQ(busvalues::fromValue(QVariant::fromValue(short(3))), QVariant(3));
    EXPECT_FALSE(busvalues::fromValue(QVariant()).isValid());
}

TEST(BusValues, ReachInsideCollections)
{
    const QVariantMap inner{{QStringLiteral("speed"), 0.25F}, {QStringLiteral("none"), QVariant()}};
    const QVariantMap wire =
        busvalues::fromDictionary({{QStringLiteral("list"), QVariantList{inner, QVariant(), 1}}});
    const QVariantList list = wire.value(QStringLiteral("list")).toList();
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list[0].toMap(), (QVariantMap{{QStringLiteral("speed"), 0.25}}));
}

TEST(BusValues, ZeroBytesBecomeVisible)
{
    const QString text = QStringLiteral("a") + QChar(u'\0');
    const QString shown = QStringLiteral("a") + QChar(0xFFFD);
    EXPECT_EQ(busvalues::fromValue(text), QVariant(shown));
    EXPECT_EQ(busvalues::fromDictionary({{text, 1}}), (QVariantMap{{shown, 1}}));
}

TEST(BusValues, NumbersOfASeries)
{
    EXPECT_EQ(busvalues::fromNumbers({1.5, quint64(7), 0.5F, QStringLiteral("2.5")}),
              (QList<double>{1.5, 7, 0.5, 2.5}));
}

TEST(BusValues, IntegersOfAnyWidthThatFit)
{
    EXPECT_EQ(busvalues::toInteger(5), 5);
    EXPECT_EQ(busvalues::toInteger(quint64(5)), 5);
    EXPECT_EQ(busvalues::toInteger(qint64(-5)), -5);
    EXPECT_EQ(busvalues::toInteger(std::numeric_limits<qint64>::max()), std::nullopt);
    EXPECT_EQ(busvalues::toInteger(std::numeric_limits<quint64>::max()), std::nullopt);
    EXPECT_EQ(busvalues::toInteger(QStringLiteral("5")), std::nullopt);
    EXPECT_EQ(busvalues::toInteger(5.0), std::nullopt);
    EXPECT_EQ(busvalues::toInteger(true), std::nullopt);
}

} // namespace
} // namespace pulsebar
