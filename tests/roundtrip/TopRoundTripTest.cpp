#include "common/ProcessName.h"
#include "engine/TopReportParser.h"
#include "top/ReportWriter.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace pulsebar {
namespace {

using namespace top;

const std::vector<Column> allColumns =
    *parseColumnList("pid,command,cpu,time,threads,user,msgsent,msgrecv,sysbsd,sysmach,power,"
                     "pageins,rsize,vsize");

Row rowNamed(std::string_view name, int pid = 42)
{
    Row row;
    row.pid = pid;
    row.name = nameForRow(name);
    row.tenthsOfPercent = 125;
    row.cpuTime = 83'450'000'000;
    row.threads = 20;
    row.runningThreads = 1;
    row.user = "root";
    row.calls = 8910;
    row.majorFaults = 7;
    row.residentBytes = 24U << 20U;
    row.virtualBytes = 1U << 30U;
    return row;
}

Report reportOf(std::vector<Row> rows)
{
    Report report;
    report.time = "2026/01/02 03:04:05";
    report.counts.total = rows.size();
    report.system.cpu = CpuShares{352, 714, 8933};
    report.system.memory.wired = 1536;
    report.system.memory.used = 6536;
    report.system.memory.free = 1656;
    report.system.loadAverages = {"0.52", "0.40", "0.10"};
    report.system.network = Traffic{1, 2048, 3, 4096};
    report.system.disks = Traffic{5, 1U << 20U, 6, 1U << 30U};
    report.rows = std::move(rows);
    return report;
}

TopReport readBack(const Report &report, int listMax)
{
    ReportWriter writer(allColumns, static_cast<unsigned long>(listMax));
    return parseTopReport(QByteArray::fromStdString(writer.write(report)), listMax);
}

QString textOf(const QVariant &entry, const char *key)
{
    return entry.toMap().value(QLatin1String(key)).toString();
}

/// Three rows, the middle one with the name: each must come back with every column in its place.
void expectComesBackWhole(std::string_view name)
{
    SCOPED_TRACE(testing::PrintToString(std::string(name)));
    const auto written = rowNamed(name);
    const auto parsed = readBack(reportOf({rowNamed("first", 1), written, rowNamed("last", 3)}), 3);
    ASSERT_EQ(parsed.processList.size(), 3);
    EXPECT_EQ(textOf(parsed.processList[0], "ProcessName"), QStringLiteral("first"));
    EXPECT_EQ(textOf(parsed.processList[2], "ProcessName"), QStringLiteral("last"));
    const auto &entry = parsed.processList[1];
    EXPECT_EQ(textOf(entry, "ProcessName").toStdString(), written.name);
    EXPECT_EQ(textOf(entry, "PID"), QStringLiteral("42"));
    EXPECT_EQ(textOf(entry, "CPUUsage"), QStringLiteral("0.125000"));
    EXPECT_EQ(textOf(entry, "CPUTime"), QStringLiteral("01:23.45"));
    EXPECT_EQ(textOf(entry, "Thread"), QStringLiteral("20/1"));
    EXPECT_EQ(textOf(entry, "User"), QStringLiteral("root"));
    EXPECT_EQ(textOf(entry, "UNIXSystemCall"), QStringLiteral("8910"));
    EXPECT_EQ(textOf(entry, "EnergyUsage"), QStringLiteral("12.5"));
    EXPECT_EQ(textOf(entry, "PageIns"), QStringLiteral("7"));
    EXPECT_EQ(textOf(entry, "RealMemorySize"), QStringLiteral("24M"));
    EXPECT_FALSE(entry.toMap().contains(QStringLiteral("MachMessageSent")));
    EXPECT_FALSE(entry.toMap().contains(QStringLiteral("MachSystemCall")));
    EXPECT_EQ(parsed.user, QStringLiteral("3.52"));
    EXPECT_EQ(parsed.sys, QStringLiteral("7.14"));
    EXPECT_EQ(parsed.idle, QStringLiteral("89.33"));
    EXPECT_EQ(parsed.memoryStats.value(QStringLiteral("wired")), QStringLiteral("1536M"));
}

TEST(TopRoundTrip, NamesThatLookLikeColumnsStayNames)
{
    for (const auto *name : {"Safari",
                             "Google Chrome H",
                             "Web 2.5 Server",
                             "a 1 2.5 b",
                             "a 0.0",
                             "0.0",
                             "0.0 0.0",
                             "12.5 12.5",
                             "x 1,5",
                             "50% done",
                             "a 50% 2.5%",
                             "%CPU",
                             "x %CPU y",
                             "N/A",
                             "N/A x",
                             "x N/A",
                             "N/A 2.5",
                             "",
                             " ",
                             "   ",
                             " lead",
                             "trail ",
                             "a  b",
                             "a   2.5  ",
                             "1",
                             "-1.5",
                             "x -1.5",
                             "x .5",
                             "x +.5",
                             "x 5.",
                             "x inf.",
                             "x NaN,",
                             "x 1e5.",
                             "x 0x1.8",
                             ",",
                             ".",
                             "x , y",
                             "PhysMem: 5M used.",
                             "CPU usage: 9% user, 9% sys, 9% idle",
                             "user, 5%",
                             "a\nb",
                             "a\n7 evil 9.9 00:01.00",
                             "a\tb",
                             "\x01\x7f",
                             "\xff\xfe 2.5",
                             "caf\xc3\xa9 1.0",
                             "cut\xe2\x82",
                             "\xe2\x80\xa8",
                             "x \xe2\x80\x83 3.5",
                             "\xc2\xa0",
                             "x \u00a02.5",
                             "\xe3\x80\x80",
                             "\xef\xbb\xbf",
                             "\u202eevil",
                             ") R 1 2 3",
                             "(sd-pam)",
                             "kworker/0:1H-kblockd",
                             "15 truncated ch"})
        expectComesBackWhole(name);
}

TEST(TopRoundTrip, PlainNamesAreNotTouched)
{
    for (const auto *name : {"Safari", "Google Chrome H", "kworker/u8:3-ext4", "Isolated Web Co",
                             "caf\xc3\xa9 au lait", "(sd-pam)", "v2.5", "a-b_c d 2 e3"})
        EXPECT_EQ(nameForRow(name), name);
}

/// Names made of the pieces that make trouble, and of any bytes.
class NameGenerator
{
public:
    std::string next()
    {
        std::string name;
        const auto pieces = pick(7);
        for (unsigned i = 0; i < pieces; ++i)
            name += pick(4) == 0 ? std::string(1, static_cast<char>(pick(256))) : piece();
        return name;
    }

private:
    unsigned pick(unsigned limit)
    {
        return std::uniform_int_distribution<unsigned>(0, limit - 1)(m_random);
    }
    std::string piece()
    {
        static const std::vector<std::string> list{" ",
                                                   "  ",
                                                   "2.5",
                                                   "0.0",
                                                   "0",
                                                   "%",
                                                   ".",
                                                   ",",
                                                   "N/A",
                                                   "%CPU",
                                                   "a",
                                                   "Web",
                                                   "\n",
                                                   "\t",
                                                   "inf",
                                                   "nan",
                                                   "1e3",
                                                   "user, ",
                                                   "CPU usage: ",
                                                   "-",
                                                   "+",
                                                   "1,5",
                                                   ")",
                                                   "(",
                                                   "\xc2\xa0",
                                                   "\xe2\x80\x83",
                                                   "\xe2\x80\xa9",
                                                   "00",
                                                   "/",
                                                   "é",
                                                   "字",
                                                   ":",
                                                   "PhysMem: ",
                                                   "sys, ",
                                                   "\xff",
                                                   "\xe2\x90\xa3"};
        return list[pick(static_cast<unsigned>(list.size()))];
    }

