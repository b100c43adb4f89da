#include "controller/AlertWatch.h"

#include "controller/Alerts.h"
#include "util/PlainLine.h"
#include "util/Text.h"
#include "util/Values.h"

#include <QStringList>
#include <QVector>

#include <utility>

namespace pulsebar {

namespace {

constexpr double kPercent = 100.0;
constexpr qint64 kSecond = 1000;

/// A figure and its limit as the monitor compares them: real numbers in single precision, rates
/// whole. Both fit a double exactly.
struct Comparison
{
    double value;
    double limit;
    double unit; ///< what 1.0 of the value is in the subject's unit
};

std::optional<Comparison> compared(const QVariant &value, const AlertRule &rule, double unit)
{
    if (!value.isValid())
        return std::nullopt;
    const float limit = static_cast<float>(rule.threshold) / static_cast<float>(unit);
    return Comparison{static_cast<double>(floatValue(value)), static_cast<double>(limit), unit};
}

/// Rates are compared as whole bytes, and no record yet reads as no traffic.
std::optional<Comparison> comparedRate(const QVariantMap &sample, QStringView path,
                                       const AlertRule &rule)
{
    if (!sample.contains(QStringLiteral("NetStatistics")))
        return std::nullopt;
    const auto rate = static_cast<double>(longValue(valueForKeyPath(sample, path)));
    return Comparison{rate, rule.threshold, 1.0};
}

std::optional<Comparison> comparedCable(const QVariantMap &sample, const AlertRule &rule)
{
    const QVariant connected = valueForKeyPath(sample, u"BatteryStats.IsConnected");
    if (!connected.isValid())
        return std::nullopt;
    const double wanted = rule.subject == AlertSubject::CablePluggedIn ? 1.0 : 0.0;
    return Comparison{boolValue(connected) ? 1.0 : 0.0, wanted, 1.0};
}

std::optional<Comparison> comparison(const AlertRule &rule, const QVariantMap &sample,
                                     const AlertWatch::ProcessRecord &recordOf)
{
    switch (rule.subject) {
    case AlertSubject::CpuLoad:
        return compared(valueForKeyPath(sample, u"CPUUsageMinuteStats.AverageValue"), rule,
                        kPercent);
    case AlertSubject::NetworkIn:
        return comparedRate(sample, u"NetworkInMinuteStats.AverageValue", rule);
    case AlertSubject::NetworkOut:
        return comparedRate(sample, u"NetworkOutMinuteStats.AverageValue", rule);
    case AlertSubject::BatteryPercent:
        return compared(valueForKeyPath(sample, u"BatteryStats.BatteryRemainPercent"), rule, 1.0);
    case AlertSubject::CablePluggedIn:
    case AlertSubject::CableUnplugged:
        return comparedCable(sample, rule);
    case AlertSubject::ProcessShare:
        // A process that is forgotten uses nothing.
        return compared(recordOf(rule.part).value(QStringLiteral("AverageValue"), 0.0), rule,
                        kPercent);
    case AlertSubject::Temperature: {
        const QVariantMap records =
            sample.value(QStringLiteral("CPUTemparaturesMinutesStats")).toMap();
        const QVariantMap record = records.value(rule.part).toMap();
        return compared(record.value(QStringLiteral("CurrentValue")), rule, 1.0);
    }
    case AlertSubject::Fans: {
        const QVariantList records = sample.value(QStringLiteral("FanMoveMinutesStats")).toList();
        const QVariantMap mean = records.isEmpty() ? QVariantMap() : records.constLast().toMap();
        return compared(mean.value(QStringLiteral("CurrentValue")), rule, 1.0);
    }
    }
    return std::nullopt;
}

/// The watched process as the sample lists it. Others may go by the same name, or make up one that
/// looks like its key: only the very process whose record it is may be named as the one to quit.
Culprit watchedProcess(const QString &process, const QString &key, const QVariantMap &sample)
{
    const QString separator = QStringLiteral("//");
    const QString name = substringFrom(process, separator).value_or(process);
    Culprit found{plainLine(name, CulpritHistory::kLongestName), 0, 0.0};
    const QVariantList listed = sample.value(QStringLiteral("ProcessList")).toList();
    for (const QVariant &element : listed) {
        const QVariantMap entry = element.toMap();
        if (entry.value(QStringLiteral("PID")).toString() + separator +
                entry.value(QStringLiteral("ProcessName")).toString() !=
            key)
            continue;
        found.number = longValueForKey(entry, QStringLiteral("PID"));
        found.fraction = doubleValueForKey(entry, QStringLiteral("CPUUsage"));
    }
    return found;
}

} // namespace

std::optional<double> alertFigure(const AlertRule &rule, const QVariantMap &sample,
                                  const AlertWatch::ProcessRecord &recordOf)
{
    const std::optional<Comparison> figure = comparison(rule, sample, recordOf);
    return figure ? std::optional<double>(figure->value * figure->unit) : std::nullopt;
}

std::optional<bool> alertHolds(const AlertRule &rule, const QVariantMap &sample,
                               const AlertWatch::ProcessRecord &recordOf)
{
    const std::optional<Comparison> figure = comparison(rule, sample, recordOf);
    if (!figure)
        return std::nullopt;
    if (rule.watchesCable())
        return figure->value == figure->limit;
    return rule.rising ? figure->limit <= figure->value : figure->value <= figure->limit;
}

AlertWatch::AlertWatch(const Alerts &alerts, const CulpritHistory &history, ProcessRecord recordOf,
                       ProcessKey keyOf)
    : m_alerts(alerts)
    , m_history(history)
    , m_recordOf(std::move(recordOf))
    , m_keyOf(std::move(keyOf))
{
    connect(&m_alerts, &Alerts::changed, this, &AlertWatch::dropOutdated);
}

void AlertWatch::hardwareEvent(const QVariantMap &entry)
{
    const std::optional<AlertRule> fired = alertRuleFromEntry(entry);
    if (!fired)
        return;
    // Alerts with one condition have one event; each has its own duration.
    for (const Alert &alert : m_alerts.list()) {
        if (!alert.rule.enabled || !alert.rule.watchesLike(*fired))
            continue;
        State &state = m_states[alert.id];
        state.rule = alert.rule;
        if (state.phase != Phase::Told)
            state.phase = Phase::Begun;
    }
}

void AlertWatch::sampleTaken(const QVariantMap &sample, qint64 now)
{
    QVector<Alarm> told;
    QStringList ended;
    for (const Alert &alert : m_alerts.list()) {
        const auto state = m_states.find(alert.id);
        if (state == m_states.end() || state->phase == Phase::Idle)
            continue;
        const Phase before = state->phase;
        advance(*state, sample, now);
        if (before == Phase::Told && state->phase == Phase::Idle)
            ended += alert.id;
        if (before != Phase::Told && state->phase == Phase::Told)
            told += alarmFor(*state, alert, sample, now);
    }
    // Whoever is told may change the list.
    for (const QString &id : std::as_const(ended))
        Q_EMIT alarmEnded(id);
    for (const Alarm &alarm : std::as_const(told)) {
        if (m_states.value(alarm.id).phase == Phase::Told)
            Q_EMIT alarmTold(alarm);
    }
}

void AlertWatch::changeScale(bool fahrenheit)
{
    for (State &state : m_states)
        state.rule = alertRuleInScale(state.rule, fahrenheit);
}

bool AlertWatch::isAlarming() const
{
    for (const State &state : m_states) {
        if (state.phase == Phase::Told)
            return true;
    }
    return false;
}

void AlertWatch::dropOutdated()
{
    QStringList ended;
    for (auto it = m_states.begin(); it != m_states.end();) {
        const Alert *alert = m_alerts.find(it.key());
        const bool goesOn =
            alert != nullptr && alert->rule.enabled && alert->rule.watchesLike(it->rule);
        if (goesOn) {
            it->rule = alert->rule;
        } else {
            if (it->phase == Phase::Told)
                ended += it.key();
            it->phase = Phase::Idle;
        }
        it = alert != nullptr ? std::next(it) : m_states.erase(it);
    }
    for (const QString &id : std::as_const(ended))
        Q_EMIT alarmEnded(id);
}

void AlertWatch::advance(State &state, const QVariantMap &sample, qint64 now) const
{
    if (state.phase == Phase::Begun) {
        state.phase = Phase::Held;
        state.since = now;
        state.lastSeen = now;
        state.samples = 0;
    }
    ++state.samples;
    const std::optional<bool> holds = alertHolds(state.rule, sample, m_recordOf);
    // Samples may be a minute apart themselves; one that has the figure ends nothing by coming
    // late.
    if (!holds.value_or(now - state.lastSeen <= kLongestUnseen)) {
        state.phase = Phase::Idle;
        return;
    }
    if (!holds)
        return;
    state.lastSeen = now;
    const bool longEnough = now - state.since >= state.rule.duration * kSecond;
    const bool tooSoon = state.lastTold && now - *state.lastTold < kLeastBetween;
    if (state.phase == Phase::Held && longEnough && !tooSoon) {
        state.phase = Phase::Told;
        state.lastTold = now;
    }
}

Alarm AlertWatch::alarmFor(const State &state, const Alert &alert, const QVariantMap &sample,
                           qint64 now) const
{
    Alarm alarm;
    alarm.id = alert.id;
    alarm.entry = alert.entry;
    alarm.rule = alert.rule;
    alarm.value = alertFigure(alert.rule, sample, m_recordOf).value_or(0.0);
    alarm.heldFor = now - state.since;
    if (alert.rule.subject == AlertSubject::ProcessShare)
        alarm.culprit = watchedProcess(alert.rule.part, m_keyOf(alert.rule.part), sample);
    else if ((alert.rule.subject == AlertSubject::CpuLoad && alert.rule.rising) ||
             (alert.rule.subject == AlertSubject::BatteryPercent && !alert.rule.rising))
        alarm.culprit = m_history.busiest(samplesToBlame(state));
    return alarm;
}

/// One sample alone says little about a mean of a minute: then it is the minute's.
std::size_t AlertWatch::samplesToBlame(const State &state) const
{
    static constexpr quint32 kMinute = 60;
    const std::optional<CulpritSample> newest = m_history.newest();
    if (state.samples > 1 || !newest)
        return state.samples;
    return static_cast<std::size_t>(m_history.since(kMinute, newest->time).size());
}

} // namespace pulsebar
