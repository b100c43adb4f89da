#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <QString>

namespace pulsebar {

class GraphView;

enum class GraphButtonLook { Hidden, Plain, Hovered, Pressed };

/// All that a graph window shows, beside its graph.
struct GraphPictureContent
{
    QString caption;
    QString lastValue;
    QColor characterColor{Qt::white};
    GraphButtonLook closeButton = GraphButtonLook::Hidden;
    GraphButtonLook settingButton = GraphButtonLook::Hidden;
    bool closeButtonFocused = false;
    bool settingButtonFocused = false;

    bool operator==(const GraphPictureContent &) const = default;
};

/// Where things stand in a window of a size, in points from its top left corner.
struct GraphLayout
{
    QRectF closeButton;
    QRectF settingButton;
    QRectF caption;   ///< a text too long for it is cut, with an ellipsis
    QRectF lastValue; ///< right-aligned
};
GraphLayout graphLayout(QSize size, double textHeight);

/// The whole content of a graph window as one image, drawn at the screen's scale and kept, so that
/// a fade only shows it with another opacity: what lies over what must not show through.
class GraphPicture
{
public:
    /// Draws what changed since the last time: graph, texts and buttons.
    /// @param size in points
    /// @param graphChanged the view has to be drawn anew
    const QImage &draw(const GraphView &view, const GraphPictureContent &content, QSize size,
                       double scale, bool graphChanged);

private:
    QImage m_graph;
    QImage m_image;
    GraphPictureContent m_content;
};

} // namespace pulsebar
