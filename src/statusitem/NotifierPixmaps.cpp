#include "statusitem/NotifierPixmaps.h"

#include "statusitem/TitleText.h"

#include <array>

namespace pulsebar {

namespace {

// The sizes panels ask for, at single and double density.
constexpr std::array squares{22, 24, 32, 48};
constexpr int lineHeight = 22;
// A panel that scales the pixmap to its own height draws it sharp at the usual ones.
constexpr std::array panelHeights{24, 28, 48};

QImage drawSquare(const PixmapContent &content, int extent, const Ink &ink)
{
    return content.style == PixmapStyle::ShortText ? drawShortText(content.drawn, extent, ink)
                                                   : drawIcon(content.drawn, extent, ink);
}

QImage drawWide(const PixmapContent &content, int height, const Ink &ink)
{
    const int scale = height / lineHeight;
    return drawLine(content.drawn, {lineWidth(content.drawn, height, scale), height}, scale, ink);
}

} // namespace

PixmapContent pixmapContentOf(const ItemContent &content, PixmapStyle style, bool dark)
{
    PixmapContent result{style, {}, dark};
    // A program's icon has colours of its own; the sign alone can be drawn so that it is noticed.
    if (!content.attention || style != PixmapStyle::Icon) {
        result.drawn.image = content.image;
    }
    result.drawn.attention = content.attention;
    if (style == PixmapStyle::ShortText) {
        result.drawn.title = shortTitle(content.title);
    } else if (style == PixmapStyle::WideText || style == PixmapStyle::WideOnly) {
        result.drawn = content;
    }
    return result;
}

ItemPixmapList renderPixmaps(const PixmapContent &content)
{
    const Ink ink =
        content.drawn.attention ? attentionInkOnPanel(content.dark) : inkOnPanel(content.dark);
    ItemPixmapList pixmaps;
    if (content.style == PixmapStyle::WideOnly) {
        for (const int height : panelHeights) {
            pixmaps.append(encoded(drawWide(content, height, ink)));
        }
        return pixmaps;
    }
    if (content.style == PixmapStyle::WideText) {
        // One square for panels that insist; the text is what such a panel shows.
        pixmaps.append(encoded(drawIcon(content.drawn, squares.front(), ink)));
        pixmaps.append(encoded(drawWide(content, lineHeight, ink)));
        pixmaps.append(encoded(drawWide(content, 2 * lineHeight, ink)));
        return pixmaps;
    }
    for (const int extent : squares) {
        pixmaps.append(encoded(drawSquare(content, extent, ink)));
    }
    return pixmaps;
}

} // namespace pulsebar
