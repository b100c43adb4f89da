#include "controller/AlarmText.h"

#include "controller/AlertWatch.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/PlainLine.h"
#include "util/Text.h"

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

/// Of the very process that was told of, where it is known which of its name that was.
QString processGraphKey(const Alarm &alarm)
{
    const QString &watched = alarm.rule.part;
    if (!alarm.culprit || alarm.culprit->number <= 0)
        return graphkeys::process(watched);
    const QString name = substringFrom(watched, QStringLiteral("//")).value_or(watched);
    return graphkeys::process(alarm.culprit->number, name);
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

QString alertGraphKey(const Alarm &alarm)
{
    switch (alarm.rule.subject) {
    case AlertSubject::CpuLoad:
        return graphkeys::totalCpu();
    case AlertSubject::NetworkIn:
        return graphkeys::traffic(QStringLiteral("NetworkInMinuteStats"));
    case AlertSubject::NetworkOut:
        return graphkeys::traffic(QStringLiteral("NetworkOutMinuteStats"));
    case AlertSubject::ProcessShare:
        return processGraphKey(alarm);
    case AlertSubject::Temperature:
        return graphkeys::temperature(alarm.rule.part);
    case AlertSubject::Fans:
        return graphkeys::fanAverage();
    case AlertSubject::BatteryPercent:
    case AlertSubject::CablePluggedIn:
    case AlertSubject::CableUnplugged:
        break;
    }
    return {};
}

} // namespace pulsebar
