#pragma once

#include "util/Text.h"

#include <QString>
#include <QVariant>

namespace pulsebar {

class GraphViewSetting;

/// How the values of a kind of series are shown.
struct GraphDisplayRules
{
    QString dataUnit;
    QString dataFormat;     ///< of the newest value; empty: it is shown as a size in bytes
    float dataScale = 1.0F; ///< what each sample is multiplied by before it is shown or compared
    float thresholdScale = 1.0F; ///< what a threshold is multiplied by to be compared with it

    bool operator==(const GraphDisplayRules &) const = default;
};

/// What a graph key says. A key is the kind of data, "__" and the name of the series; the name of a
/// process's series is its number, "//" and the process's name. Separators count where they occur
/// first.
struct GraphSeries
{
    explicit GraphSeries(const QString &key);

    /// Traffic of all interfaces, which is drawn on a scale of its own.
    bool isTraffic() const;
    /// What stands over the graph: the end of the title, in the user's language if it is a series
    /// of our own. The name of a process is what the process chose and is shown as it is, but for
    /// characters that are no text.
    QString caption() const;
    /// The keys of the window's settings. A process's are stored under its name alone, and looked
    /// for under its number as well, so that its window starts with the defaults every time.
    QString keyToLoad() const;
    QString keyToStore() const;

    QString windowKey;
    QString title; ///< the key behind "__"; the whole key where there is none
    Text dataType; ///< the key before "__"
    GraphDisplayRules rules;
};

/// The newest sample as it is shown and compared; an invalid sample reads as 0.
float shownValue(const GraphSeries &series, const QVariant &last);

/// The newest sample in words; empty for traffic without any sample.
QString lastValueText(const GraphSeries &series, const QVariant &last);

/// Whether the newest sample is on the quiet side of the threshold. Neither side is quiet for a
/// value that equals it, or for what is not a number.
bool isUnderThreshold(const GraphSeries &series, const GraphViewSetting &setting,
                      const QVariant &last);

} // namespace pulsebar
