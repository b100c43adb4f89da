#pragma once

#include "platform/SensorNames.h"
#include "platform/SmcTransport.h"
#include "smc/Options.h"

#include <cstdio>

namespace pulsebar::smc {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;

/// What the program works on and writes to.
struct Surroundings
{
    SmcTransport &controller;
    const SensorNames &names;
    std::FILE *out = stdout;
    std::FILE *errors = stderr;
};

/// Does what was asked for, but for Action::Help and Action::Version.
/// @return kDone; kFailed, after a line to `errors`, when there is no controller or no such key, or
///     when it could not be read or written
int run(const Options &options, const Surroundings &surroundings);

} // namespace pulsebar::smc
