#include "graph/GraphWindowController.h"

#include "graph/GraphPlacement.h"
#include "graph/GraphSettingWindowController.h"
#include "graph/GraphViewWindow.h"
#include "graph/ScreenChanges.h"

#include <chrono>

namespace pulsebar {

namespace {

/// Between making the window and showing it.
constexpr std::chrono::milliseconds kPositioningDelay{10};

std::unique_ptr<GraphView> makeView(const GraphSeries &series)
{
    if (series.isTraffic())
        return std::make_unique<NetworkGraphView>();
    return std::make_unique<CPUGraphView>();
}

} // namespace

GraphWindowController::GraphWindowController(const QString &key, const GraphWindowParts &parts)
    : m_parts(parts)
    , m_series(key)
    , m_viewSetting(loadSetting())
{
    m_positioning.setSingleShot(true);
    m_positioning.setInterval(kPositioningDelay);
    connect(&m_positioning, &QTimer::timeout, this, &GraphWindowController::setWindowPosition);
}

GraphWindowController::~GraphWindowController() = default;

std::unique_ptr<GraphViewSetting> GraphWindowController::loadSetting() const
{
    const std::optional<QString> text = m_parts.store.graphSetting(m_series.keyToLoad());
    if (!text)
        return std::make_unique<GraphViewSetting>();
    std::unique_ptr<GraphViewSetting> setting = GraphViewSetting::decode(*text);
    if (setting)
        return setting;
    m_parts.store.reportMalformed(m_series.keyToLoad());
    return std::make_unique<GraphViewSetting>();
}

void GraphWindowController::window()
{
    if (!m_window)
        windowDidLoad();
}

void GraphWindowController::windowDidLoad()
{
    m_window = std::make_unique<GraphViewWindow>(m_parts.windowServices);
    m_window->initWithContentRect(m_viewSetting->windowRect());
    m_window->setResizable(true);
    m_window->setViewSetting(m_viewSetting.get());
    m_window->updateBackgroundAlphaValue();
    m_graphView = makeView(m_series);
    m_graphView->setViewSetting(m_viewSetting.get());
    m_window->setGraphView(m_graphView.get());
    m_window->setCaption(m_series.caption());
    if (m_parts.sampleText)
        m_window->setSampleText(
            [this](std::size_t back) { return m_parts.sampleText(m_series.windowKey, back); });
    m_positioning.start();
    registerMyNotifications();
}

void GraphWindowController::registerMyNotifications()
{
    GraphViewWindow *window = m_window.get();
    const GraphViewSetting *setting = m_viewSetting.get();
    connect(setting, &GraphViewSetting::alphaWithoutPointChanged, window,
            &GraphViewWindow::updateBackgroundAlphaValue);
    for (const auto changed :
         {&GraphViewSetting::useThresholdChanged, &GraphViewSetting::thresholdChanged,
          &GraphViewSetting::thresholdTypeChanged})
        connect(setting, changed, window, &GraphViewWindow::changeWindowAlphaWithoutPointed);
    if (m_parts.screenChanges)
        connect(m_parts.screenChanges, &ScreenChanges::changed, this,
                &GraphWindowController::updateScreenFrame);
    connect(window, &GraphViewWindow::frameChanged, this, &GraphWindowController::wndowDidMoved);
    // Closing ends this object, which must not happen in the midst of the window's own work.
    connect(window, &GraphViewWindow::closeWindow, this, &GraphWindowController::closeWindow,
            Qt::QueuedConnection);
    connect(window, &GraphViewWindow::showSettingPanel, this,
            &GraphWindowController::showSettingPanel);
}

void GraphWindowController::setWindowPosition()
{
    setWindowFrame();
    m_window->updateTrackingRect();
    if (!m_orderedOut)
        m_window->orderFront();
}

void GraphWindowController::updateScreenFrame()
{
    // One that was not placed yet will be, on the screens as they are then.
    if (m_placed)
        setWindowFrame();
}

void GraphWindowController::setWindowFrame()
{
    const GraphPlacement placement = graphPlacement(*m_viewSetting, m_parts.screens());
    m_window->setFrame(placement.frame);
    m_currentScreenRect = placement.screenFrame;
    m_placed = true;
}

/// A window that a change of the screens pushed to another one is not remembered there.
void GraphWindowController::wndowDidMoved()
{
    const ScreenSpace space = m_parts.screens();
    if (m_placed && space.screens.value(space.screenOf(m_window->frame())) == m_currentScreenRect)
        saveWindowFrame();
}

void GraphWindowController::saveWindowFrame()
{
    const ScreenSpace space = m_parts.screens();
    const QRectF frame = m_window->frame();
    const qsizetype number = space.screenOf(frame);
    m_viewSetting->setWindowRectForScreen(frame, space.screens.value(number));
    m_viewSetting->setWindowRect(frame);
    m_viewSetting->setScreenNumber(int(number));
}

void GraphWindowController::orderOut()
{
    m_orderedOut = true;
    if (m_window)
        m_window->orderOut();
}

void GraphWindowController::orderFront()
{
    m_orderedOut = false;
    if (m_placed)
        m_window->orderFront();
}

void GraphWindowController::setUsageCacheArray(const std::optional<UsageCache> &array)
{
    if (!m_window)
        return;
    const QVariant last = array && !array->isEmpty() ? array->constLast() : QVariant();
    if (m_viewSetting->useThreshold() && !m_window->isResizing())
        m_window->setUnderThreshold(isUnderThreshold(m_series, *m_viewSetting, last));
    m_graphView->setUsageCacheArray(array.value_or(UsageCache()));
    m_window->setLastValue(lastValueText(m_series, last));
}

void GraphWindowController::windowWillClose()
{
    // Before it was placed, a window has no place worth remembering.
    if (m_placed)
        saveWindowFrame();
    m_parts.store.setGraphSetting(m_series.keyToStore(), m_viewSetting->encode());
    if (m_settingController)
        m_settingController->storeFrame();
    m_parts.store.flush();
}

void GraphWindowController::close()
{
    m_positioning.stop();
    windowWillClose();
    m_settingController.reset();
    if (m_window)
        m_window->orderOut();
}

void GraphWindowController::storeSetting()
{
    windowWillClose();
}

void GraphWindowController::closeWindow()
{
    if (m_parts.closeGraphViewForKey)
        m_parts.closeGraphViewForKey(m_series.windowKey);
}

void GraphWindowController::showSettingPanel()
{
    if (!m_settingController)
        m_settingController = std::make_unique<GraphSettingWindowController>(*this);
    m_settingController->showWindow();
}

} // namespace pulsebar
