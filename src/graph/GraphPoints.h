#pragma once

#include "engine/UsageCache.h"

#include <QPointF>
#include <QSizeF>
#include <QVector>

#include <optional>

namespace pulsebar {

/// Where the samples of a series stand in a view of a size, in points counted from its bottom
/// left corner, upward. The newest is near the right edge, zero is one point above the bottom; a
/// sample above the full scale, or far below zero, lies outside the view. Samples are read as
/// util/Values.h reads numbers.

/// The value at the top of every series but network traffic: the whole number below the largest
/// sample plus one, at least 1.
double cpuFullScale(const UsageCache &samples);
/// The points of such a series. A sample that is not a number has none, and those after it move
/// up; every other has one, which is not finite where an infinite sample makes it so.
QVector<QPointF> cpuGraphPoints(const UsageCache &samples, QSizeF size);

/// The sample of such a series whose point is nearest to a place: its index in `samples`. Beyond
/// the ends it is the first or the last one that has a point. Absent where none has.
/// @param width of the view
/// @param x from its left edge
std::optional<qsizetype> cpuGraphSampleAt(const UsageCache &samples, double width, double x);

/// The value at the top of a series of network traffic: the largest sample, at least 1024.
double networkFullScale(const UsageCache &samples);
/// The points of such a series, one for each sample; not finite where the sample is not.
QVector<QPointF> networkGraphPoints(const UsageCache &samples, QSizeF size);

} // namespace pulsebar
