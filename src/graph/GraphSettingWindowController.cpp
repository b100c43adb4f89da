#include "graph/GraphSettingWindowController.h"

#include "graph/GraphPlacement.h"
#include "graph/GraphSettingPanel.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphWindowController.h"
#include "graph/RectText.h"
#include "graph/WindowTitle.h"
#include "util/Localisation.h"

namespace pulsebar {

namespace {

/// What the user types belongs to what is shown: traffic is compared per second.
QString thresholdUnit(const GraphSeries &series)
{
    const QString &unit = series.rules.dataUnit;
    return unit == u"KB" ? unit + QStringLiteral("/s") : unit;
}

} // namespace

GraphSettingWindowController::GraphSettingWindowController(GraphWindowController &mainController)
    : m_mainWindowController(mainController)
    , m_viewSetting(mainController.viewSetting())
    , m_panel(std::make_unique<GraphSettingPanel>(m_viewSetting,
                                                  thresholdUnit(mainController.series())))
{
    windowDidLoad();
}

GraphSettingWindowController::~GraphSettingWindowController() = default;

void GraphSettingWindowController::windowDidLoad()
{
    m_panel->setWindowTitle(literalWindowTitle(localizedFormat(
        QStringLiteral("Graph Settings: %@"), m_mainWindowController.series().caption())));
    connect(m_panel.get(), &GraphSettingPanel::closeRequested, this,
            &GraphSettingWindowController::settingSheetOk);
    connect(m_panel.get(), &QDialog::finished, this,
            [this](int result) { settingSheetDidEnd(*m_panel, result); });
    restoreFrame();
}

void GraphSettingWindowController::showWindow()
{
    m_wasShown = true;
    m_panel->setWindowState(m_panel->windowState() & ~Qt::WindowMinimized);
    m_panel->show();
    m_panel->raise();
    m_panel->activateWindow();
}

bool GraphSettingWindowController::isOpen() const
{
    return m_panel->isVisible();
}

void GraphSettingWindowController::settingSheetOk()
{
    m_panel->close();
}

void GraphSettingWindowController::settingSheetDidEnd(QDialog &sheet, int /*returnCode*/)
{
    sheet.hide();
    // Placed by us from now on: the toolkit would centre it anew, and not quite where it was. It is
    // the inside that is placed, here and from the store: how thick the window manager's frame is,
    // the program may not have learned yet, or not be told at all.
    sheet.setGeometry(sheet.geometry());
    storeFrame();
}

QString GraphSettingWindowController::frameKey() const
{
    return QStringLiteral("ViewSettingWindow_") + m_mainWindowController.series().windowKey;
}

void GraphSettingWindowController::storeFrame()
{
    if (!m_wasShown)
        return;
    const GraphWindowParts &parts = m_mainWindowController.parts();
    const QRectF frame(m_panel->geometry());
    parts.store.setGraphSetting(frameKey(), textFromRect(parts.screens().flipped(frame)));
}

/// Without a place of its own the panel goes where the window system puts dialogs.
void GraphSettingWindowController::restoreFrame()
{
    const GraphWindowParts &parts = m_mainWindowController.parts();
    const std::optional<QString> text = parts.store.graphSetting(frameKey());
    if (!text)
        return;
    const std::optional<QRectF> frame = rectFromText(*text);
    if (!frame || frame->isEmpty()) {
        parts.store.reportMalformed(frameKey());
        return;
    }
    const ScreenSpace space = parts.screens();
    m_panel->setGeometry(space.flipped(movedOntoScreen(*frame, space)).toRect());
}

} // namespace pulsebar
