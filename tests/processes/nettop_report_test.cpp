#include "processes/NettopReport.h"
#include "support/QtPrinting.h"

#include <limits>

namespace pulsebar {
namespace {

constexpr auto kHeader = "time,,interface,state,bytes_in,bytes_out,rx_dupe,rx_ooo\n";
constexpr auto kBrowser = "09:00:00.1,Safari.412,,,1000,200,0,\n";
constexpr auto kConnection =
    "09:00:00.1,tcp4 10.0.1.2:50123<->192.0.2.7:443,en0,Established,900,150,0,\n";

QVariantMap parse(const QByteArray &report, const QByteArray &previous = {})
{
    return parseNettopReport(report, previous);
}

QVariantMap process(const QVariantMap &dictionary, const char *name)
{
    return dictionary.value(QString::fromUtf8(name)).toMap();
}

QVariant value(const QVariantMap &record, const char *key)
{
    return record.value(QString::fromLatin1(key));
}

QVariantMap connection(const QVariantMap &record, int place)
{
    return value(record, "subprocess").toList().value(place).toMap();
}

TEST(NettopReport, AProcessWithItsConnection)
{
    const QVariantMap all = parse(QByteArray(kHeader) + kBrowser + kConnection);
    ASSERT_EQ(all.keys(), QStringList{QStringLiteral("Safari.412")});
    const QVariantMap safari = process(all, "Safari.412");
    EXPECT_EQ(safari.size(), 6);
    EXPECT_EQ(value(safari, "name"), QStringLiteral("Safari.412"));
    EXPECT_EQ(value(safari, "bytes_in"), QVariant(qint64(1000)));
    EXPECT_EQ(value(safari, "bytes_out"), QVariant(qint64(200)));
    EXPECT_EQ(value(safari, "bytes_in").typeId(), QMetaType::LongLong);
    EXPECT_EQ(value(safari, "bytes_in_delta").typeId(), QMetaType::Int);
    EXPECT_EQ(value(safari, "bytes_in_delta"), QVariant(0));
    EXPECT_EQ(value(safari, "bytes_out_delta").typeId(), QMetaType::Int);
    ASSERT_EQ(value(safari, "subprocess").toList().size(), 1);
    const QVariantMap expected{
        {QStringLiteral("type"), QStringLiteral("tcp4")},
        {QStringLiteral("address"), QStringLiteral("10.0.1.2:50123<->192.0.2.7:443")},
        {QStringLiteral("interface"), QStringLiteral("en0")},
        {QStringLiteral("state"), QStringLiteral("Established")},
        {QStringLiteral("bytes_in"), qint64(900)},
        {QStringLiteral("bytes_out"), qint64(150)}};
    EXPECT_EQ(connection(safari, 0), expected);
    EXPECT_EQ(value(connection(safari, 0), "bytes_out").typeId(), QMetaType::LongLong);
}

TEST(NettopReport, GrowthIsCountedFromTheRunBefore)
{
    const QVariantMap all = parse("9,Safari.412,,,1600,190,0\n9,new.1,,,5,6,0\n", kBrowser);
    const QVariantMap safari = process(all, "Safari.412");
    EXPECT_EQ(value(safari, "bytes_in_delta").typeId(), QMetaType::Double);
    EXPECT_EQ(value(safari, "bytes_in_delta"), QVariant(600.0));
    EXPECT_EQ(value(safari, "bytes_out_delta"), QVariant(-10.0));
    EXPECT_EQ(value(process(all, "new.1"), "bytes_out_delta").typeId(), QMetaType::Int);
    EXPECT_EQ(value(process(all, "new.1"), "bytes_out_delta"), QVariant(0));
    const QVariantMap same = process(parse(kBrowser, kBrowser), "Safari.412");
    EXPECT_EQ(value(same, "bytes_in_delta").typeId(), QMetaType::Double);
    EXPECT_EQ(value(same, "bytes_in_delta"), QVariant(0.0));
}

TEST(NettopReport, ConnectionsKeepTheirOrderAndTheirProcess)
{
    const QVariantMap all =
        parse("9,idle.1,,,0,0,0\n9,two.2,,,7,8,0\n9,tcp6 [::1]:22<->*:*,lo,Listen,0,0,0\n"
              "9,tcp4 b:2<->c:3,eth0,CloseWait,3,4,0\n9,last.3,,,1,1,0\n");
    EXPECT_EQ(all.size(), 3);
    EXPECT_TRUE(process(all, "idle.1").contains(QStringLiteral("subprocess")));
    EXPECT_TRUE(value(process(all, "idle.1"), "subprocess").toList().isEmpty());
    EXPECT_TRUE(value(process(all, "last.3"), "subprocess").toList().isEmpty());
    const QVariantMap two = process(all, "two.2");
    ASSERT_EQ(value(two, "subprocess").toList().size(), 2);
    EXPECT_EQ(value(connection(two, 0), "address"), QStringLiteral("[::1]:22<->*:*"));
    EXPECT_EQ(value(connection(two, 0), "state"), QStringLiteral("Listen"));
    EXPECT_EQ(value(connection(two, 1), "address"), QStringLiteral("b:2<->c:3"));
}

TEST(NettopReport, ANameThatBeginsWithTcpIsAConnectionOfTheProcessAbove)
{
    const QVariantMap all =
        parse(QByteArray(kBrowser) + "9,tcpdump.99,,,30,40,0\n9,Tcpdump.98,,,1,2,0\n");
    EXPECT_EQ(all.keys(),
              (QStringList{QStringLiteral("Safari.412"), QStringLiteral("Tcpdump.98")}));
    const QVariantMap taken = connection(process(all, "Safari.412"), 0);
    EXPECT_EQ(value(taken, "bytes_in"), QVariant(qint64(30)));
    // There is no blank that a type would end at.
    EXPECT_FALSE(taken.contains(QStringLiteral("type")));
    EXPECT_FALSE(taken.contains(QStringLiteral("address")));
    EXPECT_EQ(value(connection(process(parse("9,a.1,,,1,1,0\n9,tcp4 ,,,1,1,0"), "a.1"), 0), "type"),
              QStringLiteral("tcp4"));
}

TEST(NettopReport, AConnectionBeforeAnyProcessIsDropped)
{
    const QVariantMap all = parse(QByteArray(kConnection) + kBrowser);
    EXPECT_EQ(all.size(), 1);
    EXPECT_TRUE(value(process(all, "Safari.412"), "subprocess").toList().isEmpty());
    EXPECT_TRUE(parse(kConnection).isEmpty());
}

TEST(NettopReport, LinesWithLessThanSevenFieldsAreSkipped)
{
    EXPECT_TRUE(parse("9,six.1,,,10,20").isEmpty());
    EXPECT_TRUE(parse("").isEmpty());
    EXPECT_TRUE(parse("\n\n,,,\n").isEmpty());
    const QVariantMap all = parse("9,seven.1,,,10,20,\n9,six.2,,,1,1\n9,tcp4 a,,,1,1,");
    EXPECT_EQ(all.keys(), QStringList{QStringLiteral("seven.1")});
    EXPECT_EQ(value(process(all, "seven.1"), "subprocess").toList().size(), 1)
        << "the line between has no process of its own";
}

TEST(NettopReport, HeadersMayComeAgain)
{
    EXPECT_TRUE(parse("timely,a.1,,,1,2,0\n").isEmpty());
    EXPECT_EQ(parse("Time,a.1,,,1,2,0\n").size(), 1);
    const QVariantMap all = parse(QByteArray(kBrowser) + kHeader + kConnection);
    EXPECT_EQ(value(process(all, "Safari.412"), "subprocess").toList().size(), 1);
}

TEST(NettopReport, OfTwoWithTheSameNameTheLaterCounts)
{
    const QByteArray twice = "9,a.1,,,1,2,0\n9,tcp4 x:1<->y:2,,,0,0,0\n9,a.1,,,5,6,0\n";
    const QVariantMap all = parse(twice + "9,tcp4 z:1<->y:2,,,0,0,0\n", "9,a.1,,,1,1,0\n");
    ASSERT_EQ(all.size(), 1);
    const QVariantMap record = process(all, "a.1");
    EXPECT_EQ(value(record, "bytes_in"), QVariant(qint64(5)));
    EXPECT_EQ(value(record, "bytes_in_delta"), QVariant(4.0));
    ASSERT_EQ(value(record, "subprocess").toList().size(), 1);
    EXPECT_EQ(value(connection(record, 0), "address"), QStringLiteral("z:1<->y:2"));
    EXPECT_EQ(value(process(parse("9,a.1,,,9,9,0\n", twice), "a.1"), "bytes_in_delta"),
              QVariant(4.0));
}

TEST(NettopReport, NumbersAreWholeAndMayBeMissing)
{
    const QVariantMap all = parse("9,a.1,,,12abc,,0\n9,b.2,,,-5, 7,0\n"
                                  "9,c.3,,,9223372036854775807,99999999999999999999,0\n");
    EXPECT_EQ(value(process(all, "a.1"), "bytes_in"), QVariant(qint64(12)));
    EXPECT_EQ(value(process(all, "a.1"), "bytes_out"), QVariant(qint64(0)));
    EXPECT_EQ(value(process(all, "b.2"), "bytes_in"), QVariant(qint64(-5)));
    EXPECT_EQ(value(process(all, "b.2"), "bytes_out"), QVariant(qint64(7)));
    const QVariant most(std::numeric_limits<qint64>::max());
    EXPECT_EQ(value(process(all, "c.3"), "bytes_in"), most);
    EXPECT_EQ(value(process(all, "c.3"), "bytes_out"), most);
}

TEST(NettopReport, BytesThatAreNoTextSpoilNothingElse)
{
    const QByteArray bad = "9,a\xff\xfe.1,e\xc3,\xed\xa0\x80,1,2,0\n";
    const QVariantMap all = parse(bad + kBrowser + QByteArray("9,nul\0x.5,,,3,3,0\n", 18));
    EXPECT_EQ(all.size(), 3);
    EXPECT_TRUE(all.contains(QStringLiteral("Safari.412")));
    EXPECT_TRUE(all.contains(QStringLiteral("a\ufffd\ufffd.1")));
    EXPECT_EQ(value(process(parse(bad, bad), "a\ufffd\ufffd.1"), "bytes_in_delta"), QVariant(0.0));
}

TEST(NettopReport, WhatStandsInANameIsNobodysFormat)
{
    const QVariantMap all =
        parse("9,%@ %s \u201aK\u00f6ln\u201a.77,,,1,2,0\n9,.1,,,1,2,0\n9,,,,,,\n");
    EXPECT_TRUE(all.contains(QStringLiteral("%@ %s \u201aK\u00f6ln\u201a.77")));
    EXPECT_TRUE(all.contains(QString()));
    EXPECT_EQ(all.size(), 3);
}

} // namespace
} // namespace pulsebar
