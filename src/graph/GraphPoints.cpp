#include "graph/GraphPoints.h"

#include "util/Values.h"

#include <algorithm>
#include <cmath>

namespace pulsebar {

namespace {

constexpr double inset = 2.0;
/// Points are placed from the view's own corner; the inset only shrinks the scale.
constexpr double origin = 1.0;

/// A sample that is not a number is never the largest.
double largest(const UsageCache &samples, double start)
{
    double result = start;
    for (const QVariant &sample : samples) {
        const double value = doubleValue(sample);
        if (value > result)
            result = value;
    }
    return result;
}

double stepBetween(const UsageCache &samples, double width)
{
    return samples.size() < 2 ? 0.0 : (width - 2 * inset) / double(samples.size() - 1);
}

} // namespace

double cpuFullScale(const UsageCache &samples)
{
    return std::trunc(largest(samples, 0.0) + 1.0);
}

QVector<QPointF> cpuGraphPoints(const UsageCache &samples, QSizeF size)
{
    const auto fullScale = float(cpuFullScale(samples));
    const auto height = float(size.height() - 2 * inset);
    const double step = stepBetween(samples, size.width());
    QVector<QPointF> points;
    points.reserve(samples.size());
    double x = origin;
    for (const QVariant &sample : samples) {
        const float value = floatValue(sample);
        if (std::isnan(value))
            continue;
        const float y = value / fullScale * height + float(origin);
        points.append({x, double(y)});
        x += step;
    }
    return points;
}

std::optional<qsizetype> cpuGraphSampleAt(const UsageCache &samples, double width, double x)
{
    QVector<qsizetype> drawn;
    drawn.reserve(samples.size());
    for (qsizetype i = 0; i < samples.size(); ++i) {
        if (!std::isnan(floatValue(samples[i])))
            drawn.append(i);
    }
    if (drawn.isEmpty())
        return std::nullopt;
    const double step = stepBetween(samples, width);
    const double place = step > 0.0 ? std::round((x - origin) / step) : 0.0;
    return drawn.at(qsizetype(std::clamp(place, 0.0, double(drawn.size() - 1))));
}

double networkFullScale(const UsageCache &samples)
{
    return largest(samples, 1024.0);
}

QVector<QPointF> networkGraphPoints(const UsageCache &samples, QSizeF size)
{
    const double fullScale = networkFullScale(samples);
    const double height = size.height() - 2 * inset;
    const double step = stepBetween(samples, size.width());
    QVector<QPointF> points;
    points.reserve(samples.size());
    double x = origin;
    for (const QVariant &sample : samples) {
        points.append({x, double(floatValue(sample)) * height / fullScale + origin});
        x += step;
    }
    return points;
}

} // namespace pulsebar
