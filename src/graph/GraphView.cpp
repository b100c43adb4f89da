#include "graph/GraphView.h"

#include "graph/GraphPoints.h"
#include "graph/LineRaster.h"

#include <QImage>
#include <QRect>

#include <algorithm>

namespace pulsebar {

namespace {

constexpr qsizetype fewestSamples = 5;
constexpr double lineWidth = 2.0;

void fill(QImage &image, const QRect &pixels, QRgb color)
{
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y)) + pixels.left();
        std::fill(line, line + pixels.width(), color);
    }
}

QRect pixelsOf(const QImage &image, const QRectF &rect)
{
    const double scale = image.devicePixelRatio();
    return QRectF(rect.topLeft() * scale, rect.size() * scale)
        .toAlignedRect()
        .intersected(image.rect());
}

/// @param points counted upward from the bottom of the rectangle
void strokeUpward(QImage &image, const QRectF &rect, QVector<QPointF> points, const QColor &color)
{
    const double scale = image.devicePixelRatio();
    for (QPointF &point : points)
        point = QPointF(point.x(), rect.bottom() - point.y()) * scale;
    drawPolyline(image, points, lineWidth * scale, color);
}

} // namespace

void GraphView::setUsageCacheArray(const UsageCache &array)
{
    m_usageCacheArray = array;
    if (m_needsDisplay)
        m_needsDisplay();
}

void GraphView::drawRect(QImage &image, const QRectF &rect) const
{
    if (!m_viewSetting)
        return;
    const QColor background = m_viewSetting->backgroundColor();
    if (background.isValid())
        fill(image, pixelsOf(image, rect), qPremultiply(background.rgba()));
    if (m_usageCacheArray.size() >= fewestSamples)
        drawGraphInRect(image, rect);
}

void GraphView::drawGraphInRect(QImage & /*image*/, const QRectF & /*rect*/) const {}

std::optional<qsizetype> GraphView::indexAt(double /*x*/, double /*width*/) const
{
    return std::nullopt;
}

std::optional<std::size_t> GraphView::sampleAt(double x, double width) const
{
    if (m_usageCacheArray.size() < fewestSamples)
        return std::nullopt;
    const std::optional<qsizetype> index = indexAt(x, width);
    if (!index)
        return std::nullopt;
    return static_cast<std::size_t>(m_usageCacheArray.size() - 1 - *index);
}

void CPUGraphView::drawGraphInRect(QImage &image, const QRectF &rect) const
{
    strokeUpward(image, rect, cpuGraphPoints(usageCacheArray(), rect.size()),
                 viewSetting()->lineColor());
}

std::optional<qsizetype> CPUGraphView::indexAt(double x, double width) const
{
    return cpuGraphSampleAt(usageCacheArray(), width, x);
}

void NetworkGraphView::drawGraphInRect(QImage &image, const QRectF &rect) const
{
    strokeUpward(image, rect, networkGraphPoints(usageCacheArray(), rect.size()),
                 viewSetting()->lineColor());
}

} // namespace pulsebar
