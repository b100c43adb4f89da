#include "controller/Alerts.h"

#include "controller/AlertListText.h"
#include "controller/Settings.h"

#include <QLoggingCategory>
#include <QSet>

#include <algorithm>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcAlerts, "pulsebar.alerts")

QString storedIdOf(const QVariantMap &entry)
{
    return entry.value(QStringLiteral("id")).toString().left(AlertRule::kLongestText);
}

} // namespace

Alerts::Alerts(Settings &settings)
    : m_settings(settings)
{
}

void Alerts::load()
{
    const std::optional<QString> text = m_settings.value(preferences::kObserveArray);
    if (!text)
        return;
    const std::optional<QVariantList> entries = alertlist::entriesFromText(*text);
    if (entries)
        replace(alertsFrom(*entries));
    else
        m_settings.reportMalformed(preferences::kObserveArray.key);
}

const Alert *Alerts::find(const QString &id) const
{
    const auto found = std::find_if(m_list.begin(), m_list.end(),
                                    [&id](const Alert &alert) { return alert.id == id; });
    return found != m_list.end() ? &*found : nullptr;
}

bool Alerts::isFull() const
{
    return m_list.size() >= alertlist::kMostAlerts;
}

QString Alerts::add(const AlertRule &rule)
{
    const QVariantMap entry = entryWithAlertRule(rule);
    const std::optional<AlertRule> read = alertRuleFromEntry(entry);
    if (isFull() || !read)
        return {};
    QVector<Alert> list = m_list;
    list += Alert{newId(), entry, *read};
    QString id = list.constLast().id;
    replace(std::move(list));
    store();
    return id;
}

bool Alerts::change(const QString &id, const AlertRule &rule)
{
    const Alert *old = find(id);
    if (old == nullptr)
        return false;
    const QVariantMap entry = entryWithAlertRule(rule, old->entry);
    const std::optional<AlertRule> read = alertRuleFromEntry(entry);
    if (!read)
        return false;
    QVector<Alert> list = m_list;
    list[old - m_list.constData()] = {id, entry, *read};
    replace(std::move(list));
    store();
    return true;
}

bool Alerts::setEnabled(const QString &id, bool enabled)
{
    const Alert *alert = find(id);
    if (alert == nullptr)
        return false;
    AlertRule rule = alert->rule;
    rule.enabled = enabled;
    return change(id, rule);
}

bool Alerts::remove(const QString &id)
{
    QVector<Alert> list = m_list;
    if (list.removeIf([&id](const Alert &alert) { return alert.id == id; }) == 0)
        return false;
    replace(std::move(list));
    store();
    return true;
}

void Alerts::changeScale(bool fahrenheit)
{
    QVector<Alert> list = m_list;
    bool isAnother = false;
    for (Alert &alert : list) {
        const AlertRule converted = alertRuleInScale(alert.rule, fahrenheit);
        if (converted == alert.rule)
            continue;
        alert.entry = entryWithAlertRule(converted, alert.entry);
        alert.rule = converted;
        isAnother = true;
    }
    if (!isAnother)
        return;
    replace(std::move(list));
    store();
}

QVariantList Alerts::observeArray() const
{
    QVariantList entries;
    for (const Alert &alert : m_list)
        entries += alert.entry;
    return entries;
}

bool Alerts::setObserveArray(const QVariantList &entries)
{
    if (entries.size() > alertlist::kMostAlerts)
        return false;
    // A script may write what is there over and over; the disk need not hear of it.
    if (entries == observeArray())
        return true;
    replace(alertsFrom(entries));
    store();
    return true;
}

QVariantList Alerts::observedEntries() const
{
    QVariantList entries;
    for (const Alert &alert : m_list) {
        if (alert.rule.enabled)
            entries += alert.entry;
    }
    return entries;
}

/// Who has an id of its own goes by it. The others go by what they watch, so that an alert lives on
/// when a script writes the list anew with one more.
QVector<Alert> Alerts::alertsFrom(const QVariantList &entries)
{
    const alertlist::SoundEntries sound = alertlist::soundEntries(entries);
    for (const QString &problem : sound.problems)
        qCWarning(lcAlerts, "%s", qUtf8Printable(problem));
    QVector<Alert> list;
    QSet<QString> taken;
    const auto take = [&taken](const QString &id) {
        const bool isFree = !id.isEmpty() && !taken.contains(id);
        if (isFree)
            taken.insert(id);
        return isFree;
    };
    for (const QVariant &element : sound.entries) {
        const QVariantMap entry = element.toMap();
        const QString stored = storedIdOf(entry);
        list += Alert{take(stored) ? stored : QString(), entry, *alertRuleFromEntry(entry)};
    }
    for (Alert &alert : list) {
        const auto before = std::find_if(m_list.begin(), m_list.end(), [&](const Alert &old) {
            return alert.id.isEmpty() && old.rule == alert.rule && take(old.id);
        });
        if (before != m_list.end())
            alert.id = before->id;
    }
    for (Alert &alert : list) {
        while (alert.id.isEmpty()) {
            const QString made = newId();
            if (take(made))
                alert.id = made;
        }
    }
    return list;
}

void Alerts::replace(QVector<Alert> list)
{
    m_list = std::move(list);
    Q_EMIT changed();
}

void Alerts::store()
{
    if (m_list.isEmpty())
        m_settings.remove(preferences::kObserveArray);
    else
        m_settings.setValue(preferences::kObserveArray, alertlist::textFromEntries(observeArray()));
    m_settings.synchronize();
}

/// Never one that was in use before: a menu may still show an alert that is gone.
QString Alerts::newId()
{
    QString id;
    do {
        id = QStringLiteral("alert%1").arg(++m_made);
    } while (find(id) != nullptr);
    return id;
}

} // namespace pulsebar
