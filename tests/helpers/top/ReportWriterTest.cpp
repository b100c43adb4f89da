#include "top/ReportWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

namespace pulsebar::top {
namespace {

Report sampleReport()
{
    Report report;
    report.time = "2026/01/02 03:04:05";
    report.counts = {3, 1, 1, 1, 0, 0, 25};
    report.system.cpu = CpuShares{352, 714, 8933};
    report.system.memory = {1536, 3000, 2000, 6536, 1656, 0, 512};
    report.system.loadAverages = {"0.52", "0.40", "0.10"};
    report.system.runnableThreads = 2;
    report.system.network = Traffic{10, 11'000'000, 20, 3000};
    report.system.disks = Traffic{1, 0, 2, std::uint64_t{20} << 30U};
    Row row;
    row.pid = 123;
    row.name = "Safari";
    row.tenthsOfPercent = 125;
    row.cpuTime = 83'450'000'000;
    row.threads = 20;
    row.runningThreads = 1;
    row.user = "user501";
    row.wakeUpsPerSecond = 100;
    row.majorFaults = 7;
    row.residentBytes = 1500 * 1024;
    row.virtualBytes = std::uint64_t{16} << 30U;
    report.rows = {row};
    return report;
}

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back().push_back(c);
    }
    return lines;
}

TEST(ReportWriter, WritesTheWholeReport)
{
    ReportWriter writer(*parseColumnList("pid,command,cpu,time,threads,user,power,sysbsd,msgsent,"
                                         "pageins,rsize,vsize"),
                        1);
    const auto lines = linesOf(writer.write(sampleReport()));
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_EQ(lines[0], "Processes: 3 total, 1 running, 1 sleeping, 1 stuck, 0 stopped, 0 zombie");
    EXPECT_EQ(lines[1], "Threads: 25 total, 2 runnable");
    EXPECT_EQ(lines[2], "2026/01/02 03:04:05");
    EXPECT_EQ(lines[3], "Load Avg: 0.52, 0.40, 0.10");
    EXPECT_EQ(lines[4], "CPU usage: 3.52% user, 7.14% sys, 89.33% idle");
    EXPECT_EQ(lines[5],
              "PhysMem: 1536M wired, 3000M active, 2000M inactive, 6536M used, 1656M free.");
    EXPECT_EQ(lines[6], "Swap: 0M used, 512M free");
    EXPECT_EQ(lines[7], "Networks: packets: 10/10M in, 20/2K out");
    EXPECT_EQ(lines[8], "Disks: 1/0K read, 2/20G written");
    EXPECT_EQ(lines[9], "");
    EXPECT_EQ(lines[10].substr(0, 24), "PID     COMMAND         ");
    EXPECT_EQ(lines[11],
              "123     Safari                   12.5   01:23.45  20/1   user501      14.5   N/A"
              "       N/A      7        1500K   16384M");
    EXPECT_EQ(lines[12], "");
}

TEST(ReportWriter, HeaderHoldsEachMarkerOnce)
{
    ReportWriter writer(*parseColumnList("pid,command,cpu"), 1);
    auto text = writer.write(sampleReport());
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const std::string marker : {"physmem: ", "cpu usage: ", "user, ", "sys, ", "%cpu"}) {
        const auto first = text.find(marker);
        ASSERT_NE(first, std::string::npos) << marker;
        EXPECT_EQ(text.find(marker, first + 1), std::string::npos) << marker;
    }
}

TEST(ReportWriter, SaysNothingWhereNothingIsKnown)
{
    ReportWriter writer(*parseColumnList("pid,command,cpu"), 1);
    auto report = sampleReport();
    report.system = {};
    const auto lines = linesOf(writer.write(report));
    EXPECT_EQ(lines[1], "Threads: 25 total");
    EXPECT_EQ(lines[3], "CPU usage: N/A% user, N/A% sys, N/A% idle");
    EXPECT_EQ(lines[4], "PhysMem: .");
    EXPECT_EQ(lines[5], "");
}

TEST(ReportWriter, EndsWithoutANewlineOnlyWhenRowsAreMissing)
{
    ReportWriter full(*parseColumnList("pid,cpu"), 1);
    EXPECT_TRUE(full.write(sampleReport()).ends_with("12.5\n"));
    EXPECT_TRUE(full.write(sampleReport()).starts_with("Processes:"));
    ReportWriter lacking(*parseColumnList("pid,cpu"), 2);
    EXPECT_TRUE(lacking.write(sampleReport()).ends_with("12.5"));
    EXPECT_TRUE(lacking.write(sampleReport()).starts_with("\nProcesses:"));
}

TEST(ReportWriter, KeepsColumnsApartWhateverTheirLength)
{
    ReportWriter writer(*parseColumnList("command,cpu"), 1);
    auto report = sampleReport();
    report.rows[0].name = std::string(40, 'x');
    const auto text = writer.write(report);
    EXPECT_NE(text.find(std::string(40, 'x') + " 12.5\n"), std::string::npos);
}

TEST(ReportWriter, PrintsLongTimesInMinutes)
{
    ReportWriter writer(*parseColumnList("pid,time"), 1);
    auto report = sampleReport();
    report.rows[0].cpuTime = 36'000'990'000'000; // ten hours and 0.99 s
    EXPECT_TRUE(writer.write(report).ends_with("600:00.99\n"));
    report.rows[0].cpuTime = std::uint64_t{45'252'330} * 1'000'000; // 12 hours, 34 minutes
    EXPECT_TRUE(writer.write(report).ends_with("754:12.33\n"));
    report.rows[0].cpuTime = std::uint64_t{1000} * 3600 * 1'000'000'000;
    EXPECT_TRUE(writer.write(report).ends_with("60000:00.00\n"));
    report.rows[0].cpuTime = 0;
    EXPECT_TRUE(writer.write(report).ends_with("00:00.00\n"));
}

TEST(ReportWriter, PrintsHugeSizesInWholeMebibytes)
{
    ReportWriter writer(*parseColumnList("pid,rsize,vsize"), 1);
    auto report = sampleReport();
    report.rows[0].residentBytes = (std::uint64_t{3} << 40U) + 1;
    report.rows[0].virtualBytes = std::uint64_t{20} << 40U; // what a sanitized program reserves
    EXPECT_TRUE(writer.write(report).ends_with(" 3145728M 20971520M\n"));
    report.rows[0].residentBytes = 0;
    report.rows[0].virtualBytes = 4096;
    EXPECT_TRUE(writer.write(report).ends_with(" 0K      4K\n"));
}

} // namespace
} // namespace pulsebar::top
