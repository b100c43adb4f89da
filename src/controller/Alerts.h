#pragma once

#include "menu/AlertRule.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVector>

namespace pulsebar {

class Settings;

/// One alert of the list.
struct Alert
{
    /// Names it for as long as the program runs. The entry's own "id" where that is unique; else
    /// made up. The entry is not changed for it: scripts get their entries back as they wrote them.
    QString id;
    QVariantMap entry;
    AlertRule rule; ///< what the entry says
};

/// The user's alerts: observe entries in the order in which they were made, at most 64. Every
/// change is stored at once, under "observeArray".
class Alerts : public QObject
{
    Q_OBJECT

public:
    /// The settings must outlive it.
    explicit Alerts(Settings &settings);

    /// Takes the stored list up. Broken entries are reported and left out. Changes nothing on the
    /// disk.
    void load();

    const QVector<Alert> &list() const { return m_list; }
    /// Null when there is none of that id.
    const Alert *find(const QString &id) const;
    bool isFull() const;

    /// Puts an alert at the end. @return its id; empty when the list is full or the rule broken
    QString add(const AlertRule &rule);
    /// Writes a rule into the alert's entry; foreign keys stay. @return false, and nothing has
    /// changed, when there is no such alert or the rule is broken
    bool change(const QString &id, const AlertRule &rule);
    bool setEnabled(const QString &id, bool enabled);
    bool remove(const QString &id);
    /// Temperatures are shown in the other scale from now on, and watched in it: thresholds follow.
    void changeScale(bool fahrenheit);

    /// The whole list as the bus property shows it, foreign keys and all.
    QVariantList observeArray() const;
    /// Replaces the list; what is broken is reported and left out. An alert that is in both lists
    /// keeps its id.
    /// @return false, and nothing has changed, for more than 64 entries
    bool setObserveArray(const QVariantList &entries);
    /// What the monitor is to watch: the entries that are switched on.
    QVariantList observedEntries() const;

Q_SIGNALS:
    /// The list was replaced. Whoever hears it may change it again.
    void changed();

private:
    QVector<Alert> alertsFrom(const QVariantList &entries);
    void replace(QVector<Alert> list);
    void store();
    QString newId();

    Settings &m_settings;
    QVector<Alert> m_list;
    int m_made = 0; ///< ids that were made up
};

} // namespace pulsebar
