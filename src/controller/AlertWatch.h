#pragma once

#include "engine/CulpritHistory.h"
#include "menu/AlertRule.h"

#include <QHash>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace pulsebar {

class Alerts;
struct Alert;

/// What there is to tell about an alert whose condition holds.
struct Alarm
{
    QString id; ///< of the alert; a later alarm of the same id replaces this one
    QVariantMap entry;
    AlertRule rule;
    double value = 0;   ///< now, in the subject's unit; 1 or 0 for the cable: in or out
    qint64 heldFor = 0; ///< milliseconds since the event; 0 at its own sample
    /// CPU load that is high, and a battery that runs down: who used most of the processors since
    /// the event (in the last minute where the alarm comes at once). ProcessShare: the process
    /// itself whose record crossed the threshold, its number 0 while it is not listed.
    std::optional<Culprit> culprit;
};

/// Decides when an alert is told. The monitor's event begins a possible alarm; it is told when the
/// condition has held on every sample for the alert's duration, once, and again only after it has
/// ended and begun anew; at most once a minute per alert, later ones waiting for that minute to
/// pass while their condition holds.
///
/// A sample that does not have the figure counts for nothing, but a condition that could not be
/// seen for a minute has ended. Alerts that are changed, switched off or removed end.
class AlertWatch : public QObject
{
    Q_OBJECT

public:
    /// Answers the minute-stats record of a process (by key or name), empty when it is unknown.
    using ProcessRecord = std::function<QVariantMap(const QString &process)>;
    /// Answers the process key of whom that record is, empty as above.
    using ProcessKey = std::function<QString(const QString &process)>;

    static constexpr qint64 kLeastBetween = 60 * 1000;  ///< milliseconds between two alarms
    static constexpr qint64 kLongestUnseen = 60 * 1000; ///< milliseconds without a figure

    /// Alerts and history must outlive it.
    AlertWatch(const Alerts &alerts, const CulpritHistory &history, ProcessRecord recordOf,
               ProcessKey keyOf);

    /// TopMonitor::hardwareEvent(), while the next sample is being assembled.
    void hardwareEvent(const QVariantMap &entry);
    /// A sample was published and is in the history.
    /// @param now milliseconds of a clock that is never set
    void sampleTaken(const QVariantMap &sample, qint64 now);

    /// Temperatures are in the other scale from the next sample on, and the alerts will be too:
    /// what has begun goes on. To be called before Alerts::changeScale().
    void changeScale(bool fahrenheit);

    /// Whether an alarm was told that has not ended.
    bool isAlarming() const;

Q_SIGNALS:
    void alarmTold(const pulsebar::Alarm &alarm);
    /// The condition of an alarm that was told holds no more, or nobody wants to know any longer.
    void alarmEnded(const QString &id);

private:
    enum class Phase {
        Idle,
        Begun, ///< the event came; its sample did not, yet
        Held,
        Told,
    };
    struct State
    {
        AlertRule rule; ///< with which it began
        Phase phase = Phase::Idle;
        qint64 since = 0;        ///< of the event's sample
        qint64 lastSeen = 0;     ///< when the figure was last there
        std::size_t samples = 0; ///< published since the event
        std::optional<qint64> lastTold;
    };

    void dropOutdated();
    void advance(State &state, const QVariantMap &sample, qint64 now) const;
    Alarm alarmFor(const State &state, const Alert &alert, const QVariantMap &sample,
                   qint64 now) const;
    std::size_t samplesToBlame(const State &state) const;

    const Alerts &m_alerts;
    const CulpritHistory &m_history;
    ProcessRecord m_recordOf;
    ProcessKey m_keyOf;
    QHash<QString, State> m_states;
};

/// An alert's figure in a sample, in the subject's unit: the one that the monitor compares. 1 and 0
/// for the cable. Absent where the sample does not have it.
std::optional<double> alertFigure(const AlertRule &rule, const QVariantMap &sample,
                                  const AlertWatch::ProcessRecord &recordOf);
/// Whether the condition holds in a sample, decided as precisely as the monitor does. Absent as
/// above.
std::optional<bool> alertHolds(const AlertRule &rule, const QVariantMap &sample,
                               const AlertWatch::ProcessRecord &recordOf);

} // namespace pulsebar
