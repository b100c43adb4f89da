#pragma once

namespace pulsebar::cli {

/// Exit statuses of the client.
enum ExitStatus {
    kDone = 0,
    kRefused = 1,   ///< the program answered an error
    kUsage = 2,     ///< the command line makes no sense
    kNoValue = 3,   ///< what was asked for has no value now
    kNotRunning = 4 ///< there is no program to ask
};

/// Says on the error output that there is no program to ask.
void reportNotRunning();

} // namespace pulsebar::cli
