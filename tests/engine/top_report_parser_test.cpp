#include "engine/TopReportParser.h"
#include "support/QtPrinting.h"

#include <chrono>
#include <random>

namespace pulsebar {
namespace {

QVariantMap entryOf(const QByteArray &row)
{
    const TopReport report = parseTopReport("PID COMMAND %CPU TIME\n" + row, 1);
    return report.processList.value(0).toMap();
}

QString valueOf(const QVariantMap &map, QStringView key)
{
    const QVariant value = map.value(key.toString());
    EXPECT_EQ(value.typeId(), QMetaType::QString) << key.toString().toStdString();
    return value.toString();
}

const QByteArray WorkedExample =
    "CPU usage: 3.52% user, 7.14% sys, 89.33% idle\n"
    "PhysMem: 8167M used (1536M wired), 24M unused.\n"
    "PID COMMAND %CPU TIME #TH USER #MSGSENT #MSGRECV #SYSBSD #SYSMACH POWER\n"
    "123 Safari 12.5 01:23.45 20/1 user501 1234 567 8910 1112 3.2\n"
    "456 Google Chrome H 0.0 00:00.10 5 user501 10 5 100 50 0.0\n"
    "789 kernel_task 1.0 10:00.00 150 root N/A N/A 1 2 0.0\n";

TEST(TopReport, TheHeaderLinesOfAWorkedExample)
{
    const TopReport report = parseTopReport(WorkedExample, 3);
    EXPECT_EQ(report.text, QString::fromUtf8(WorkedExample));
    const QVariantMap memory{{QStringLiteral("used"), QStringLiteral("8167M")},
                             {QStringLiteral("wired"), QStringLiteral("1536M")},
                             {QStringLiteral("unused"), QStringLiteral("24M")}};
    EXPECT_EQ(report.memoryStats, memory);
    EXPECT_EQ(report.user, QStringLiteral("3.52"));
    EXPECT_EQ(report.sys, QStringLiteral("7.14"));
    EXPECT_EQ(report.idle, QStringLiteral("89.33"));
    EXPECT_EQ(report.total, QStringLiteral("10.669998"));
}

QVariantMap entry(std::initializer_list<std::pair<const char16_t *, const char16_t *>> values)
{
    QVariantMap map;
    for (const auto &[key, value] : values)
        map.insert(QString::fromUtf16(key), QString::fromUtf16(value));
    return map;
}

TEST(TopReport, TheRowsOfAWorkedExample)
{
    const TopReport report = parseTopReport(WorkedExample, 3);
    ASSERT_EQ(report.processList.size(), 3);
    EXPECT_EQ(report.processList[0].toMap(), entry({{u"PID", u"123"},
                                                    {u"ProcessName", u"Safari"},
                                                    {u"CPUUsage", u"0.125000"},
                                                    {u"CPUTime", u"01:23.45"},
                                                    {u"Thread", u"20/1"},
                                                    {u"User", u"user501"},
                                                    {u"MachMessageSent", u"1234"},
                                                    {u"MachMessageRecieve", u"567"},
                                                    {u"UNIXSystemCall", u"8910"},
                                                    {u"MachSystemCall", u"1112"},
                                                    {u"EnergyUsage", u"3.2"}}));
    EXPECT_EQ(report.processList[1].toMap(), entry({{u"PID", u"456"},
                                                    {u"ProcessName", u"Google Chrome H"},
                                                    {u"CPUUsage", u"0.000000"},
                                                    {u"CPUTime", u"00:00.10"},
                                                    {u"Thread", u"5"},
                                                    {u"User", u"user501"},
                                                    {u"MachMessageSent", u"10"},
                                                    {u"MachMessageRecieve", u"5"},
                                                    {u"UNIXSystemCall", u"100"},
                                                    {u"MachSystemCall", u"50"},
                                                    {u"EnergyUsage", u"0.0"}}));
    EXPECT_EQ(report.processList[2].toMap(), entry({{u"PID", u"789"},
                                                    {u"ProcessName", u"kernel_task"},
                                                    {u"CPUUsage", u"0.010000"},
                                                    {u"CPUTime", u"10:00.00"},
                                                    {u"Thread", u"150"},
                                                    {u"User", u"root"},
                                                    {u"UNIXSystemCall", u"1"},
                                                    {u"MachSystemCall", u"2"},
                                                    {u"EnergyUsage", u"0.0"}}));
}

TEST(TopReport, TheEnergyOfAWorkedExample)
{
    const TopReport report = parseTopReport(WorkedExample, 3);
    EXPECT_EQ(report.energyUsageDict,
              entry({{u"Safari", u"3.2"}, {u"Google Chrome H", u"0.0"}, {u"kernel_task", u"0.0"}}));
    EXPECT_EQ(report.energyConsumption, 3.2F);
}

TEST(TopReport, TheMemoryLineOfOurSampler)
{
    const TopReport report = parseTopReport(
        "PhysMem: 1536M wired, 3000M active, 2000M inactive, 6536M used, 1656M free.\n", 0);
    EXPECT_EQ(report.memoryStats, entry({{u"wired", u"1536M"},
                                         {u"active", u"3000M"},
                                         {u"inactive", u"2000M"},
                                         {u"used", u"6536M"},
                                         {u"free", u"1656M"}}));
}

TEST(TopReport, BlanksAndBracketsInTheMemoryLine)
{
    EXPECT_EQ(parseTopReport("PhysMem:     1M  a,   2M b (3M    c).\n", 0).memoryStats,
              entry({{u"a", u"1M"}, {u"b", u"2M"}, {u"c", u"3M"}}));
    // Each width is replaced once, so of seventeen blanks two stay.
    EXPECT_EQ(parseTopReport("PhysMem: 1M" + QByteArray(17, ' ') + "a.", 0).memoryStats,
              entry({{u" a", u"1M"}}));
    EXPECT_EQ(parseTopReport("PhysMem: ).", 0).memoryStats, QVariantMap());
    EXPECT_EQ(parseTopReport("PhysMem: 1M used", 0).memoryStats, QVariantMap());
    EXPECT_EQ(parseTopReport("PhysMem: 1M, 2M x, 3M x.", 0).memoryStats, entry({{u"x", u"3M"}}));
}

TEST(TopReport, MarkersAreFoundInAnyCase)
{
    const TopReport report = parseTopReport("cpu USAGE: 1.0% USER, 2.0% SYS, 97.0% idle\n"
                                            "physmem: 1M used.\npid %cpu\n7 x 1.5\n",
                                            1);
    EXPECT_EQ(report.user, QStringLiteral("1.0"));
    EXPECT_EQ(report.sys, QStringLiteral("2.0"));
    EXPECT_EQ(report.total, QStringLiteral("3.000000"));
    EXPECT_EQ(report.memoryStats.size(), 1);
    EXPECT_EQ(report.processList.size(), 1);
}

TEST(TopReport, SystemAndIdleAreLookedForInTheWholeText)
{
    const TopReport report = parseTopReport("user, 5.0%\nsys, 60.0%\n", 0);
    EXPECT_FALSE(report.user);
    EXPECT_EQ(report.sys, QStringLiteral("5.0"));
    EXPECT_EQ(report.idle, QStringLiteral("60.0"));
    EXPECT_EQ(report.total, QStringLiteral("40.000000"));
}

TEST(TopReport, TheTotalIsADifferenceOfSinglePrecision)
{
    const auto total = [](const QByteArray &idle) {
        return parseTopReport("CPU usage: 1% user, 1% sys, " + idle + "% idle\n", 1).total;
    };
    EXPECT_EQ(total("3.30"), QStringLiteral("96.699997"));
    EXPECT_EQ(total("0.00"), QStringLiteral("100.000000"));
    EXPECT_EQ(total("100.00"), QStringLiteral("0.000000"));
}

TEST(TopReport, ATextWithoutMarkersHasOnlyATotal)
{
    const TopReport report = parseTopReport("nothing to see\n", 5);
    EXPECT_TRUE(report.text);
    EXPECT_EQ(report.total, QStringLiteral("100.000000"));
    EXPECT_FALSE(report.user || report.sys || report.idle);
    EXPECT_TRUE(report.memoryStats.isEmpty());
    EXPECT_TRUE(report.processList.isEmpty());
    EXPECT_TRUE(report.energyUsageDict.isEmpty());
}

TEST(TopReport, AnEmptyChunkIsAnEmptyText)
{
    const TopReport report = parseTopReport({}, 5);
    EXPECT_EQ(report.text, QString());
    EXPECT_EQ(report.total, QStringLiteral("100.000000"));
    EXPECT_TRUE(report.processList.isEmpty());
}

TEST(TopReport, TextThatIsNotUtf8IsAbsentAsAWhole)
{
    for (const QByteArray &bad : {QByteArray("\xff"), QByteArray("\xc3"),
                                  QByteArray("\xed\xa0\x80"), QByteArray("\xc0\xaf")}) {
        const TopReport report = parseTopReport(WorkedExample + bad, 3);
        EXPECT_FALSE(report.text) << bad.toHex().toStdString();
        EXPECT_EQ(report.total, QStringLiteral("100.000000"));
        EXPECT_TRUE(report.memoryStats.isEmpty());
        EXPECT_TRUE(report.processList.isEmpty());
        EXPECT_TRUE(report.energyUsageDict.isEmpty());
    }
}

TEST(TopReport, FewerRowsThanAskedForEndWithTheEmptyLine)
{
    const TopReport report = parseTopReport("%CPU x\n1 a 1.0\n", 5);
    ASSERT_EQ(report.processList.size(), 2);
    EXPECT_EQ(report.processList[1].toMap(), QVariantMap());
    EXPECT_EQ(parseTopReport("%CPU x\n1 a 1.0", 5).processList.size(), 1);
}

TEST(TopReport, NoMoreRowsThanAskedForAreRead)
{
    EXPECT_EQ(parseTopReport(WorkedExample, 2).processList.size(), 2);
    const TopReport none = parseTopReport(WorkedExample, 0);
    EXPECT_TRUE(none.processList.isEmpty());
    EXPECT_TRUE(none.energyUsageDict.isEmpty());
    EXPECT_TRUE(parseTopReport(WorkedExample, -3).processList.isEmpty());
}

TEST(TopReport, ARowWithAnEnergyAndNoNameCountsInTheSumOnly)
{
    const TopReport report = parseTopReport("%CPU\n1 N/A 1.0 a b c d e f g 2.5", 1);
    EXPECT_TRUE(report.energyUsageDict.isEmpty());
    EXPECT_EQ(report.energyConsumption, 2.5F);
}

TEST(TopReportRow, ANameOfThreeWordsIsPutTogether)
{
    const QVariantMap row = entryOf("5 Web  Content   Process 0.0 00:01.00");
    EXPECT_EQ(valueOf(row, u"ProcessName"), QStringLiteral("Web Content Process"));
    EXPECT_EQ(valueOf(row, u"CPUUsage"), QStringLiteral("0.000000"));
    EXPECT_EQ(valueOf(row, u"CPUTime"), QStringLiteral("00:01.00"));
}

TEST(TopReportRow, ABareIntegerBelongsToTheName)
{
    const QVariantMap row = entryOf("5 Quake 2 30.5 00:01.00");
    EXPECT_EQ(valueOf(row, u"ProcessName"), QStringLiteral("Quake 2"));
    EXPECT_EQ(valueOf(row, u"CPUUsage"), QStringLiteral("0.305000"));
}

TEST(TopReportRow, WhatLooksLikeACpuShareEndsTheName)
{
    EXPECT_EQ(valueOf(entryOf("5 a 1,5 t"), u"CPUUsage"), QStringLiteral("0.010000"));
    EXPECT_EQ(valueOf(entryOf("5 a 12.5% t"), u"CPUUsage"), QStringLiteral("0.125000"));
    EXPECT_EQ(valueOf(entryOf("5 a b.c 2.0 t"), u"ProcessName"), QStringLiteral("a b.c"));
    EXPECT_EQ(valueOf(entryOf("5 a 0.00 2.0 t"), u"ProcessName"), QStringLiteral("a 0.00"));
    EXPECT_EQ(valueOf(entryOf("5 a 0,0 2.0 t"), u"ProcessName"), QStringLiteral("a 0,0"));
    EXPECT_EQ(valueOf(entryOf("5 a N/A 2.0 t"), u"ProcessName"), QStringLiteral("a N/A"));
    EXPECT_EQ(valueOf(entryOf("5 a 50%x 2.0 t"), u"ProcessName"), QStringLiteral("a 50x"));
    EXPECT_EQ(valueOf(entryOf("5 a nan. inf. 2.0 t"), u"ProcessName"),
              QStringLiteral("a nan. inf."));
}

TEST(TopReportRow, AnUnavailableColumnIsLeftOut)
{
    const QVariantMap row = entryOf("N/A name 1.0 N/A 4 n/a N/A 7");
    EXPECT_FALSE(row.contains(QStringLiteral("PID")));
    EXPECT_FALSE(row.contains(QStringLiteral("CPUTime")));
    EXPECT_EQ(valueOf(row, u"Thread"), QStringLiteral("4"));
    EXPECT_EQ(valueOf(row, u"User"), QStringLiteral("n/a"));
    EXPECT_FALSE(row.contains(QStringLiteral("MachMessageSent")));
    EXPECT_EQ(valueOf(row, u"MachMessageRecieve"), QStringLiteral("7"));
}

TEST(TopReportRow, MemoryColumnsAreKeptAndTheLastOneIsDropped)
{
    const QVariantMap row = entryOf("1 a 1.0 3 4 5 6 7 8 9 10 11 12M 99M 100M");
    EXPECT_EQ(valueOf(row, u"EnergyUsage"), QStringLiteral("10"));
    EXPECT_EQ(valueOf(row, u"PageIns"), QStringLiteral("11"));
    EXPECT_EQ(valueOf(row, u"RealMemorySize"), QStringLiteral("12M"));
    EXPECT_EQ(row.size(), 13);
}

TEST(TopReportRow, WhiteSpaceAroundIsNoColumn)
{
    const QVariantMap row = entryOf(" \t 1   a 1.0  \r");
    EXPECT_EQ(valueOf(row, u"PID"), QStringLiteral("1"));
    EXPECT_EQ(row.size(), 3);
    EXPECT_EQ(entryOf("   \t"), QVariantMap());
    // A blank that does not break is part of a name.
    EXPECT_EQ(valueOf(entryOf("1 a\xc2\xa0 \xc2\xa0"
                              "b 1.0"),
                      u"ProcessName"),
              QStringLiteral("a\u00a0 \u00a0b"));
}

TEST(TopReportRow, ARowThatIsOnlyAName)
{
    const QVariantMap row = entryOf("1 a b c d");
    EXPECT_EQ(valueOf(row, u"ProcessName"), QStringLiteral("a b c d"));
    EXPECT_EQ(row.size(), 2);
}

/// Texts made of pieces that mean something to the parser.
QByteArray jumble(std::mt19937 &random, int pieces)
{
    static const std::array<QByteArray, 24> words{
        "PhysMem: ", "CPU usage: ", "user, ", "sys, ", "%",   "%CPU",     "\n",   ".",
        ", ",        " (",          ")",      " ",     "N/A", "0.0",      "12.5", "1,5",
        "1e999",     "name",        "\t",     "\r\n",  "-",   "\xc3\xa4", "7",    "    "};
    QByteArray text;
    std::uniform_int_distribution<std::size_t> pick(0, words.size() - 1);
    for (int i = 0; i < pieces; ++i)
        text += words[pick(random)];
    return text;
}

TEST(TopReportProperties, AnyTextGivesAWellFormedReport)
{
    std::mt19937 random(20260101);
    for (int round = 0; round < 3000; ++round) {
        const QByteArray text = jumble(random, round % 120);
        const int listMax = round % 7;
        const TopReport report = parseTopReport(text, listMax);
        ASSERT_LE(report.processList.size(), listMax);
        ASSERT_FALSE(report.total.contains(QStringLiteral("inf")));
        for (const QVariant &element : report.processList) {
            const QVariantMap row = element.toMap();
            ASSERT_LE(row.size(), 13);
            for (const QVariant &value : row)
                ASSERT_FALSE(value.toString().contains(u'\n')) << text.toStdString();
            ASSERT_FALSE(row.contains(QStringLiteral("CPUTime")) &&
                         !row.contains(QStringLiteral("CPUUsage")));
        }
    }
}

double millisecondsFor(const QByteArray &text)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_LE(parseTopReport(text, 20).processList.size(), 20);
    const auto end = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::milli>(end - begin).count();
}

/// Quadratic work on a megabyte would take minutes.
TEST(TopReportProperties, AMegabyteOfAnythingIsQuick)
{
    constexpr qsizetype Megabyte = 1 << 20;
    const QByteArray heads = "%CPU\n";
    for (const QByteArray &text :
         {QByteArray(Megabyte, '\0'), heads + QByteArray("w ").repeated(Megabyte / 2),
          heads + QByteArray(Megabyte, '9') + ".9", heads + "1 a " + QByteArray(Megabyte, '%'),
          heads + QByteArray(Megabyte, '\n'), QByteArray("%CP").repeated(Megabyte / 3),
          "PhysMem: " + QByteArray("1M x, (").repeated(Megabyte / 7) + ".",
          "PhysMem: " + QByteArray(Megabyte, ' ') + ".", QByteArray("CPU usage:").repeated(100000),
          heads + "1 a " + QByteArray("0.").repeated(Megabyte / 2)})
        EXPECT_LT(millisecondsFor(text), 5000.0) << text.left(12).toStdString();
}

} // namespace
} // namespace pulsebar
