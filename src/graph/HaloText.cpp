#include "graph/HaloText.h"

#include "graph/PixelBlend.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <vector>

namespace pulsebar {

namespace {

/// In points: how far the halo reaches, and over how much of that it fades.
constexpr double haloReach = 2.0;
constexpr double haloFade = 1.0;
/// A text that is longer is not shown whole in any window.
constexpr qsizetype longestText = 512;

/// Pixels and not points: letters are then fitted to the grid of the screen that they are on.
QFont fontForScale(const QFont &font, double scale)
{
    QFont scaled = font;
    scaled.setPixelSize(std::max(1, int(std::lround(QFontInfo(font).pixelSize() * scale))));
    scaled.setStyleStrategy(
        QFont::StyleStrategy(scaled.styleStrategy() | QFont::NoSubpixelAntialias));
    return scaled;
}

/// A name may hold anything; what would break the line is shown as a character that is not there.
QString oneLine(const QString &text)
{
    QString line = text.left(longestText);
    for (QChar &c : line) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            c = QChar::ReplacementCharacter;
    }
    return line;
}

bool isLight(const QColor &color)
{
    return qGray(color.rgb()) >= 128;
}

QRgb haloColor(const QColor &text)
{
    return qPremultiply(isLight(text) ? qRgba(0, 0, 0, 210) : qRgba(255, 255, 255, 225));
}

/// How strongly a letter's pixel shows at 0, 1, 2, … pixels beside it; 0 to 256.
std::vector<quint32> haloProfile(double scale)
{
    const double reach = haloReach * scale;
    std::vector<quint32> profile;
    for (int distance = 0; distance < reach + 0.5; ++distance) {
        const double strength = (reach + 0.5 - distance) / (haloFade * scale);
        profile.push_back(quint32(256 * std::clamp(strength, 0.0, 1.0)));
    }
    return profile;
}

class AlphaPlane
{
public:
    AlphaPlane(int width, int height)
        : m_width(width)
        , m_height(height)
        , m_alpha(std::size_t(width) * std::size_t(height))
    {
    }

    /// Of a text, whose thin strokes hardly cover a pixel: each counts double.
    static AlphaPlane of(const QImage &image)
    {
        AlphaPlane plane(image.width(), image.height());
        for (int y = 0; y < plane.m_height; ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            std::transform(line, line + plane.m_width, plane.row(y),
                           [](QRgb pixel) { return quint8(std::min(255, 2 * qAlpha(pixel))); });
        }
        return plane;
    }

    /// Spreads along one direction after the other, which makes a soft square of each pixel.
    AlphaPlane spread(const std::vector<quint32> &profile) const
    {
        AlphaPlane wide(m_width, m_height);
        AlphaPlane result(m_width, m_height);
        for (int distance = 0; distance < int(profile.size()); ++distance) {
            const quint32 strength = profile[std::size_t(distance)];
            for (int y = 0; y < m_height; ++y) {
                wide.addRow(y, distance, row(y), strength);
                wide.addRow(y, -distance, row(y), strength);
            }
        }
        for (int distance = 0; distance < int(profile.size()); ++distance) {
            const quint32 strength = profile[std::size_t(distance)];
            for (int y = 0; y < m_height - distance; ++y) {
                result.addRow(y, 0, wide.row(y + distance), strength);
                result.addRow(y + distance, 0, wide.row(y), strength);
            }
        }
        return result;
    }

    quint8 *row(int y) { return m_alpha.data() + std::size_t(y) * std::size_t(m_width); }
    const quint8 *row(int y) const
    {
        return m_alpha.data() + std::size_t(y) * std::size_t(m_width);
    }

private:
    void addRow(int y, int shift, const quint8 *source, quint32 strength)
    {
        quint8 *target = row(y);
        const int first = std::max(0, shift);
        const int last = std::min(m_width, m_width + shift);
        for (int x = first; x < last; ++x)
            target[x] = std::max(target[x], quint8((source[x - shift] * strength) >> 8U));
    }

    int m_width;
    int m_height;
    std::vector<quint8> m_alpha;
};

/// Puts a halo under what an image shows.
void addHalo(QImage &image, QRgb color, double scale)
{
    const AlphaPlane halo = AlphaPlane::of(image).spread(haloProfile(scale));
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const quint8 *strength = halo.row(y);
        for (int x = 0; x < image.width(); ++x) {
            if (strength[x] != 0)
                line[x] = pixelOver(line[x], scaledPixel(color, strength[x]));
        }
    }
}

QTextLine layOutLine(QTextLayout &layout)
{
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line;
}

} // namespace

double lineHeight(const QFont &font)
{
    return QFontMetricsF(font).height();
}

void HaloText::draw(const Content &content, double room)
{
    if (m_content == content && m_room == room)
        return;
    const bool otherFont =
        m_room < 0 || m_content.font != content.font || m_content.scale != content.scale;
    m_content = content;
    if (otherFont)
        scaleFont();
    m_room = room;
    m_image = QImage();
    m_width = 0;
    if (!content.text.isEmpty() && content.color.isValid() && room > 0)
        layOut();
}

void HaloText::scaleFont()
{
    m_scaledFont = fontForScale(m_content.font, m_content.scale);
    m_fontAscent = QFontMetricsF(m_scaledFont).ascent();
}

void HaloText::layOut()
{
    const double scale = m_content.scale;
    const double room = m_room * scale;
    QTextLayout layout(oneLine(m_content.text), m_scaledFont);
    QTextLine line = layOutLine(layout);
    if (line.naturalTextWidth() > room) {
        layout.setText(QFontMetricsF(m_scaledFont).elidedText(layout.text(), Qt::ElideRight, room));
        line = layOutLine(layout);
    }
    if (!line.isValid() || layout.text().isEmpty())
        return;
    m_width = line.naturalTextWidth() / scale;
    const int margin = int(std::ceil(haloReach * scale)) + 1;
    // The baseline is the font's, also where letters were taken from another, taller one.
    const double raised = std::max(0.0, std::ceil(line.ascent() - m_fontAscent));
    m_offset = QPoint(margin, margin + int(raised));
    m_image =
        QImage(int(std::ceil(line.naturalTextWidth())) + 2 * margin,
               int(std::ceil(line.height())) + 2 * margin, QImage::Format_ARGB32_Premultiplied);
    m_image.fill(Qt::transparent);
    QPainter painter(&m_image);
    painter.setPen(m_content.color);
    layout.draw(&painter, QPointF(margin, margin) - line.naturalTextRect().topLeft());
    painter.end();
    addHalo(m_image, haloColor(m_content.color), scale);
}

void HaloText::showOn(QImage &image, QPoint topLeft) const
{
    if (m_image.isNull())
        return;
    QPainter painter(&image);
    // The image's pixels are meant, whatever it says about points.
    painter.scale(1 / image.devicePixelRatio(), 1 / image.devicePixelRatio());
    painter.drawImage(topLeft - m_offset, m_image);
}

} // namespace pulsebar
