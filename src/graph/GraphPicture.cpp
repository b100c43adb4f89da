#include "graph/GraphPicture.h"

#include "graph/ButtonArt.h"
#include "graph/GraphView.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pulsebar {

namespace {

/// How deep the window's edges, and how large its corners, are for resizing.
constexpr double edge = 8;
constexpr double corner = 16;
constexpr double textTop = 2;
constexpr double betweenTexts = 6;
constexpr double smallestButton = 14;
constexpr double largestButton = 20;

/// The close button; the setting button mirrors it.
QRectF closeButtonBox(QSize size, double textBottom)
{
    const double room = size.height() - edge - textBottom - 1;
    const double extent = std::clamp(room, smallestButton, largestButton);
    const double top = std::min(std::ceil(textBottom) + 1, size.height() - edge - extent);
    const bool besideCorner = top >= corner && top + extent <= size.height() - corner;
    return {besideCorner ? edge : corner, std::floor(top), std::floor(extent), std::floor(extent)};
}

/// A pixel that is touched counts; what the multiplication adds by rounding does not.
QSize pixelSize(QSize size, double scale)
{
    const auto pixels = [scale](int points) { return int(std::ceil(points * scale - 1e-6)); };
    return {pixels(size.width()), pixels(size.height())};
}

QPoint rounded(QPointF point)
{
    return {int(std::lround(point.x())), int(std::lround(point.y()))};
}

} // namespace

GraphLayout graphLayout(QSize size, double textHeight, double lastValueWidth)
{
    GraphLayout layout;
    const double left = edge;
    const double room = std::max(0.0, size.width() - 2 * edge);
    const double valueWidth = std::min(lastValueWidth, room);
    const double captionWidth = std::max(0.0, room - valueWidth - betweenTexts);
    layout.caption = QRectF(left, textTop, captionWidth, textHeight);
    layout.lastValue = QRectF(left + room - valueWidth, textTop, valueWidth, textHeight);
    layout.closeButton = closeButtonBox(size, textTop + textHeight);
    layout.settingButton = layout.closeButton;
    layout.settingButton.moveRight(size.width() - layout.closeButton.left());
    return layout;
}

bool GraphPicture::GraphSource::isSameAs(const GraphSource &other) const
{
    // Both hold on to the samples, so nobody can change them where they are.
    return view == other.view && samples.constData() == other.samples.constData() &&
           samples.size() == other.samples.size() && line == other.line &&
           background == other.background && size == other.size && scale == other.scale;
}

const QImage &GraphPicture::draw(const GraphView &view, const GraphPictureContent &content,
                                 QSize size, double scale)
{
    const bool graphChanged = drawGraph(view, size, scale);
    if (!graphChanged && content == m_content)
        return m_image;
    m_content = content;
    if (m_image.size() != m_graph.size())
        m_image = QImage(m_graph.size(), m_graph.format());
    m_image.setDevicePixelRatio(scale);
    std::copy_n(m_graph.constBits(), m_graph.sizeInBytes(), m_image.bits());
    drawTexts();
    drawButtons();
    return m_image;
}

bool GraphPicture::drawGraph(const GraphView &view, QSize size, double scale)
{
    const GraphViewSetting *setting = view.viewSetting();
    GraphSource source{&view,
                       view.usageCacheArray(),
                       setting ? setting->lineColor() : QColor(),
                       setting ? setting->backgroundColor() : QColor(),
                       size,
                       scale};
    if (!m_graph.isNull() && source.isSameAs(m_source))
        return false;
    m_source = std::move(source);
    const QSize pixels = pixelSize(size, scale);
    if (m_graph.size() != pixels)
        m_graph = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    m_graph.setDevicePixelRatio(scale);
    m_graph.fill(Qt::transparent);
    view.drawRect(m_graph, QRectF(QPointF(0, 0), size));
    return true;
}

void GraphPicture::drawTexts()
{
    const QSize size = m_source.size;
    const double scale = m_source.scale;
    const auto drawnAs = [&](const QString &text) {
        return HaloText::Content{text, m_content.font, m_content.characterColor, scale};
    };
    const double textHeight = lineHeight(m_content.font);
    const double wholeLine = graphLayout(size, textHeight, size.width()).lastValue.width();
    m_lastValue.draw(drawnAs(m_content.lastValue), wholeLine);
    const GraphLayout layout = graphLayout(size, textHeight, m_lastValue.width());
    m_caption.draw(drawnAs(m_content.caption), layout.caption.width());
    m_caption.showOn(m_image, rounded(layout.caption.topLeft() * scale));
    m_lastValue.showOn(m_image, rounded(layout.lastValue.topLeft() * scale));
}

void GraphPicture::drawButtons()
{
    if (m_content.closeButton == GraphButtonLook::Hidden &&
        m_content.settingButton == GraphButtonLook::Hidden)
        return;
    const GraphLayout layout = graphLayout(m_source.size, lineHeight(m_content.font));
    drawGraphButton(m_image, layout.closeButton, GraphButton::Close, m_content.closeButton,
                    m_content.closeButtonFocused);
    drawGraphButton(m_image, layout.settingButton, GraphButton::Setting, m_content.settingButton,
                    m_content.settingButtonFocused);
}

} // namespace pulsebar
