// What one sample costs the application, from the sampler's bytes to the published dictionary.

#include "engine/TopMonitor.h"
#include "engine/TopReportParser.h"
#include "support/FakeSources.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>

namespace {

using namespace pulsebar;

QByteArray report(int rows)
{
    QByteArray text =
        "Processes: 312 total, 2 running, 310 sleeping\n"
        "CPU usage: 3.52% user, 7.14% sys, 89.33% idle\n"
        "PhysMem: 1536M wired, 3000M active, 2000M inactive, 6536M used, 1656M free.\n"
        "PID COMMAND %CPU TIME #TH USER #MSGSENT #MSGRECV #SYSBSD #SYSMACH POWER\n";
    for (int row = 0; row < rows; ++row)
        text += QByteArray::number(1000 + row) + " Web Content " + QByteArray::number(row) +
                ".5 01:23.45 20/1 somebody N/A N/A 8910 N/A 3.2\n";
    return text;
}

void parseReport(benchmark::State &state)
{
    const int rows = static_cast<int>(state.range(0));
    const QByteArray text = report(rows);
    for (auto _ : state)
        benchmark::DoNotOptimize(parseTopReport(text, rows));
}
BENCHMARK(parseReport)->Arg(10)->Arg(20);

/// The limit: the same bytes decoded and cut into texts, without a thought about their meaning.
void cutReport(benchmark::State &state)
{
    const QByteArray text = report(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (const QString &line : QString::fromUtf8(text).split(u'\n'))
            benchmark::DoNotOptimize(line.split(u' ', Qt::SkipEmptyParts));
    }
}
BENCHMARK(cutReport)->Arg(10)->Arg(20);

void parseMegabyteOfGarbage(benchmark::State &state)
{
    const QByteArray text = "%CPU\n" + QByteArray("w 0 % ").repeated((1 << 20) / 6);
    for (auto _ : state)
        benchmark::DoNotOptimize(parseTopReport(text, 20));
}
BENCHMARK(parseMegabyteOfGarbage)->Unit(benchmark::kMillisecond);

/// A whole sample: cores, one interface, one disk, sensors, twenty processes with their records.
void publishSample(benchmark::State &state)
{
    fakes::CoreTicksAnswer cores;
    fakes::InterfacesAnswer interfaces;
    fakes::DisksAnswer disks;
    fakes::BatteryAnswer battery;
    fakes::TemperaturesAnswer temperatures;
    fakes::FansAnswer fans;
    battery.answer = {{QStringLiteral("BatteryRemainPercent"), 50.0F}};
    temperatures.answer = QVariantMap{{QStringLiteral("CPU Die"), 50.0}};
    fans.answer = fakes::fanMove({1000.0F, 1200.0F});
    TopMonitor monitor({&cores, &interfaces, &disks, nullptr, &battery, &temperatures, &fans}, {},
                       20, 1);
    monitor.setMonitorProcessUsage(true);
    const QByteArray text = report(20);
    std::uint64_t ticks = 0;
    for (auto _ : state) {
        ticks += 100;
        std::vector<CoreTicks> now;
        for (int core = 0; core < static_cast<int>(state.range(0)); ++core)
            now.push_back(fakes::core(core, ticks / 3, ticks));
        cores.answer = now;
        interfaces.answer = {fakes::ethernet(ticks, ticks)};
        DiskCounters disk;
        disk.readBytes = static_cast<std::int64_t>(ticks);
        disks.answer = {disk};
        monitor.loadTopInfo(text);
    }
}
BENCHMARK(publishSample)->Arg(2)->Arg(16)->Unit(benchmark::kMicrosecond);

/// Remembers what each benchmark took, to set them against each other at the end.
class Ratios : public benchmark::ConsoleReporter
{
public:
    Ratios()
        : ConsoleReporter(OO_Tabular)
    {
    }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            m_microseconds[run.benchmark_name()] =
                run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e6;
        ConsoleReporter::ReportRuns(runs);
    }
    void print() const
    {
        std::printf("parsing 20 rows / cutting them: %.1f\n",
                    of("parseReport/20") / of("cutReport/20"));
        std::printf("a sample of 2 cores / 1.0 ms, the floor of a program with one window: %.3f\n",
                    of("publishSample/2") / 1000.0);
    }

private:
    double of(const std::string &name) const
    {
        const auto found = m_microseconds.find(name);
        return found == m_microseconds.end() ? std::nan("") : found->second;
    }
    std::map<std::string, double> m_microseconds;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    Ratios ratios;
    benchmark::RunSpecifiedBenchmarks(&ratios);
    ratios.print();
    benchmark::Shutdown();
    return 0;
}
