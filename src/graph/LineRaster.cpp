#include "graph/LineRaster.h"

#include "graph/PixelBlend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace pulsebar {

namespace {

/// From the middle of an edge to where the pixels are no longer touched by it.
constexpr double blur = 0.5;

struct Segment
{
    QPointF from;
    QPointF to;
};

/// On which side of a stroke a pixel lies. Steep strokes have a left and a right side, flat ones
/// are passed above or below.
enum Side { Left, Right, Above, Below, SideCount };

/// How much of a pixel is covered, 0 to 255, by strokes on whose sides it lies. Strokes that it
/// passes on one side cover the same part of it, so the widest counts. What comes from opposite
/// sides, as inside a sharp bend, adds up.
struct Coverage
{
    std::array<quint8, SideCount> by{};

    quint32 total() const
    {
        const int across = by[Left] + by[Right];
        const int upright = by[Above] + by[Below];
        return quint32(std::min(255, std::max(across, upright)));
    }
};

/// The coverage of an area's pixels. Memory of a row is cleared as far as it is used.
class CoverageMask
{
public:
    explicit CoverageMask(const QRect &area)
        : m_area(area)
        , m_rows(std::size_t(area.height()))
        , m_coverage(std::make_unique_for_overwrite<Coverage[]>(std::size_t(area.width()) *
                                                                std::size_t(area.height())))
    {
    }

    const QRect &area() const { return m_area; }

    /// The row's pixels, the first being at the area's left; [first, last) may be written.
    Coverage *writable(int y, int first, int last)
    {
        Row &row = m_rows[std::size_t(y - m_area.top())];
        Coverage *pixels = pixelsOf(y);
        if (row.first >= row.last)
            row = {first, first};
        if (first < row.first) {
            std::fill(pixels + first, pixels + row.first, Coverage());
            row.first = first;
        }
        if (last > row.last) {
            std::fill(pixels + row.last, pixels + last, Coverage());
            row.last = last;
        }
        return pixels;
    }

    void blendInto(QImage &image, QRgb color) const
    {
        for (int y = m_area.top(); y <= m_area.bottom(); ++y) {
            const Row row = m_rows[std::size_t(y - m_area.top())];
            if (row.first >= row.last)
                continue;
            const Coverage *coverage = pixelsOf(y);
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y)) + m_area.left();
            for (int x = row.first; x < row.last; ++x) {
                const quint32 part = coverage[x].total();
                if (part != 0)
                    line[x] = pixelOver(scaledPixel(color, part), line[x]);
            }
        }
    }

private:
    struct Row
    {
        int first = 0;
        int last = 0;
    };

    Coverage *pixelsOf(int y) const
    {
        return m_coverage.get() + std::size_t(y - m_area.top()) * std::size_t(m_area.width());
    }

    QRect m_area;
    std::vector<Row> m_rows;
    std::unique_ptr<Coverage[]> m_coverage;
};

/// What is left of a range of numbers.
struct Interval
{
    double low;
    double high;

    /// Keeps those x for which low limit <= factor * x + offset <= high limit.
    void keepWithin(double factor, double offset, double lowLimit, double highLimit)
    {
        if (std::abs(factor) < 1e-12) {
            if (offset < lowLimit || offset > highLimit)
                high = low - 1;
            return;
        }
        const auto [least, greatest] =
            std::minmax({(lowLimit - offset) / factor, (highLimit - offset) / factor});
        low = std::max(low, least);
        high = std::min(high, greatest);
    }
};

/// A straight stroke with round ends, drawn downward when it is steep, to the right otherwise.
class Stroke
{
public:
    Stroke(const Segment &segment, double radius)
        : m_radius(radius)
    {
        QPointF way = segment.to - segment.from;
        m_steep = std::abs(way.y()) > std::abs(way.x());
        const bool turned = (m_steep ? way.y() : way.x()) < 0;
        m_from = turned ? segment.to : segment.from;
        m_length = std::hypot(way.x(), way.y());
        if (m_length > 0)
            m_direction = (turned ? -way : way) / m_length;
    }

