#include "graph/LineRaster.h"

#include "graph/PixelBlend.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>
#include <vector>

namespace pulsebar {

namespace {

/// Wide enough for every button, and small enough for distances as whole numbers.
constexpr double largestRadius = 8192;
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

    bool isNone() const { return std::bit_cast<quint32>(by) == 0; }
    quint32 total() const
    {
        const int across = by[Left] + by[Right];
        const int upright = by[Above] + by[Below];
        return quint32(std::min(255, std::max(across, upright)));
    }
};

/// A colour at each coverage, premultiplied.
using Tints = std::array<QRgb, 256>;

Tints tintsOf(const QColor &color)
{
    const QRgb pixel = qPremultiply(color.rgba());
    Tints tints{};
    for (quint32 part = 0; part < tints.size(); ++part)
        tints[part] = scaledPixel(pixel, part);
    return tints;
}

/// The coverage of one row of pixels at a time. Memory is cleared as far as it is used.
class CoverageRow
{
public:
    explicit CoverageRow(int width)
        : m_pixels(std::make_unique_for_overwrite<Coverage[]>(std::size_t(width)))
        , m_width(width)
    {
    }

    int width() const { return m_width; }

    /// The pixels from x = 0 on; [first, last) may be written.
    Coverage *writable(int first, int last)
    {
        Coverage *pixels = m_pixels.get();
        if (m_first >= m_last)
            m_first = m_last = first;
        if (first < m_first) {
            std::fill(pixels + first, pixels + m_first, Coverage());
            m_first = first;
        }
        if (last > m_last) {
            std::fill(pixels + m_last, pixels + last, Coverage());
            m_last = last;
        }
        return pixels;
    }

    /// Blends the colour into the row's pixels, and is empty again.
    void blendInto(QRgb *line, const Tints &tints)
    {
        for (int x = m_first; x < m_last; ++x) {
            // Most pixels of a row lie between strokes.
            if (m_pixels[std::size_t(x)].isNone())
                continue;
            line[x] = pixelOver(tints[m_pixels[std::size_t(x)].total()], line[x]);
        }
        m_first = m_last = 0;
    }

private:
    std::unique_ptr<Coverage[]> m_pixels;
    int m_width;
    int m_first = 0;
    int m_last = 0;
};

/// What is left of a range of numbers.
struct Interval
{
    double low;
    double high;

    /// Keeps those x for which low limit <= factor * x + offset <= high limit.
    /// @param inverse 1 / factor; of no account where the factor is as good as 0
    void keepWithin(double factor, double inverse, double offset, double lowLimit, double highLimit)
    {
        if (std::abs(factor) < 1e-12) {
            if (offset < lowLimit || offset > highLimit)
                high = low - 1;
            return;
        }
        const double one = (lowLimit - offset) * inverse;
        const double other = (highLimit - offset) * inverse;
        low = std::max(low, std::min(one, other));
        high = std::min(high, std::max(one, other));
    }
};

/// The library's are calls on processors that the program has to run on, and one row needs two.
int roundedDown(double value)
{
    const int cut = int(value);
    return cut - (value < cut ? 1 : 0);
}

int roundedUp(double value)
{
    return -roundedDown(-value);
}

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
        m_inverse = {1 / m_direction.x(), 1 / m_direction.y()};
        const auto [top, bottom] = std::minmax({segment.from.y(), segment.to.y()});
        m_firstRow = roundedDown(top - radius - blur);
        m_lastRow = roundedUp(bottom + radius + blur);
    }

    /// The rows that it may touch.
    int firstRow() const { return m_firstRow; }
    int lastRow() const { return m_lastRow; }

    void addTo(CoverageRow &row, int y) const
    {
        if (isClearOfEnds(y))
            addPlainRow(row, y);
        else
            addRow(row, y);
    }

