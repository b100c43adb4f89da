#include "engine/AppUsage.h"
#include "support/QtPrinting.h"

namespace pulsebar {
namespace {

QVariantMap process(const char16_t *pid, const char16_t *name, const char16_t *share)
{
    return {{QStringLiteral("PID"), QString::fromUtf16(pid)},
            {QStringLiteral("ProcessName"), QString::fromUtf16(name)},
            {QStringLiteral("CPUUsage"), QString::fromUtf16(share)}};
}

QVariantMap infoOf(const AppUsage &usage, const QString &key)
{
    return usage.usageInfoForKey(key);
}

TEST(AppUsage, KeepsARecordPerProcess)
{
    AppUsage usage;
    usage.calcMinuteAppUsage({process(u"123", u"Safari", u"0.125000")}, 3);
    usage.calcMinuteAppUsage({process(u"123", u"Safari", u"0.375000")}, 3);
    const QVariantMap info = infoOf(usage, QStringLiteral("123//Safari"));
    EXPECT_EQ(info.value(QStringLiteral("CurrentValue")), QVariant(0.375F));
    EXPECT_EQ(info.value(QStringLiteral("AverageValue")).toDouble(), 0.25);
    EXPECT_EQ(info.value(QStringLiteral("lastAverage")), QVariant(0.125F));
    EXPECT_EQ(usage.usageCacheForKey(QStringLiteral("123//Safari")), (UsageCache{0.125F, 0.375F}));
}

TEST(AppUsage, AnswersADictionaryOfCacheAndRecord)
{
    AppUsage usage;
    usage.calcMinuteAppUsage({process(u"1", u"a", u"0.5")}, 3);
    const auto dict = usage.usageInfoDictForKey(QStringLiteral("1//a"));
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(QStringLiteral("usageCache")).toList(), (QVariantList{0.5F}));
    EXPECT_EQ(dict->value(QStringLiteral("usageInfo")).toMap(),
              infoOf(usage, QStringLiteral("1//a")));
    EXPECT_FALSE(usage.usageInfoDictForKey(QStringLiteral("2//a")));
}

TEST(AppUsage, FindsAProcessByItsNameAlone)
{
    AppUsage usage;
    usage.calcMinuteAppUsage({process(u"1", u"a//b", u"0.5"), process(u"2", u"c", u"0.25")}, 3);
    EXPECT_EQ(usage.usageCacheForKey(QStringLiteral("a//b")), (UsageCache{0.5F}));
    EXPECT_EQ(usage.usageCacheForKey(QStringLiteral("c")), (UsageCache{0.25F}));
    EXPECT_FALSE(usage.usageCacheForKey(QStringLiteral("b")));
    EXPECT_FALSE(usage.usageCacheForKey(QString()));
}

TEST(AppUsage, OfOneNameTheBusiestIsMeant)
{
    AppUsage usage;
    const QString name = QStringLiteral("helper");
    EXPECT_EQ(usage.processKeyFor(name), QString());
    for (int round = 0; round < 2; ++round) {
        QVariantList processes;
        for (int pid = 1; pid <= 20; ++pid) {
            const QString share = pid == 13 ? QStringLiteral("0.9") : QStringLiteral("0.1");
            processes += QVariantMap{{QStringLiteral("PID"), QString::number(pid)},
                                     {QStringLiteral("ProcessName"), name},
                                     {QStringLiteral("CPUUsage"), share}};
        }
        usage.calcMinuteAppUsage(processes, 3);
    }
    EXPECT_EQ(usage.processKeyFor(name), QStringLiteral("13//helper"));
    EXPECT_EQ(usage.usageCacheForKey(name), (UsageCache{0.9F, 0.9F}));
    EXPECT_EQ(usage.usageInfoForKey(name), infoOf(usage, QStringLiteral("13//helper")));
    EXPECT_EQ(usage.processKeyFor(QStringLiteral("7//helper")), QStringLiteral("7//helper"));
}

TEST(AppUsage, AnEntryWithoutANumberGoesByItsNameAndOneWithoutANameIsSkipped)
{
    AppUsage usage;
    QVariantMap nameless = process(u"1", u"a", u"0.5");
    nameless.remove(QStringLiteral("ProcessName"));
    QVariantMap numberless = process(u"1", u"b", u"0.5");
    numberless.remove(QStringLiteral("PID"));
    usage.calcMinuteAppUsage({nameless, numberless, QVariantMap()}, 3);
    EXPECT_EQ(usage.count(), 1);
    EXPECT_TRUE(usage.usageInfoDictForKey(QStringLiteral("b")));
}

TEST(AppUsage, AProcessThatIsAbsentCountsAsZeroAndIsForgottenAfterAWindow)
{
    AppUsage usage;
    const QString key = QStringLiteral("1//a");
    usage.calcMinuteAppUsage({process(u"1", u"a", u"0.5")}, 3);
    usage.calcMinuteAppUsage({}, 3);
    EXPECT_EQ(usage.usageCacheForKey(key), (UsageCache{0.5F, 0.0F}));
    usage.calcMinuteAppUsage({}, 3);
    EXPECT_TRUE(usage.usageInfoDictForKey(key));
    usage.calcMinuteAppUsage({}, 3);
    EXPECT_FALSE(usage.usageInfoDictForKey(key));
    EXPECT_EQ(usage.count(), 0);

    usage.calcMinuteAppUsage({process(u"1", u"a", u"0.25")}, 3);
    EXPECT_EQ(usage.usageCacheForKey(key), (UsageCache{0.25F}));
}

TEST(AppUsage, AnIdleProcessIsNotForgottenBeforeAWholeWindow)
{
    AppUsage usage;
    usage.calcMinuteAppUsage({process(u"1", u"a", u"0.000000")}, 2);
    EXPECT_EQ(usage.count(), 1);
    usage.calcMinuteAppUsage({process(u"1", u"a", u"0.000000")}, 2);
    EXPECT_EQ(usage.count(), 0);
}

TEST(AppUsage, StaysBoundedWhileProcessesComeAndGo)
{
    AppUsage usage;
    for (int sample = 0; sample < 500; ++sample) {
        const QString pid = QString::number(sample);
        usage.calcMinuteAppUsage(
            {QVariantMap{{QStringLiteral("PID"), pid},
                         {QStringLiteral("ProcessName"), QStringLiteral("short")},
                         {QStringLiteral("CPUUsage"), QStringLiteral("0.1")}}},
            5);
    }
    EXPECT_LE(usage.count(), 5);
}

} // namespace
} // namespace pulsebar
