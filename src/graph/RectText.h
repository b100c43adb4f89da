#pragma once

#include <QRectF>
#include <QString>

#include <optional>

namespace pulsebar {

/// "{{200, 300.5}, {640, 480}}": origin, then size; the shortest decimals that read back exactly.
/// What is not finite is written as 0.
QString textFromRect(const QRectF &rect);

/// Reads what textFromRect() wrote. Absent for anything else, numbers that are not finite included.
std::optional<QRectF> rectFromText(const QString &text);

} // namespace pulsebar