    void addTo(CoverageMask &mask) const
    {
        const double reach = m_radius + blur;
        const double endY = m_from.y() + m_direction.y() * m_length;
        const auto [top, bottom] = std::minmax({m_from.y(), endY});
        const QRect &area = mask.area();
        const int first = std::max(area.top(), int(std::floor(top - reach)));
        const int last = std::min(area.bottom(), int(std::ceil(bottom + reach)));
        for (int y = first; y <= last; ++y)
            addRow(mask, y);
    }

private:
    void addRow(CoverageMask &mask, int y) const
    {
        const double reach = m_radius + blur;
        // From the stroke's beginning to the centre of the row's first pixel.
        const QPointF offset(mask.area().left() + 0.5 - m_from.x(), y + 0.5 - m_from.y());
        // The same, along the stroke and beside it.
        const double along = QPointF::dotProduct(m_direction, offset);
        const double beside = m_direction.x() * offset.y() - m_direction.y() * offset.x();
        Interval touched{0, double(mask.area().width() - 1)};
        touched.keepWithin(-m_direction.y(), beside, -reach, reach);
        touched.keepWithin(m_direction.x(), along, -reach, m_length + reach);
        const int first = int(std::ceil(touched.low));
        const int last = int(std::floor(touched.high)) + 1;
        if (first >= last)
            return;
        Coverage *pixels = mask.writable(y, first, last);
        for (int x = first; x < last; ++x)
            addPixel(pixels[x], {offset.x() + x, offset.y()}, along + m_direction.x() * x,
                     beside - m_direction.y() * x);
    }

    void addPixel(Coverage &pixel, QPointF offset, double along, double beside) const
    {
        double distance = std::abs(beside);
        bool beyondLine = m_steep ? beside < 0 : beside > 0;
        const double part = std::clamp(along, 0.0, m_length);
        if (part != along) {
            // Beside the end, whose side is that of the point and not of the line's continuation.
            const QPointF away = offset - m_direction * part;
            distance = std::hypot(along - part, beside);
            beyondLine = (m_steep ? away.x() : away.y()) > 0;
        }
        const double covered = std::clamp(m_radius + blur - distance, 0.0, 1.0);
        quint8 &side = pixel.by[std::size_t((m_steep ? Left : Above) + (beyondLine ? 1 : 0))];
        side = std::max(side, quint8(covered * 255 + 0.5));
    }

    QPointF m_from;
    QPointF m_direction{1, 0};
    double m_length = 0;
    double m_radius;
    bool m_steep = false;
};

bool isFinite(QPointF point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// Beyond this no difference can be seen, and no sum of two overflows.
QPointF withinReason(QPointF point)
{
    constexpr double farthest = 1e9;
    return {std::clamp(point.x(), -farthest, farthest), std::clamp(point.y(), -farthest, farthest)};
}

/// Cuts a segment to what lies in a rectangle; false when nothing does.
bool cutTo(const QRectF &box, Segment &segment)
{
    const QPointF way = segment.to - segment.from;
    Interval part{0, 1};
    part.keepWithin(way.x(), segment.from.x(), box.left(), box.right());
    part.keepWithin(way.y(), segment.from.y(), box.top(), box.bottom());
    if (part.low > part.high)
        return false;
    segment = {segment.from + way * part.low, segment.from + way * part.high};
    return true;
}

/// The line's straight pieces as far as they touch the image.
std::vector<Segment> visibleSegments(const QVector<QPointF> &points, const QRectF &box)
{
    std::vector<Segment> segments;
    segments.reserve(std::size_t(points.size()));
    const auto add = [&](Segment segment) {
        if (cutTo(box, segment))
            segments.push_back(segment);
    };
    for (qsizetype i = 0; i < points.size(); ++i) {
        if (!isFinite(points[i]))
            continue;
        const QPointF point = withinReason(points[i]);
        const bool continues = i > 0 && isFinite(points[i - 1]);
        if (continues)
            add({withinReason(points[i - 1]), point});
        else if (i + 1 == points.size() || !isFinite(points[i + 1]))
            add({point, point});
    }
    return segments;
}

QRect areaTouchedBy(const std::vector<Segment> &segments, double reach, const QRect &limit)
{
    QPointF least = segments.front().from;
    QPointF greatest = least;
    for (const Segment &segment : segments) {
        for (const QPointF point : {segment.from, segment.to}) {
            least = {std::min(least.x(), point.x()), std::min(least.y(), point.y())};
            greatest = {std::max(greatest.x(), point.x()), std::max(greatest.y(), point.y())};
        }
    }
    const QRectF touched = QRectF(least, greatest).adjusted(-reach, -reach, reach, reach);
    return touched.toAlignedRect().intersected(limit);
}

} // namespace

void drawPolyline(QImage &image, const QVector<QPointF> &points, double width, const QColor &color)
{
    if (image.isNull() || !color.isValid() || color.alpha() == 0 || !(width > 0))
        return;
    const double radius = width / 2;
    // What is cut off must not show its new round end.
    const double margin = radius + 2;
    const QRectF box = QRectF(image.rect()).adjusted(-margin, -margin, margin, margin);
    const std::vector<Segment> segments = visibleSegments(points, box);
    if (segments.empty())
        return;
    const QRect area = areaTouchedBy(segments, radius + blur, image.rect());
    if (area.isEmpty())
        return;
    CoverageMask mask(area);
    for (const Segment &segment : segments)
        Stroke(segment, radius).addTo(mask);
    mask.blendInto(image, qPremultiply(color.rgba()));
}

} // namespace pulsebar
