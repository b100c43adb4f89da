#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace pulsebar {

/// The dictionary that NetworkMonitor::topDict() describes, made of what pulsebar-nettop has
/// written: comma-separated lines of time, name, interface, state, bytes received, bytes sent and
/// at least one field more. A name that begins with "tcp" is a connection of the process above it,
/// any other is a process; of two with the same name the later one counts. A line that begins with
/// "time", one with fewer fields, and a connection without a process are left out.
/// @param report UTF-8; what is none stands in the texts as U+FFFD
/// @param previous the output of the run before, which the growth is counted from
QVariantMap parseNettopReport(const QByteArray &report, const QByteArray &previous);

} // namespace pulsebar
