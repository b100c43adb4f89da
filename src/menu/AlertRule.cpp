#include "menu/AlertRule.h"

#include "util/DecimalText.h"
#include "util/Localisation.h"
#include "util/ObserveEntry.h"
#include "util/PlainLine.h"
#include "util/Sizes.h"
#include "util/TemperatureScale.h"
#include "util/Text.h"
#include "util/Values.h"

#include <QLocale>

#include <cmath>

namespace pulsebar {

namespace {

/// Beyond what any figure reaches; keeps texts short and whole numbers exact.
constexpr double kLargestThreshold = 1e15;

std::optional<AlertSubject> batterySubject(const QVariantMap &entry)
{
    switch (intValueForKey(entry, QStringLiteral("batteryTriggerEventType"))) {
    case observed::PercentThreshold:
        return AlertSubject::BatteryPercent;
    case observed::CablePluggedIn:
        return AlertSubject::CablePluggedIn;
    case observed::CableUnplugged:
        return AlertSubject::CableUnplugged;
    default:
        return std::nullopt;
    }
}

std::optional<AlertSubject> subjectOf(const QVariantMap &entry)
{
    switch (intValueForKey(entry, QStringLiteral("type"))) {
    case observed::CpuLoad:
        return AlertSubject::CpuLoad;
    case observed::Network:
        return intValueForKey(entry, QStringLiteral("networkTriggerDataType")) == 0
                   ? AlertSubject::NetworkOut
                   : AlertSubject::NetworkIn;
    case observed::Battery:
        return batterySubject(entry);
    case observed::ProcessShare:
        return AlertSubject::ProcessShare;
    case observed::Temperature:
        return AlertSubject::Temperature;
    case observed::Fans:
        return AlertSubject::Fans;
    default:
        return std::nullopt;
    }
}

int typeOf(AlertSubject subject)
{
    switch (subject) {
    case AlertSubject::CpuLoad:
        return observed::CpuLoad;
    case AlertSubject::NetworkIn:
    case AlertSubject::NetworkOut:
        return observed::Network;
    case AlertSubject::BatteryPercent:
    case AlertSubject::CablePluggedIn:
    case AlertSubject::CableUnplugged:
        return observed::Battery;
    case AlertSubject::ProcessShare:
        return observed::ProcessShare;
    case AlertSubject::Temperature:
        return observed::Temperature;
    case AlertSubject::Fans:
        return observed::Fans;
    }
    return 0;
}

int triggerOf(AlertSubject subject)
{
    switch (subject) {
    case AlertSubject::CablePluggedIn:
        return observed::CablePluggedIn;
    case AlertSubject::CableUnplugged:
        return observed::CableUnplugged;
    default:
        return observed::PercentThreshold;
    }
}

QString partKey(AlertSubject subject)
{
    return subject == AlertSubject::ProcessShare ? QStringLiteral("processName")
                                                 : QStringLiteral("temperaturePart");
}

/// Whether a value is a finite number, or the text of one, and nothing but is; absent counts as 0.
/// What is none would be compared as 0, and alert at once.
bool isNumber(const QVariant &value)
{
    bool isOne = false;
    const double number = value.toDouble(&isOne);
    return !value.isValid() || (isOne && std::isfinite(number));
}

bool isSound(const AlertRule &rule)
{
    return std::abs(rule.threshold) <= kLargestThreshold && rule.duration >= 0 &&
           rule.duration <= AlertRule::kLongestDuration &&
           rule.name.size() <= AlertRule::kLongestText &&
           rule.part.size() <= AlertRule::kLongestText &&
           (!rule.needsPart() || !rule.part.isEmpty());
}

/// Sets a key that need not be there: our own keys are not written into an entry that does without.
void setOrRemove(QVariantMap &entry, const QString &key, const QVariant &value, bool needed)
{
    if (needed)
        entry.insert(key, value);
    else
        entry.remove(key);
}

/// A whole number stays one.
QVariant thresholdValue(double threshold)
{
    if (!(std::abs(threshold) <= kLargestThreshold))
        return threshold;
    const auto whole = static_cast<qint64>(threshold);
    return static_cast<double>(whole) == threshold ? QVariant(whole) : QVariant(threshold);
}

bool isPercent(AlertSubject subject)
{
    return subject == AlertSubject::CpuLoad || subject == AlertSubject::BatteryPercent ||
           subject == AlertSubject::ProcessShare;
}

bool isNetwork(AlertSubject subject)
{
    return subject == AlertSubject::NetworkIn || subject == AlertSubject::NetworkOut;
}

QString withDecimalPoint(QString number)
{
    return number.replace(u'.', QLocale().decimalPoint());
}

QString rateText(double bytes)
{
    return localizedFormat(QStringLiteral("%@/s"), fileSizeString(bytes));
}

/// The name of a process; its key is "PID//name".
QString processText(const QString &process)
{
    return plainLine(substringFrom(process, QStringLiteral("//")).value_or(process));
}

QString countText(int count, const QString &one, const QString &many)
{
    return localizedFormat(count == 1 ? one : many, count);
}

QString conditionText(const AlertRule &rule, bool fahrenheit)
{
    QString what = alertSubjectText(rule);
    if (rule.watchesCable())
        return what;
    const QString limit = alertThresholdText(rule, fahrenheit);
    return rule.rising ? localizedFormat(QStringLiteral("%@ above %@"), what, limit)
                       : localizedFormat(QStringLiteral("%@ below %@"), what, limit);
}

/// A value crosses a threshold only where there is room on the other side of it.
QString thresholdProblem(const AlertRule &rule)
{
    const AlertThresholdRange range = alertThresholdRange(rule.subject, false);
    const QString least = withDecimalPoint(decimalText(range.least));
    const QString most = withDecimalPoint(decimalText(range.most));
    if (!(rule.threshold >= range.least && rule.threshold <= range.most))
        return localizedFormat(QStringLiteral("The threshold must lie between %@ and %@."), least,
                               most);
    if (rule.rising && rule.threshold == range.least)
        return localizedFormat(
            QStringLiteral("The threshold must be above %@ for a value to rise to it."), least);
    if (!rule.rising && rule.threshold == range.most)
        return localizedFormat(
            QStringLiteral("The threshold must be below %@ for a value to fall to it."), most);
    return {};
}

} // namespace

bool AlertRule::watchesLike(const AlertRule &other) const
{
    if (subject != other.subject || watchesCable())
        return subject == other.subject;
    return rising == other.rising && threshold == other.threshold && part == other.part;
}

bool AlertRule::watchesCable() const
{
    return subject == AlertSubject::CablePluggedIn || subject == AlertSubject::CableUnplugged;
}

bool AlertRule::needsPart() const
{
    return subject == AlertSubject::ProcessShare || subject == AlertSubject::Temperature;
}

AlertRule alertRuleInScale(AlertRule rule, bool fahrenheit)
{
    static constexpr double kTenth = 10.0;
    if (rule.subject != AlertSubject::Temperature)
        return rule;
    const double converted =
        fahrenheit ? shownInFahrenheit(rule.threshold) : celsiusFromShown(rule.threshold);
    rule.threshold = std::round(converted * kTenth) / kTenth;
    return rule;
}

std::optional<AlertRule> alertRuleFromEntry(const QVariantMap &entry)
{
    const std::optional<AlertSubject> subject = subjectOf(entry);
    const QVariant threshold = entry.value(QStringLiteral("threshold"));
    const QVariant duration = entry.value(QStringLiteral("duration"));
    if (!subject || !isNumber(threshold) || !isNumber(duration))
        return std::nullopt;
    const QVariant enabled = entry.value(QStringLiteral("enabled"));
    AlertRule rule;
    rule.subject = *subject;
    rule.rising = intValueForKey(entry, QStringLiteral("observeType")) == 0;
    // Rates are compared as whole bytes, and read so: "1e5" is one byte.
    rule.threshold =
        isNetwork(*subject) ? static_cast<double>(longValue(threshold)) : doubleValue(threshold);
    if (rule.needsPart())
        rule.part = entry.value(partKey(*subject)).toString();
    rule.duration = intValue(duration);
    rule.name = entry.value(QStringLiteral("name")).toString();
    rule.enabled = !enabled.isValid() || boolValue(enabled);
    return isSound(rule) ? std::optional<AlertRule>(rule) : std::nullopt;
}

QVariantMap entryWithAlertRule(const AlertRule &rule, QVariantMap entry)
{
    const bool isBattery = typeOf(rule.subject) == observed::Battery;
    entry.insert(QStringLiteral("type"), typeOf(rule.subject));
    entry.insert(QStringLiteral("observeType"), rule.rising ? 0 : 1);
    setOrRemove(entry, QStringLiteral("threshold"), thresholdValue(rule.threshold),
                !rule.watchesCable());
    setOrRemove(entry, QStringLiteral("networkTriggerDataType"),
                rule.subject == AlertSubject::NetworkOut ? 0 : 1, isNetwork(rule.subject));
    setOrRemove(entry, QStringLiteral("batteryTriggerEventType"), triggerOf(rule.subject),
                isBattery);
    for (const AlertSubject subject : {AlertSubject::ProcessShare, AlertSubject::Temperature})
        setOrRemove(entry, partKey(subject), rule.part, subject == rule.subject);
    setOrRemove(entry, QStringLiteral("duration"), rule.duration, rule.duration != 0);
    setOrRemove(entry, QStringLiteral("name"), rule.name, !rule.name.isEmpty());
    setOrRemove(entry, QStringLiteral("enabled"), false, !rule.enabled);
    return entry;
}

AlertThresholdRange alertThresholdRange(AlertSubject subject, bool fahrenheit)
{
    switch (subject) {
    case AlertSubject::CpuLoad:
        return {0, 100, 5, 90, 1};
    case AlertSubject::NetworkIn:
    case AlertSubject::NetworkOut:
        return {0, 1e12, 1024.0 * 100, 1024.0 * 1000, 0};
    case AlertSubject::BatteryPercent:
        return {0, 100, 5, 20, 1};
    case AlertSubject::ProcessShare:
        return {0, 100.0 * 1024, 5, 50, 1};
    case AlertSubject::Temperature:
        return {-100, 1000, 1, fahrenheit ? 200.0 : 80.0, 1};
    case AlertSubject::Fans:
        return {0, 100000, 100, 3000, 0};
    case AlertSubject::CablePluggedIn:
    case AlertSubject::CableUnplugged:
        break;
    }
    return {0, 0, 0, 0, 0};
}

QString alertProblem(const AlertRule &rule)
{
    if (rule.subject == AlertSubject::ProcessShare && rule.part.trimmed().isEmpty())
        return localizedString(QStringLiteral("Name the process."));
    if (rule.subject == AlertSubject::Temperature && rule.part.trimmed().isEmpty())
        return localizedString(QStringLiteral("Choose a sensor."));
    QString wrongThreshold = rule.watchesCable() ? QString() : thresholdProblem(rule);
    if (!wrongThreshold.isEmpty())
        return wrongThreshold;
    if (rule.duration < 0 || rule.duration > AlertRule::kLongestDuration)
        return localizedFormat(QStringLiteral("The duration must lie between %d and %d seconds."),
                               0, AlertRule::kLongestDuration);
    if (!isSound(rule))
        return localizedFormat(QStringLiteral("A name has at most %d characters."),
                               AlertRule::kLongestText);
    return {};
}

QString alertSubjectText(const AlertRule &rule)
{
    switch (rule.subject) {
    case AlertSubject::CpuLoad:
        return localizedString(QStringLiteral("CPU"));
    case AlertSubject::NetworkIn:
        return localizedString(QStringLiteral("NetworkInMinuteStats"));
    case AlertSubject::NetworkOut:
        return localizedString(QStringLiteral("NetworkOutMinuteStats"));
    case AlertSubject::BatteryPercent:
        return localizedString(QStringLiteral("Battery"));
    case AlertSubject::CablePluggedIn:
        return localizedString(QStringLiteral("Power cable plugged in"));
    case AlertSubject::CableUnplugged:
        return localizedString(QStringLiteral("Power cable unplugged"));
    case AlertSubject::ProcessShare:
        return localizedFormat(QStringLiteral("CPU of %@"), processText(rule.part));
    case AlertSubject::Temperature:
        return plainLine(localizedString(rule.part, QStringLiteral("Temperature"), {}));
    case AlertSubject::Fans:
        return localizedString(QStringLiteral("Fan speed"));
    }
    return {};
}

QString alertUnitText(AlertSubject subject, bool fahrenheit)
{
    if (isPercent(subject))
        return QStringLiteral("%");
    if (isNetwork(subject))
        return localizedString(QStringLiteral("B/s"));
    if (subject == AlertSubject::Temperature)
        return fahrenheit ? QStringLiteral("\u2109") : QStringLiteral("\u2103");
    if (subject == AlertSubject::Fans)
        return localizedString(QStringLiteral("RPM"));
    return {};
}

QString alertValueText(AlertSubject subject, double value, bool fahrenheit)
{
    if (isNetwork(subject))
        return rateText(value);
    if (subject == AlertSubject::CablePluggedIn || subject == AlertSubject::CableUnplugged)
        return {};
    const QString unit = alertUnitText(subject, fahrenheit);
    return subject == AlertSubject::Fans ? localizedFormat(QStringLiteral("%.0f%@"), value, unit)
                                         : localizedFormat(QStringLiteral("%.1f%@"), value, unit);
}

QString alertThresholdText(const AlertRule &rule, bool fahrenheit)
{
    if (isNetwork(rule.subject))
        return rateText(rule.threshold);
    if (rule.watchesCable())
        return {};
    return withDecimalPoint(decimalText(rule.threshold)) + alertUnitText(rule.subject, fahrenheit);
}

QString alertDurationText(int seconds)
{
    static constexpr int kMinute = 60;
    static constexpr int kHour = 60 * 60;
    if (seconds != 0 && seconds % kHour == 0)
        return countText(seconds / kHour, QStringLiteral("%d hour"), QStringLiteral("%d hours"));
    if (seconds != 0 && seconds % kMinute == 0)
        return countText(seconds / kMinute, QStringLiteral("%d minute"),
                         QStringLiteral("%d minutes"));
    return countText(seconds, QStringLiteral("%d second"), QStringLiteral("%d seconds"));
}

QString alertRuleText(const AlertRule &rule, bool fahrenheit)
{
    QString condition = conditionText(rule, fahrenheit);
    if (rule.duration == 0)
        return condition;
    return localizedFormat(QStringLiteral("%@ for %@"), condition,
                           alertDurationText(rule.duration));
}

QString alertTitle(const AlertRule &rule, bool fahrenheit)
{
    const QString name = plainLine(rule.name.trimmed());
    return name.isEmpty() ? alertRuleText(rule, fahrenheit) : name;
}

} // namespace pulsebar
