#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar::cli {

/// Carries out one command line (without the program's name) against the running program.
/// Results go to the standard output, everything else to the error output.
/// @return the exit status; for `watch` the status it ended with
int run(const QStringList &arguments);

/// The help text.
QString helpText();

} // namespace pulsebar::cli
