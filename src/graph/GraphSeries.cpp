#include "graph/GraphSeries.h"

#include "graph/GraphViewSetting.h"
#include "util/Format.h"
#include "util/Localisation.h"
#include "util/ReadableText.h"
#include "util/Sizes.h"
#include "util/Values.h"

namespace pulsebar {

namespace {

QString kindEnd()
{
    return QStringLiteral("__");
}

QString numberEnd()
{
    return QStringLiteral("//");
}

/// A threshold of traffic is given in KB, its samples come in bytes.
constexpr float kBytesPerKB = 1024.0F;

GraphDisplayRules rulesFor(const Text &dataType)
{
    if (dataType == QStringLiteral("Temperature"))
        return {QStringLiteral("\u2103"), QStringLiteral("%0.1f\u2103")};
    if (dataType == QStringLiteral("FanMove"))
        return {QStringLiteral("RPM"), QStringLiteral("%.0fRPM")};
    if (dataType == QStringLiteral("Network"))
        return {QStringLiteral("KB"), QString(), 1.0F, kBytesPerKB};
    return {QStringLiteral("%"), QStringLiteral("%0.1f%%"), 100.0F};
}

QString settingKey(const QString &title)
{
    return QStringLiteral("GraphWindowSetting_") + title;
}

QString inOneLine(const QString &text)
{
    QString line = readableText(text);
    line.replace(u'\n', u' ');
    line.replace(u'\t', u' ');
    return line;
}

} // namespace

GraphSeries::GraphSeries(const QString &key)
    : windowKey(key)
    , title(substringFrom(key, kindEnd()).value_or(key))
    , dataType(substringTo(key, kindEnd()))
    , rules(rulesFor(dataType))
{
}

bool GraphSeries::isTraffic() const
{
    return title == u"NetworkInMinuteStats" || title == u"NetworkOutMinuteStats";
}

QString GraphSeries::caption() const
{
    const Text processName = substringFrom(title, numberEnd());
    const QString name = processName.value_or(title);
    const QString last = substringFrom(name, kindEnd()).value_or(name);
    return inOneLine(processName ? last : localizedString(last));
}

QString GraphSeries::keyToLoad() const
{
    return settingKey(title);
}

QString GraphSeries::keyToStore() const
{
    return settingKey(substringFrom(title, numberEnd()).value_or(title));
}

float shownValue(const GraphSeries &series, const QVariant &last)
{
    return floatValue(last) * series.rules.dataScale;
}

QString lastValueText(const GraphSeries &series, const QVariant &last)
{
    if (!series.rules.dataFormat.isEmpty())
        return plainFormat(series.rules.dataFormat, double(shownValue(series, last)));
    return last.isValid() ? fileSizeString(last) : QString();
}

bool isUnderThreshold(const GraphSeries &series, const GraphViewSetting &setting,
                      const QVariant &last)
{
    const float threshold = setting.threshold() * series.rules.thresholdScale;
    const float value = shownValue(series, last);
    return setting.thresholdType() != 0 ? threshold > value : value > threshold;
}

} // namespace pulsebar
