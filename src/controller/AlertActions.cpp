#include "controller/AlertActions.h"

#include "controller/Alerts.h"
#include "engine/TopMonitor.h"

#include <QPointer>

#include <utility>

namespace pulsebar {

namespace {

/// What a new alert is before the user has said anything.
AlertRule usualRule()
{
    AlertRule rule;
    rule.threshold = alertThresholdRange(rule.subject, false).usual;
    rule.duration = AlertRule::kUsualDuration;
    return rule;
}

QStringList namesOfProcesses(const QVariantMap &sample)
{
    QStringList names;
    const QVariantList processes = sample.value(QStringLiteral("ProcessList")).toList();
    for (const QVariant &process : processes)
        names += process.toMap().value(QStringLiteral("ProcessName")).toString();
    names.removeAll(QString());
    names.removeDuplicates();
    names.sort(Qt::CaseInsensitive);
    return names;
}

} // namespace

AlertActions::AlertActions(const TopMonitor &monitor, Alerts &alerts, EditAlert edit)
    : m_monitor(monitor)
    , m_alerts(alerts)
    , m_edit(std::move(edit))
{
}

AlertMenuState AlertActions::menuState() const
{
    AlertMenuState state;
    for (const Alert &alert : m_alerts.list())
        state.alerts +=
            {alert.id, alertTitle(alert.rule, m_monitor.fahrenheit()), alert.rule.enabled};
    state.mayAdd = !m_alerts.isFull();
    return state;
}

void AlertActions::switchAlert(const QString &id)
{
    if (const Alert *alert = m_alerts.find(id))
        m_alerts.setEnabled(id, !alert->rule.enabled);
}

void AlertActions::removeAlert(const QString &id)
{
    m_alerts.remove(id);
}

AlertEdit AlertActions::editOf(const QString &id, const AlertRule &rule) const
{
    const QVariantMap sample = m_monitor.topDict();
    AlertEdit edit;
    edit.id = id;
    edit.rule = rule;
    edit.sensors = sample.value(QStringLiteral("CPUTemparatures")).toMap().keys();
    edit.processes = namesOfProcesses(sample);
    edit.fahrenheit = m_monitor.fahrenheit();
    return edit;
}

void AlertActions::addAlert()
{
    if (!m_edit)
        return;
    const AlertEdit edit = editOf({}, usualRule());
    m_edit(edit, [self = QPointer(this), scale = edit.fahrenheit](const AlertRule &rule) {
        if (self)
            self->m_alerts.add(self->inScaleOfNow(rule, scale));
    });
}

void AlertActions::editAlert(const QString &id)
{
    const Alert *alert = m_alerts.find(id);
    if (alert == nullptr || !m_edit)
        return;
    const AlertEdit edit = editOf(id, alert->rule);
    m_edit(edit, [self = QPointer(this), id, scale = edit.fahrenheit](const AlertRule &rule) {
        if (self)
            self->changeRule(id, self->inScaleOfNow(rule, scale));
    });
}

/// The scale may have been switched while the user was typing.
AlertRule AlertActions::inScaleOfNow(const AlertRule &rule, bool fahrenheit) const
{
    return m_monitor.fahrenheit() == fahrenheit ? rule : alertRuleInScale(rule, !fahrenheit);
}

/// It may have been switched on or off, and even removed, while the user was typing.
void AlertActions::changeRule(const QString &id, AlertRule rule)
{
    const Alert *alert = m_alerts.find(id);
    if (alert == nullptr)
        return;
    rule.enabled = alert->rule.enabled;
    m_alerts.change(id, rule);
}

} // namespace pulsebar
