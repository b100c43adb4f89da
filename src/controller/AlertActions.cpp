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
    static constexpr int kSeconds = 20;
    AlertRule rule;
    rule.threshold = alertThresholdRange(rule.subject, false).usual;
    rule.duration = kSeconds;
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
    m_edit(editOf({}, usualRule()), [self = QPointer(this)](const AlertRule &rule) {
        if (self)
            self->m_alerts.add(rule);
    });
}

void AlertActions::editAlert(const QString &id)
{
    const Alert *alert = m_alerts.find(id);
    if (alert == nullptr || !m_edit)
        return;
    m_edit(editOf(id, alert->rule), [self = QPointer(this), id](const AlertRule &rule) {
        if (self)
            self->changeRule(id, rule);
    });
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
