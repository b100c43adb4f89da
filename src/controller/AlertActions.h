#pragma once

#include "menu/AlertEdit.h"
#include "menu/AlertMenu.h"

#include <QObject>

namespace pulsebar {

class Alerts;
class TopMonitor;

/// The rows of the "Alerts" menu, and what they do. Each row names its alert; one that is gone is
/// left alone.
class AlertActions : public QObject
{
public:
    /// Monitor and alerts must outlive it.
    /// @param edit may be empty: then there is nothing to edit with
    AlertActions(const TopMonitor &monitor, Alerts &alerts, EditAlert edit);

    AlertMenuState menuState() const;
    void switchAlert(const QString &id);
    void addAlert();
    void editAlert(const QString &id);
    void removeAlert(const QString &id);

private:
    AlertEdit editOf(const QString &id, const AlertRule &rule) const;
    AlertRule inScaleOfNow(const AlertRule &rule, bool fahrenheit) const;
    void changeRule(const QString &id, AlertRule rule);

    const TopMonitor &m_monitor;
    Alerts &m_alerts;
    EditAlert m_edit;
};

} // namespace pulsebar
