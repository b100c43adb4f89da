#pragma once

#include "top/Options.h"
#include "top/ProcessTable.h"
#include "top/Row.h"
#include "top/SystemFigures.h"
#include "top/TextBuffer.h"

namespace pulsebar::top {

/// Each wake-up is weighed as 200 microseconds of one core: leaving an idle state and filling the
/// caches again costs about that much energy. 100 wake-ups a second make 2.0.
constexpr double percentPerWakeUp = 0.02;

/// Everything that one report says.
struct Report
{
    std::string time; ///< local date and time of day
    StateCounts counts;
    SystemFigures system;
    std::vector<Row> rows;
};

/// Writes reports as text. Readers look for "CPU usage: ", "user, ", "sys, ", "PhysMem: " and the
/// first "%CPU" anywhere in a report, so no other line of the header holds one of these.
class ReportWriter
{
public:
    /// `rowLimit`: rows that readers expect at most.
    ReportWriter(std::vector<Column> columns, unsigned long rowLimit);

    /// The text of a report, valid until the next call. The last row of a report that has fewer
    /// rows than the limit ends without a newline (a reader would take the nothing after it for
    /// another row); the next report then begins with it.
    const std::string &write(const Report &report);

private:
    void writeHeader(const Report &report);
    void writeCpu(const std::optional<CpuShares> &cpu);
    void writeMemory(const MemoryFigures &memory);
    void writeTraffic(const SystemFigures &system);
    void writeTitles();
    void writeRow(const Row &row);
    void writeCell(Column column, const Row &row);
    void writeTime(std::uint64_t ns);
    void writeSize(std::uint64_t bytes);
    void writePower(const Row &row);

    std::vector<Column> m_columns;
    unsigned long m_rowLimit;
    bool m_owesNewline = false;
    TextBuffer m_text;
};

} // namespace pulsebar::top