private:
    /// Whether a row passes the stroke between its ends: no end is near any pixel that is touched.
    /// Only steep strokes have many such rows.
    bool isClearOfEnds(int y) const
    {
        const double along = (y + 0.5 - m_from.y()) * m_inverse.y();
        const double spread = (m_radius + blur) * std::abs(m_direction.x() * m_inverse.y());
        return m_steep && along >= spread && along <= m_length - spread;
    }

    void addPlainRow(CoverageRow &row, int y) const
    {
        const QPointF offset(0.5 - m_from.x(), y + 0.5 - m_from.y());
        const double middle = offset.y() * m_direction.x() * m_inverse.y() - offset.x();
        const double reach = (m_radius + blur) * m_inverse.y();
        const int first = std::max(0, roundedUp(middle - reach));
        const int last = std::min(row.width(), roundedDown(middle + reach) + 1);
        if (first < last)
            addBody(row.writable(first, last), first, last,
                    m_direction.x() * offset.y() - m_direction.y() * offset.x());
    }

    void addRow(CoverageRow &row, int y) const
    {
        const double reach = m_radius + blur;
        // From the stroke's beginning to the centre of the row's first pixel.
        const QPointF offset(0.5 - m_from.x(), y + 0.5 - m_from.y());
        // The same, along the stroke and beside it.
        const double along = QPointF::dotProduct(m_direction, offset);
        const double beside = m_direction.x() * offset.y() - m_direction.y() * offset.x();
        Interval touched{0, double(row.width() - 1)};
        touched.keepWithin(-m_direction.y(), -m_inverse.y(), beside, -reach, reach);
        touched.keepWithin(m_direction.x(), m_inverse.x(), along, -reach, m_length + reach);
        if (touched.low > touched.high)
            return;
        const int first = roundedUp(touched.low);
        const int last = roundedDown(touched.high) + 1;
        if (first >= last)
            return;
        Interval body = touched;
        body.keepWithin(m_direction.x(), m_inverse.x(), along, 0, m_length);
        const bool hasBody = body.low <= body.high;
        const int bodyFirst = hasBody ? roundedUp(body.low) : last;
        const int bodyLast = hasBody ? std::max(bodyFirst, roundedDown(body.high) + 1) : last;
        Coverage *pixels = row.writable(first, last);
        addEnds(pixels, first, bodyFirst, offset);
        addBody(pixels, bodyFirst, bodyLast, beside);
        addEnds(pixels, bodyLast, last, offset);
    }

    /// Where only the distance from the line counts. Nearly all pixels are of this kind, so it is
    /// reckoned in whole numbers and without branches.
    void addBody(Coverage *pixels, int first, int last, double beside) const
    {
        const int reach = int((m_radius + blur) * 256);
        const int step = int(-m_direction.y() * fine);
        int distance = int((beside - m_direction.y() * first) * fine);
        // Distances grow to the left of a steep stroke, which goes down, and below a flat one,
        // which goes to the right.
        const int positive = m_steep ? Left : Below;
        const int negative = m_steep ? Right : Above;
        for (int x = first; x < last; ++x) {
            const int covered = std::clamp(reach - (std::abs(distance) >> 8), 0, 255);
            quint8 &side = pixels[x].by[std::size_t(distance < 0 ? negative : positive)];
            side = std::max(side, quint8(covered));
            distance += step;
        }
    }

    /// Around the ends, where the distance from the end point counts. Its side is that of the point
    /// and not of the line's continuation.
    void addEnds(Coverage *pixels, int first, int last, QPointF offset) const
    {
        for (int x = first; x < last; ++x) {
            const QPointF at(offset.x() + x, offset.y());
            const double part = std::clamp(QPointF::dotProduct(m_direction, at), 0.0, m_length);
            const QPointF away = at - m_direction * part;
            const double distance = std::sqrt(QPointF::dotProduct(away, away));
            const int covered = int((m_radius + blur - distance) * 256);
            const int place =
                m_steep ? (away.x() > 0 ? Right : Left) : (away.y() > 0 ? Below : Above);
            quint8 &side = pixels[x].by[std::size_t(place)];
            side = std::max(side, quint8(std::clamp(covered, 0, 255)));
        }
    }

    /// Distances are counted in parts of a pixel.
    static constexpr int fine = 1 << 16;

    QPointF m_from;
    QPointF m_direction{1, 0};
    QPointF m_inverse; ///< 1 / direction
    double m_length = 0;
    double m_radius;
    bool m_steep = false;
    int m_firstRow = 0;
    int m_lastRow = 0;
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
    part.keepWithin(way.x(), 1 / way.x(), segment.from.x(), box.left(), box.right());
    part.keepWithin(way.y(), 1 / way.y(), segment.from.y(), box.top(), box.bottom());
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

} // namespace

void drawPolyline(QImage &image, const QVector<QPointF> &points, double width, const QColor &color)
{
    if (image.isNull() || !color.isValid() || color.alpha() == 0 || !(width > 0))
        return;
    const double radius = std::min(width / 2, largestRadius);
    // What is cut off must not show its new round end.
    const double margin = radius + 2;
    const QRectF box = QRectF(image.rect()).adjusted(-margin, -margin, margin, margin);
    std::vector<Stroke> strokes;
    for (const Segment &segment : visibleSegments(points, box))
        strokes.emplace_back(segment, radius);
    CoverageRow row(image.width());
    const Tints tints = tintsOf(color);
    for (int y = 0; y < image.height(); ++y) {
        for (const Stroke &stroke : strokes) {
            if (y >= stroke.firstRow() && y <= stroke.lastRow())
                stroke.addTo(row, y);
        }
        row.blendInto(reinterpret_cast<QRgb *>(image.scanLine(y)), tints);
    }
}

} // namespace pulsebar
