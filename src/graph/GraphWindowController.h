#pragma once

#include "graph/GraphSeries.h"
#include "graph/GraphSettingStore.h"
#include "graph/GraphView.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphWindow.h"
#include "graph/ScreenSpace.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace pulsebar {

class GraphSettingWindowController;
class GraphViewWindow;
class ScreenChanges;
class WindowServices;

/// What the graph windows share; all of it must outlive them.
struct GraphWindowParts
{
    GraphSettingStore &store;
    WindowServices *windowServices = nullptr;
    /// Null: the screens never change.
    const ScreenChanges *screenChanges = nullptr;
    std::function<ScreenSpace()> screens = currentScreenSpace;
    /// Asks whoever holds the windows to close that of a key.
    std::function<void(const QString &windowKey)> closeGraphViewForKey = {};
    /// What there is to tell about a sample of a series, counted back from its newest one; plain.
    std::function<QString(const QString &windowKey, std::size_t back)> sampleText = {};
};

/// One graph on the screen: its window, its drawing, its settings and the panel that edits them.
class GraphWindowController : public QObject, public GraphWindow
{
    Q_OBJECT

public:
    /// Reads the settings of the series; the window is made later.
    GraphWindowController(const QString &key, const GraphWindowParts &parts);
    ~GraphWindowController() override;

    void window() override;
    void orderOut() override;
    void orderFront() override;
    void setUsageCacheArray(const std::optional<UsageCache> &array) override;
    void close() override;
    void storeSetting() override;

    const GraphWindowParts &parts() const { return m_parts; }
    const GraphSeries &series() const { return m_series; }
    GraphViewSetting &viewSetting() { return *m_viewSetting; }
    /// Null before window() was asked for.
    GraphViewWindow *graphViewWindow() const { return m_window.get(); }
    const GraphView *graphView() const { return m_graphView.get(); }
    /// Of the screen on which the window was placed last; the zero rectangle before.
    QRectF currentScreenRect() const { return m_currentScreenRect; }

    void closeWindow();
    void showSettingPanel();
    GraphSettingWindowController *settingController() const { return m_settingController.get(); }

private:
    std::unique_ptr<GraphViewSetting> loadSetting() const;
    void windowDidLoad();
    void registerMyNotifications();
    void setWindowPosition();
    void updateScreenFrame();
    void setWindowFrame();
    void wndowDidMoved();
    void saveWindowFrame();
    void windowWillClose();

    GraphWindowParts m_parts;
    GraphSeries m_series;
    std::unique_ptr<GraphViewSetting> m_viewSetting;
    std::unique_ptr<GraphView> m_graphView;
    std::unique_ptr<GraphViewWindow> m_window;
    std::unique_ptr<GraphSettingWindowController> m_settingController;
    QRectF m_currentScreenRect;
    QTimer m_positioning;
    bool m_placed = false;
    bool m_orderedOut = false;
};

} // namespace pulsebar