    std::mt19937 m_random{20260102};
};

TEST(TopRoundTrip, AnyNameComesBackAsOneNameInOneRow)
{
    NameGenerator names;
    for (int i = 0; i < 20'000 && !testing::Test::HasFailure(); ++i)
        expectComesBackWhole(names.next());
}

TEST(TopRoundTrip, FewerRowsThanExpectedYieldNoNamelessEntry)
{
    ReportWriter writer(allColumns, 10);
    for (int i = 0; i < 3; ++i) {
        const auto text = writer.write(reportOf({rowNamed("one"), rowNamed("two")}));
        const auto parsed = parseTopReport(QByteArray::fromStdString(text), 10);
        ASSERT_EQ(parsed.processList.size(), 2);
        EXPECT_EQ(textOf(parsed.processList[1], "ProcessName"), QStringLiteral("two"));
        EXPECT_EQ(parsed.user, QStringLiteral("3.52"));
    }
    const auto empty = parseTopReport(QByteArray::fromStdString(writer.write(reportOf({}))), 10);
    EXPECT_TRUE(empty.processList.isEmpty());
}

TEST(TopRoundTrip, NamesCannotStandInForAMissingHeaderLine)
{
    auto report = reportOf({rowNamed("PhysMem: 5M used, 6M free."), rowNamed("user, 5% sys, 6%")});
    report.system = {};
    const auto parsed = readBack(report, 2);
    EXPECT_TRUE(parsed.memoryStats.isEmpty());
    EXPECT_EQ(parsed.user, QStringLiteral("N/A"));
    EXPECT_EQ(parsed.sys, QStringLiteral("N/A"));
}

TEST(TopRoundTrip, SharesOfEveryKindKeepTheirColumn)
{
    for (const std::uint32_t tenths : {0U, 1U, 4U, 5U, 9U, 10U, 999U, 1000U, 12'345U, 640'000U}) {
        auto row = rowNamed("name 2");
        row.tenthsOfPercent = tenths;
        const auto parsed = readBack(reportOf({row}), 1);
        ASSERT_EQ(parsed.processList.size(), 1);
        const auto &entry = parsed.processList[0];
        EXPECT_EQ(textOf(entry, "ProcessName"), QStringLiteral("name 2"));
        EXPECT_NEAR(textOf(entry, "CPUUsage").toDouble(), tenths / 1000.0, 1e-6);
        EXPECT_EQ(textOf(entry, "CPUTime"), QStringLiteral("01:23.45"));
    }
}

TEST(TopRoundTrip, WhatMayNotBeReadIsLeftOut)
{
    auto row = rowNamed("quiet");
    row.user.reset();
    row.calls.reset();
    const auto parsed = readBack(reportOf({row}), 1);
    const auto entry = parsed.processList[0].toMap();
    EXPECT_FALSE(entry.contains(QStringLiteral("User")));
    EXPECT_FALSE(entry.contains(QStringLiteral("UNIXSystemCall")));
    EXPECT_EQ(textOf(entry, "EnergyUsage"), QStringLiteral("12.5"));
}

} // namespace
} // namespace pulsebar
