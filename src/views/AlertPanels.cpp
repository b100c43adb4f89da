#include "views/AlertPanels.h"

#include "views/AlertPanel.h"

#include <utility>

namespace pulsebar {

AlertPanels::~AlertPanels()
{
    for (const QPointer<AlertPanel> &panel : std::as_const(m_open))
        delete panel.data();
}

void AlertPanels::edit(const AlertEdit &edit, std::function<void(const AlertRule &rule)> accepted)
{
    AlertPanel *panel = m_open.value(edit.id);
    // One that was closed goes at the end of the run loop's turn.
    if (panel == nullptr || !panel->isVisible()) {
        panel = new AlertPanel(edit, std::move(accepted));
        panel->setAttribute(Qt::WA_DeleteOnClose);
        m_open.insert(edit.id, panel);
    }
    panel->show();
    panel->raise();
    panel->activateWindow();
}

} // namespace pulsebar
