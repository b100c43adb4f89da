#include "top/Sampler.h"

#include "common/Output.h"
#include "top/LiveProcesses.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

namespace pulsebar::top {

namespace {

std::unique_ptr<ProcessSource> sourceFor(const Sysroot &sysroot)
{
    if (!sysroot.isRecorded() && LiveProcesses::works())
        return std::make_unique<LiveProcesses>();
    return std::make_unique<FileProcesses>(sysroot.path("/proc"));
}

std::string timeOfDay()
{
    const auto now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 40> text{};
    const auto length = std::strftime(text.data(), text.size(), "%Y/%m/%d %H:%M:%S", &local);
    return {text.data(), length};
}

bool shows(const Options &options, Column column)
{
    return std::find(options.columns.begin(), options.columns.end(), column) !=
           options.columns.end();
}

bool showsSizes(const Options &options)
{
    return shows(options, Column::ResidentSize) || shows(options, Column::VirtualSize);
}

} // namespace

Sampler::Sampler(const Options &options, const Sysroot &sysroot)
    : m_options(options)
    , m_source(sourceFor(sysroot))
    , m_table(*m_source, options.sortKey == SortKey::Memory)
    , m_system(sysroot)
    , m_details(sysroot, options.columns)
    , m_writer(options.columns, options.rows)
{
}

WalkTime Sampler::takeTime()
{
    const auto now = monotonicNow();
    WalkTime time;
    time.lastWalkTicks = std::exchange(m_sampledAtTicks, bootTicksNow());
    const auto before = std::exchange(m_sampledAt, now);
    time.elapsed = before == 0 ? 0 : now - before;
    return time;
}

void Sampler::sample()
{
    m_report.system = m_system.read();
    auto time = takeTime();
    time.processors = m_report.system.processors;
    m_table.walk(time, m_report.system.listHint);
}

const std::string &Sampler::report()
{
    m_report.time = timeOfDay();
    m_report.counts = m_table.counts();
    m_report.rows.clear();
    for (const auto index : m_table.sorted(m_options.sortKey, m_options.rows)) {
        if (showsSizes(m_options))
            m_table.refreshSizes(index);
        m_report.rows.push_back(m_details.rowOf(m_table.processes()[index], m_sampledAt));
    }
    m_details.endReport();
    return m_writer.write(m_report);
}

} // namespace pulsebar::top
