#pragma once

#include "top/ProcessTable.h"
#include "top/ReportWriter.h"
#include "top/RowDetails.h"

#include <memory>

namespace pulsebar::top {

/// Takes samples of the machine and turns them into reports.
class Sampler
{
public:
    Sampler(const Options &options, const Sysroot &sysroot);

    /// Measures everything once; rates are those since the call before.
    void sample();
    /// The text of the last sample's report, valid until the next.
    const std::string &report();

private:
    WalkTime takeTime();

    Options m_options;
    std::unique_ptr<ProcessSource> m_source;
    ProcessTable m_table;
    SystemReader m_system;
    RowDetails m_details;
    ReportWriter m_writer;
    Report m_report;
    std::uint64_t m_sampledAt = 0;
    std::uint64_t m_sampledAtTicks = 0;
};

} // namespace pulsebar::top
