#include "platform/linux_/low/proc_stat.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pulsebar {

namespace {

/// Columns after the word "cpu": user nice system idle iowait irq softirq ...
enum Column { User, Nice, System, Idle, IoWait, Irq, SoftIrq, ColumnCount };

std::optional<CpuTicks> parseColumns(Scan &scan)
{
    std::array<std::uint64_t, ColumnCount> columns{};
    std::size_t found = 0;
    for (; found < columns.size(); ++found) {
        const auto value = scan.number();
        if (!value)
            break;
        columns[found] = *value;
    }
    if (found <= Idle)
        return std::nullopt;
    return CpuTicks{columns[User], columns[Nice], columns[System] + columns[Irq] + columns[SoftIrq],
                    columns[Idle] + columns[IoWait]};
}

/// N of "cpuN"; absent for any other word.
std::optional<int> processorNumber(std::string_view word)
{
    constexpr std::string_view prefix = "cpu";
    if (!word.starts_with(prefix) || word.size() == prefix.size() || word[prefix.size()] == '-')
        return std::nullopt;
    int number = 0;
    const char *end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data() + prefix.size(), end, number);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

} // namespace

std::optional<CpuTicks> parseTotalTicks(std::string_view text)
{
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        if (scan.word() == "cpu")
            return parseColumns(scan);
    }
    return std::nullopt;
}

ProcStatSummary parseProcStatSummary(std::string_view text)
{
    ProcStatSummary summary;
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        const auto word = scan.word().value_or(std::string_view());
        if (word == "cpu")
            summary.total = parseColumns(scan);
        else if (processorNumber(word))
            ++summary.processors;
        else if (word == "processes")
            summary.forks = scan.number();
        else if (word == "procs_running")
            summary.running = scan.number();
        else if (word == "procs_blocked")
            summary.blocked = scan.number();
    }
    return summary;
}

std::optional<std::vector<NumberedCpuTicks>> parseNumberedTicks(std::string_view text)
{
    std::vector<NumberedCpuTicks> list;
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        const auto word = scan.word();
        // The processors stand first: the long lines of interrupt counts need not be walked.
        if (!word || !word->starts_with("cpu"))
            break;
        const auto number = processorNumber(*word);
        if (!number)
            continue;
        if (const auto ticks = parseColumns(scan))
            list.push_back({*number, *ticks});
    }
    if (list.empty())
        return std::nullopt;
    std::stable_sort(list.begin(), list.end(), [](const auto &left, const auto &right) {
        return left.number < right.number;
    });
    return list;
}

} // namespace pulsebar
