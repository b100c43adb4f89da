#include "controller/AlarmText.h"

#include "controller/AlertWatch.h"
#include "util/Localisation.h"
#include "util/PlainLine.h"

#include <QStringList>

#include <cmath>

namespace pulsebar {

namespace {

/// A process uses so many percent of one core.
constexpr double kPercent = 100.0;

/// As people say it: nobody wants the seconds of an hour.
QString roughDuration(int seconds)
{
    static constexpr int kMinute = 60;
    static constexpr int kHour = 60 * kMinute;
    if (seconds >= 2 * kHour)
        return alertDurationText(seconds - seconds % kHour);
    return alertDurationText(seconds >= 2 * kMinute ? seconds - seconds % kMinute : seconds);
}

QString comparison(const Alarm &alarm, bool fahrenheit)
{
    const QString value = alertValueText(alarm.rule.subject, alarm.value, fahrenheit);
    const QString threshold = alertThresholdText(alarm.rule, fahrenheit);
    return alarm.rule.rising
               ? localizedFormat(QStringLiteral("%@ now, above %@"), value, threshold)
               : localizedFormat(QStringLiteral("%@ now, below %@"), value, threshold);
}

/// How it is, and for how long it has been so; nothing for a cable that has just been moved.
QString condition(const Alarm &alarm, bool fahrenheit)
{
    static constexpr double kMillisecondsPerSecond = 1000.0;
    QString now = alarm.rule.watchesCable() ? QString() : comparison(alarm, fahrenheit);
    const auto seconds =
        static_cast<int>(std::lround(static_cast<double>(alarm.heldFor) / kMillisecondsPerSecond));
    if (seconds <= 0 || now.isEmpty())
        return now;
    return localizedFormat(QStringLiteral("%@ for %@"), now, roughDuration(seconds));
}

QString culprit(const Alarm &alarm)
{
    // One process's share has said who it was.
    if (!alarm.culprit || alarm.rule.subject == AlertSubject::ProcessShare)
        return {};
    return localizedFormat(QStringLiteral("Busiest process: %@ (%.1f%%)"),
                           plainLine(alarm.culprit->name), alarm.culprit->fraction * kPercent);
}

} // namespace

Notification alarmNotification(const Alarm &alarm, bool fahrenheit)
{
    Notification notification;
    notification.summary = alertTitle(alarm.rule, fahrenheit);
    QStringList sentences{condition(alarm, fahrenheit)};
    // A name alone does not say what is watched.
    if (notification.summary != alertRuleText(alarm.rule, fahrenheit)) {
        const QString what = alertSubjectText(alarm.rule);
        sentences[0] = sentences[0].isEmpty()
                           ? what
                           : localizedFormat(QStringLiteral("%@: %@"), what, sentences[0]);
    }
    sentences += culprit(alarm);
    sentences.removeAll(QString());
    notification.body = sentences.join(QStringLiteral(". "));
    return notification;
}

QString alertGraphKey(const AlertRule &rule)
{
    switch (rule.subject) {
    case AlertSubject::CpuLoad:
        return QStringLiteral("CPUTotalUsage");
    case AlertSubject::NetworkIn:
        return QStringLiteral("Network__NetworkInMinuteStats");
    case AlertSubject::NetworkOut:
        return QStringLiteral("Network__NetworkOutMinuteStats");
    case AlertSubject::ProcessShare:
        return QStringLiteral("CPUUsage__") + rule.part;
    case AlertSubject::Temperature:
        return QStringLiteral("Temperature__") + rule.part;
    case AlertSubject::Fans:
        return QStringLiteral("FanMove__FanAverage");
    case AlertSubject::BatteryPercent:
    case AlertSubject::CablePluggedIn:
    case AlertSubject::CableUnplugged:
        break;
    }
    return {};
}

} // namespace pulsebar
