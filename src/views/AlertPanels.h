#pragma once

#include "menu/AlertEdit.h"

#include <QHash>
#include <QPointer>

namespace pulsebar {

class AlertPanel;

/// The open panels, one per alert, and one for an alert that is to be made.
class AlertPanels
{
public:
    AlertPanels() = default;
    ~AlertPanels();
    AlertPanels(const AlertPanels &) = delete;
    AlertPanels &operator=(const AlertPanels &) = delete;

    /// See EditAlert.
    void edit(const AlertEdit &edit, std::function<void(const AlertRule &rule)> accepted);

private:
    QHash<QString, QPointer<AlertPanel>> m_open;
};

} // namespace pulsebar
