#pragma once

#include <string>
#include <vector>

namespace pulsebar::nettop {

/// What the command line asks for.
struct Options
{
    unsigned long reports = 1;  ///< -L: reports to print; 0 is endless
    unsigned long interval = 1; ///< -s: seconds from report to report, 1 .. 86400
    bool help = false;
    bool version = false;
};

struct ParsedOptions
{
    Options options;
    std::string error; ///< empty when the arguments were understood
};

/// Arguments without the program's name. Values may stand apart or be joined ("-L1"). "-m tcp" (the
/// only mode) and -c (fewer details) are taken for the sake of callers that know them.
ParsedOptions parseOptions(const std::vector<std::string> &arguments);

/// One line, without a newline.
std::string usageLine();

} // namespace pulsebar::nettop
