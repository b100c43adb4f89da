#pragma once

#include "top/Columns.h"

#include <string>
#include <vector>

namespace pulsebar::top {

enum class SortKey {
    Cpu,    ///< by CPU, then by CPU time
    Memory, ///< by resident memory, then as Cpu
};

/// What the command line asks for.
struct Options
{
    unsigned long reports = 0;       ///< -l: reports to print; 0 is endless
    unsigned long rows = noRowLimit; ///< -n: processes per report
    unsigned long interval = 1;      ///< -s: seconds from report to report, 1 .. 86400
    SortKey sortKey = SortKey::Cpu;  ///< -u or -o rsize, whichever stands last
    std::vector<Column> columns;     ///< -stats, in the order given
    bool help = false;
    bool version = false;

    static constexpr unsigned long noRowLimit = ~0UL;
};

struct ParsedOptions
{
    Options options;
    std::string error; ///< empty when the arguments were understood
};

/// Arguments without the program's name. -R (no memory object map) is taken for the sake of
/// callers that know it and changes nothing. A negative number of rows counts as none.
ParsedOptions parseOptions(const std::vector<std::string> &arguments);

/// One line, without a newline.
std::string usageLine();

} // namespace pulsebar::top
