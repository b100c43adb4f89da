#pragma once

#include <QStringView>
#include <QtGlobal>

#include <optional>

namespace pulsebar {

/// The process number that a text is, and nothing but is: ASCII digits without a leading zero, and
/// a number of at least 2 that a process can have. To a program that sends signals anything else
/// may mean something larger: 0 its own group, -1 everybody, -412 a whole group, and 1 is the
/// system itself.
std::optional<qint64> processNumber(QStringView text);

} // namespace pulsebar
