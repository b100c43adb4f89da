// What one sample costs the application, from the sampler's bytes to the published dictionary.

#include "engine/TopMonitor.h"
#include "engine/TopReportParser.h"
#include "support/FakeSources.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

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

/// The limit: the same bytes decoded and nothing else.
void decodeReport(benchmark::State &state)
{
    const QByteArray text = report(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(QString::fromUtf8(text));
}
BENCHMARK(decodeReport)->Arg(20);

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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
