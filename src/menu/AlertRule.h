#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What an alert watches.
enum class AlertSubject {
    CpuLoad,        ///< mean load of all cores, percent
    NetworkIn,      ///< bytes per second
    NetworkOut,     ///< bytes per second
    BatteryPercent, ///< remaining charge, percent
    CablePluggedIn,
    CableUnplugged,
    ProcessShare, ///< one process's CPU share, percent of one core
    Temperature,  ///< one sensor, degrees of the scale that is shown
    Fans,         ///< mean speed of the fans, revolutions per minute
};

/// An alert as a value: what an observe entry (see HardwareEvents.h) and our own keys in it mean.
///
/// Our keys are "name" (text shown to the user; empty: made from the rule), "duration" (whole
/// seconds for which the condition must hold, 0 = at once), "enabled" (boolean, absent = true) and
/// "id" (text; see Alerts.h).
struct AlertRule
{
    static constexpr int kLongestDuration = 24 * 60 * 60;
    /// What a new alert begins with.
    static constexpr int kUsualDuration = 20;
    /// Longest name, process name and sensor name, in characters.
    static constexpr int kLongestText = 256;

    AlertSubject subject = AlertSubject::CpuLoad;
    bool rising = true;   ///< rises to or above the threshold; false: falls to or below it
    double threshold = 0; ///< in the unit of the subject; of no meaning for the cable
    QString part;         ///< ProcessShare: process name or key "PID//name"; Temperature: sensor
    int duration = 0;     ///< seconds
    QString name;
    bool enabled = true;

    bool operator==(const AlertRule &other) const = default;
    /// Whether both have the same condition, whatever their durations and names.
    bool watchesLike(const AlertRule &other) const;
    bool watchesCable() const;
    /// ProcessShare and Temperature.
    bool needsPart() const;
};

/// The same condition in the other scale of temperatures, to a tenth of a degree; rules of other
/// subjects as they are.
/// @param fahrenheit the scale that is wanted; the rule is in the other one
AlertRule alertRuleInScale(AlertRule rule, bool fahrenheit);

/// Reads an entry. Numbers may be texts, as from a settings file.
/// @return absent for a broken entry: an unknown "type" or "batteryTriggerEventType", a threshold
///         that is no finite number, a negative duration, a text that is too long, or a process or
///         sensor that is not named. A missing threshold is 0.
std::optional<AlertRule> alertRuleFromEntry(const QVariantMap &entry);

/// The entry with the rule written into it; keys that the rule says nothing about stay as they are.
QVariantMap entryWithAlertRule(const AlertRule &rule, QVariantMap entry = {});

/// What a threshold may be, for an editor; the limits are the same in either scale.
struct AlertThresholdRange
{
    double least;
    double most;
    double step;  ///< a sensible increment
    double usual; ///< what a new alert begins with
    int decimals;
};
AlertThresholdRange alertThresholdRange(AlertSubject subject, bool fahrenheit);

/// Why a rule cannot be used, in the user's language; empty when it can. Stricter than
/// alertRuleFromEntry(): the threshold must lie in its range, and where a value can cross it.
QString alertProblem(const AlertRule &rule);

// Texts in the user's language, on one line.

/// "CPU", "Network In", "CPU of cc1plus", "CPU Die": what is watched. The part is cut to 64
/// characters and freed of what cannot be printed.
QString alertSubjectText(const AlertRule &rule);
/// "%", "B/s", "℃" or "℉", "RPM"; empty for the cable.
QString alertUnitText(AlertSubject subject, bool fahrenheit);
/// A value in the subject's unit, with it: "92.1%", "1.5MB/s", "81.3℃", "2400RPM".
QString alertValueText(AlertSubject subject, double value, bool fahrenheit);
/// The threshold as it was chosen: "90%", "62.5%", "1.5MB/s".
QString alertThresholdText(const AlertRule &rule, bool fahrenheit);
/// "1 second", "20 seconds", "2 minutes", "1 hour"; the largest unit that divides it.
QString alertDurationText(int seconds);
/// The whole rule: "CPU above 90% for 20 seconds", "Power cable unplugged".
QString alertRuleText(const AlertRule &rule, bool fahrenheit);
/// The name, or the rule where there is none; the name cut to 64 characters and printable.
QString alertTitle(const AlertRule &rule, bool fahrenheit);

} // namespace pulsebar
