#pragma once

#include <QStringList>

#include <optional>

namespace pulsebar {

/// Looks at the command line before anything else is started; help and version need no display.
/// @param arguments without the program's name
/// @return the exit status when there is nothing more to do; absent when the program is to run
std::optional<int> handleCommandLine(const QStringList &arguments);

} // namespace pulsebar
