#pragma once

#include <QCursor>
#include <QObject>

#include <optional>

namespace pulsebar {

/// The two diagonal cursors over a graph window's corners, from artwork of our own. Each is made on
/// the first request and is the same from then on.
class ResizeCursors : public QObject
{
    Q_OBJECT
    /// From the top left to the bottom right.
    Q_PROPERTY(QCursor southeastResizeCursor READ southeastResizeCursor CONSTANT)
    /// From the top right to the bottom left.
    Q_PROPERTY(QCursor southwestResizeCursor READ southwestResizeCursor CONSTANT)

public:
    using QObject::QObject;

    const QCursor &southeastResizeCursor();
    const QCursor &southwestResizeCursor();

private:
    std::optional<QCursor> m_southeastResizeCursor;
    std::optional<QCursor> m_southwestResizeCursor;
};

} // namespace pulsebar
