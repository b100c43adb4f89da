#pragma once

#include <string>
#include <vector>

namespace pulsebar::smc {

enum class Action { Help, Version, ListKeys, ShowFans, ReadKey, WriteKey };

/// What the command line asks for.
struct Options
{
    Action action = Action::Help;
    std::string key;   ///< -k: four characters, filled up with blanks
    std::string value; ///< -w: an even number of hexadecimal digits, at most 64
};

struct ParsedOptions
{
    Options options;
    std::string error; ///< empty when the arguments were understood
};

/// Arguments without the program's name. The value of -k and -w is the next argument, or the rest
/// of the same one.
ParsedOptions parseOptions(const std::vector<std::string> &arguments);

} // namespace pulsebar::smc
