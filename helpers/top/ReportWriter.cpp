#include "top/ReportWriter.h"

#include "top/Rounding.h"

#include <utility>

namespace pulsebar::top {

namespace {

constexpr std::string_view notAvailable = "N/A";
constexpr std::uint64_t kib = 1024;
constexpr std::uint64_t mib = kib * kib;
constexpr std::uint64_t gib = mib * kib;
/// From here on a size is printed in the next larger unit.
constexpr std::uint64_t manyUnits = 10;

void addByteTotal(TextBuffer &text, std::uint64_t bytes)
{
    if (bytes >= manyUnits * gib)
        text.add(bytes / gib).add("G");
    else if (bytes >= manyUnits * mib)
        text.add(bytes / mib).add("M");
    else
        text.add(bytes / kib).add("K");
}

} // namespace

ReportWriter::ReportWriter(std::vector<Column> columns, unsigned long rowLimit)
    : m_columns(std::move(columns))
    , m_rowLimit(rowLimit)
{
}

const std::string &ReportWriter::write(const Report &report)
{
    m_text.clear();
    if (std::exchange(m_owesNewline, false))
        m_text.add("\n");
    writeHeader(report);
    writeTitles();
    for (const auto &row : report.rows)
        writeRow(row);
    if (report.rows.size() < m_rowLimit) {
        m_text.removeLast();
        m_owesNewline = true;
    }
    return m_text.text();
}

void ReportWriter::writeHeader(const Report &report)
{
    const auto &counts = report.counts;
    m_text.add("Processes: ").add(counts.total).add(" total, ").add(counts.running);
    m_text.add(" running, ").add(counts.sleeping).add(" sleeping, ").add(counts.stuck);
    m_text.add(" stuck, ").add(counts.stopped).add(" stopped, ").add(counts.zombie);
    m_text.add(" zombie\n");
    m_text.add("Threads: ").add(counts.threads).add(" total");
    if (report.system.runnableThreads)
        m_text.add(", ").add(*report.system.runnableThreads).add(" runnable");
    m_text.add("\n").add(report.time).add("\n");
    if (report.system.loadAverages) {
        const auto &[one, five, fifteen] = *report.system.loadAverages;
        m_text.add("Load Avg: ").add(one).add(", ").add(five).add(", ").add(fifteen).add("\n");
    }
    writeCpu(report.system.cpu);
    writeMemory(report.system.memory);
    writeTraffic(report.system);
    m_text.add("\n");
}

void ReportWriter::writeCpu(const std::optional<CpuShares> &cpu)
{
    const auto add = [&](unsigned CpuShares::*share) {
        if (cpu)
            m_text.decimal((*cpu).*share, 2);
        else
            m_text.add(notAvailable);
    };
    // Without figures the line still stands: a reader would search the names of processes for it.
    m_text.add("CPU usage: ");
    add(&CpuShares::user);
    m_text.add("% user, ");
    add(&CpuShares::kernel);
    m_text.add("% sys, ");
    add(&CpuShares::idle);
    m_text.add("% idle\n");
}

void ReportWriter::writeMemory(const MemoryFigures &memory)
{
    m_text.add("PhysMem: ");
    bool first = true;
    const auto add = [&](std::optional<std::uint64_t> amount, std::string_view name) {
        if (!amount)
            return;
        if (!std::exchange(first, false))
            m_text.add(", ");
        m_text.add(*amount).add("M ").add(name);
    };
    add(memory.wired, "wired");
    add(memory.active, "active");
    add(memory.inactive, "inactive");
    add(memory.used, "used");
    add(memory.free, "free");
    m_text.add(".\n");
    if (memory.swapUsed && memory.swapFree) {
        m_text.add("Swap: ").add(*memory.swapUsed).add("M used, ");
        m_text.add(*memory.swapFree).add("M free\n");
    }
}

void ReportWriter::writeTraffic(const SystemFigures &system)
{
    const auto add = [&](const Traffic &traffic, std::string_view in, std::string_view out) {
        m_text.add(traffic.inCount).add("/");
        addByteTotal(m_text, traffic.inBytes);
        m_text.add(in).add(traffic.outCount).add("/");
        addByteTotal(m_text, traffic.outBytes);
        m_text.add(out);
    };
    if (system.network) {
        m_text.add("Networks: packets: ");
        add(*system.network, " in, ", " out\n");
    }
    if (system.disks) {
        m_text.add("Disks: ");
        add(*system.disks, " read, ", " written\n");
    }
}

void ReportWriter::writeTitles()
{
    for (const auto column : m_columns) {
        const auto start = m_text.size();
        const auto &facts = factsOf(column);
        m_text.add(facts.title).padTo(start, facts.width);
    }
    m_text.trimEnd();
    m_text.add("\n");
}

void ReportWriter::writeRow(const Row &row)
{
    for (const auto column : m_columns) {
        const auto start = m_text.size();
        writeCell(column, row);
        m_text.padTo(start, factsOf(column).width);
    }
    m_text.trimEnd();
    m_text.add("\n");
}

void ReportWriter::writeCell(Column column, const Row &row)
{
    switch (column) {
    case Column::Pid:
        m_text.add(static_cast<std::uint64_t>(row.pid));
        return;
    case Column::Command:
        m_text.add(row.name);
        return;
    case Column::Cpu:
        m_text.decimal(row.tenthsOfPercent, 1);
        return;
    case Column::Time:
        return writeTime(row.cpuTime);
    case Column::Threads:
        m_text.add(row.threads);
        if (row.runningThreads.value_or(0) > 0)
            m_text.add("/").add(*row.runningThreads);
        return;
    case Column::User:
        m_text.add(row.user ? std::string_view(*row.user) : notAvailable);
        return;
    case Column::UnixCalls:
        if (row.calls)
            m_text.add(*row.calls);
        else
            m_text.add(notAvailable);
        return;
    case Column::Power:
        return writePower(row);
    case Column::PageIns:
        m_text.add(row.majorFaults);
        return;
    case Column::ResidentSize:
        return writeSize(row.residentBytes);
    case Column::VirtualSize:
        return writeSize(row.virtualBytes);
    case Column::MessagesSent:
    case Column::MessagesReceived:
    case Column::MachCalls:
        m_text.add(notAvailable); // this kernel knows no such messages and calls
        return;
    }
}

void ReportWriter::writeTime(std::uint64_t ns)
{
    constexpr std::uint64_t nsPerHundredth = 10'000'000;
    const auto hundredths = ns / nsPerHundredth;
    m_text.padded(hundredths / 6000, 2).add(":");
    m_text.padded(hundredths / 100 % 60, 2).add(".").padded(hundredths % 100, 2);
}

void ReportWriter::writeSize(std::uint64_t bytes)
{
    if (bytes >= manyUnits * mib)
        m_text.add(bytes / mib).add("M");
    else
        m_text.add(bytes / kib).add("K");
}

void ReportWriter::writePower(const Row &row)
{
    const auto tenths = rounded(row.wakeUpsPerSecond * percentPerWakeUp * 10);
    m_text.decimal(row.tenthsOfPercent + tenths, 1);
}

} // namespace pulsebar::top
