#include "engine/DiskRates.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"

#include <limits>

namespace pulsebar {
namespace {

DiskCounters disk(const char *name, std::int64_t readBytes, std::int64_t writtenBytes)
{
    DiskCounters counters;
    counters.name = name;
    counters.type = name;
    counters.readBytes = readBytes;
    counters.writtenBytes = writtenBytes;
    return counters;
}

qint64 number(const QVariantMap &map, QStringView key)
{
    const QVariant value = map.value(key.toString());
    EXPECT_EQ(value.typeId(), QMetaType::LongLong) << key.toString().toStdString();
    return value.toLongLong();
}

class DiskRatesTest : public ::testing::Test
{
protected:
    QVariantList sample(std::vector<DiskCounters> disks, int interval = 1)
    {
        m_sample.clear();
        m_source.answer = std::move(disks);
        return m_rates.diskStatistics(m_sample, interval).value_or(QVariantList());
    }
    QStringList types(const QVariantList &entries)
    {
        QStringList result;
        for (const QVariant &entry : entries)
            result << entry.toMap().value(QStringLiteral("IODiskType")).toString();
        return result;
    }
    fakes::DisksAnswer m_source;
    DiskRates m_rates{m_source};
    QVariantMap m_sample;
};

TEST_F(DiskRatesTest, TheFirstSampleHasTotalsOfZeroAndNoRates)
{
    const QVariantList entries = sample({disk("a", 1000, 2000)});
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(number(entries[0].toMap(), u"IODiskReadBytes"), 1000);
    EXPECT_FALSE(entries[0].toMap().contains(QStringLiteral("IODiskReadBytesPerSec")));
    EXPECT_FALSE(entries[0].toMap().contains(QStringLiteral("IODiskWrittenBytesPerSec")));
    EXPECT_EQ(number(m_sample, u"diskReadBytesPerSec"), 0);
    EXPECT_EQ(number(m_sample, u"diskWriteBytesPerSec"), 0);
}

TEST_F(DiskRatesTest, RatesArePerSecondAndSummed)
{
    sample({disk("a", 1000, 0), disk("b", 0, 100)});
    const QVariantList entries = sample({disk("a", 1301, 0), disk("b", 30, 400)}, 3);
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(number(entries[1].toMap(), u"IODiskReadBytesPerSec"), 100);
    EXPECT_EQ(number(entries[0].toMap(), u"IODiskReadBytesPerSec"), 10);
    EXPECT_EQ(number(entries[0].toMap(), u"IODiskWrittenBytesPerSec"), 100);
    EXPECT_EQ(number(m_sample, u"diskReadBytesPerSec"), 110);
    EXPECT_EQ(number(m_sample, u"diskWriteBytesPerSec"), 100);
}

TEST_F(DiskRatesTest, DisksComeInReverse)
{
    EXPECT_EQ(types(sample({disk("a", 1, 0), disk("b", 1, 0), disk("c", 1, 0)})),
              (QStringList{QStringLiteral("c"), QStringLiteral("b"), QStringLiteral("a")}));
}

TEST_F(DiskRatesTest, ADiskThatDidNothingIsLeftOutButKeepsItsPlace)
{
    sample({disk("a", 0, 0), disk("b", 100, 0)});
    const QVariantList entries = sample({disk("a", 0, 0), disk("b", 150, 0)});
    ASSERT_EQ(types(entries), (QStringList{QStringLiteral("b")}));
    EXPECT_EQ(number(entries[0].toMap(), u"IODiskReadBytesPerSec"), 50);
}

TEST_F(DiskRatesTest, ADiskWithoutACounterShiftsTheRatesBehindIt)
{
    DiskCounters silent;
    sample({silent, disk("b", 100, 0), disk("c", 1000, 0)});
    const QVariantList entries = sample({silent, disk("b", 150, 0), disk("c", 1500, 0)});
    ASSERT_EQ(types(entries), (QStringList{QStringLiteral("c"), QStringLiteral("b")}));
    // The kept totals are those of b and c, without a gap: b is measured against c's, c against
    // none.
    EXPECT_EQ(number(entries[1].toMap(), u"IODiskReadBytesPerSec"), 150 - 1000);
    EXPECT_FALSE(entries[0].toMap().contains(QStringLiteral("IODiskReadBytesPerSec")));
}

TEST_F(DiskRatesTest, EveryCounterHasItsKey)
{
    DiskCounters counters = disk("ssd", 1, 2);
    counters.readErrors = 3;
    counters.writeErrors = 4;
    counters.readLatency = 5;
    counters.writeLatency = 6;
    counters.readOperations = 7;
    counters.writeOperations = 8;
    counters.readRetries = 9;
    counters.writeRetries = 10;
    counters.readTime = 11999999;
    counters.writeTime = 12000000;
    const QVariantMap entry = sample({counters})[0].toMap();
    EXPECT_EQ(number(entry, u"IODiskReadBytes"), 1);
    EXPECT_EQ(number(entry, u"IODiskWrittenBytes"), 2);
    EXPECT_EQ(number(entry, u"IODiskReadError"), 3);
    EXPECT_EQ(number(entry, u"IODiskWrittenError"), 4);
    EXPECT_EQ(number(entry, u"IODiskReadLatent"), 5);
    EXPECT_EQ(number(entry, u"IODiskWrittenLatent"), 6);
    EXPECT_EQ(number(entry, u"IODiskReadNumber"), 7);
    EXPECT_EQ(number(entry, u"IODiskWrittenNumber"), 8);
    EXPECT_EQ(number(entry, u"IODiskReadRetries"), 9);
    EXPECT_EQ(number(entry, u"IODiskWrittenRetries"), 10);
    EXPECT_EQ(number(entry, u"IODiskReadTime"), 11);
    EXPECT_EQ(number(entry, u"IODiskWrittenTime"), 12);
    EXPECT_EQ(entry.value(QStringLiteral("IODiskType")), QVariant(QStringLiteral("ssd")));
    EXPECT_EQ(entry.size(), 13);
}

TEST_F(DiskRatesTest, WhatTheSystemDoesNotCountIsAbsent)
{
    DiskCounters counters;
    counters.readErrors = 1;
    const QVariantMap entry = sample({counters})[0].toMap();
    EXPECT_EQ(entry.keys(), (QStringList{QStringLiteral("IODiskReadError")}));
}

TEST_F(DiskRatesTest, AnyOneCounterKeepsADisk)
{
    DiskCounters busy;
    busy.writeTime = 1; // less than a millisecond still counts
    DiskCounters idle;
    idle.writeTime = 0;
    EXPECT_EQ(sample({busy, idle}).size(), 1);
}

TEST_F(DiskRatesTest, DisksThatCannotBeListedLeaveTheSampleAlone)
{
    QVariantMap dict;
    EXPECT_FALSE(m_rates.diskStatistics(dict, 1));
    EXPECT_TRUE(dict.isEmpty());
}

TEST_F(DiskRatesTest, CountersThatWentBackGiveNegativeRates)
{
    constexpr auto Most = std::numeric_limits<std::int64_t>::max();
    sample({disk("a", 1000, Most)});
    sample({disk("a", 400, std::numeric_limits<std::int64_t>::min())}, 2);
    EXPECT_EQ(number(m_sample, u"diskReadBytesPerSec"), -300);
    EXPECT_EQ(number(m_sample, u"diskWriteBytesPerSec"), 0);
}

} // namespace
} // namespace pulsebar
