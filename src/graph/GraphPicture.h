#pragma once

#include "engine/UsageCache.h"
#include "graph/HaloText.h"

#include <QColor>
#include <QFont>
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
    QFont font; ///< of both texts; the application's own unless another is set
    GraphButtonLook closeButton = GraphButtonLook::Hidden;
    GraphButtonLook settingButton = GraphButtonLook::Hidden;
    bool closeButtonFocused = false;
    bool settingButtonFocused = false;

    bool operator==(const GraphPictureContent &) const = default;
};

/// Where things stand in a window of a size, in points from its top left corner. The buttons keep
/// clear of the edges and corners by which a window is resized.
struct GraphLayout
{
    QRectF closeButton;
    QRectF settingButton;
    QRectF caption;   ///< a text too long for it is cut, with an ellipsis
    QRectF lastValue; ///< right-aligned; what it needs is taken from the caption
};

/// @param textHeight of a line of text; see lineHeight()
/// @param lastValueWidth what the newest value needs
GraphLayout graphLayout(QSize size, double textHeight, double lastValueWidth = 0.0);

/// The whole content of a graph window as one image, drawn at the screen's scale and kept, so that
/// a fade only shows it with another opacity: what lies over what must not show through.
class GraphPicture
{
public:
    /// Draws what changed since the last time: the graph when its samples, its colours or the size
    /// are others, a text when it reads differently, and lays them over each other.
    /// @param size in points
    /// @param scale pixels in a point
    /// @return premultiplied ARGB, with `scale` as its devicePixelRatio
    const QImage &draw(const GraphView &view, const GraphPictureContent &content, QSize size,
                       double scale);

private:
    /// What the graph that is kept was drawn from.
    struct GraphSource
    {
        const GraphView *view = nullptr;
        UsageCache samples;
        QColor line;
        QColor background;
        QSize size;
        double scale = 0.0;

        bool isSameAs(const GraphSource &other) const;
    };

    bool drawGraph(const GraphView &view, QSize size, double scale);
    void drawTexts();
    void drawButtons();

    GraphSource m_source;
    GraphPictureContent m_content;
    HaloText m_caption;
    HaloText m_lastValue;
    QImage m_graph;
    QImage m_image;
};

} // namespace pulsebar
