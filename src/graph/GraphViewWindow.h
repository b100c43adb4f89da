#pragma once

#include "graph/DraggableClearWindow.h"
#include "graph/Fade.h"
#include "graph/GraphPicture.h"
#include "graph/PointedToolTip.h"

#include <QPointer>
#include <QTimer>

#include <functional>
#include <utility>

namespace pulsebar {

class GraphWindowButton;
class GraphView;
class GraphViewSetting;

/// The window of one graph. It fades in when the pointer comes onto it and back when the pointer
/// leaves, offers its two buttons only meanwhile, and fades out while the value is on the quiet
/// side of the threshold.
class GraphViewWindow : public DraggableClearWindow
{
    Q_OBJECT

public:
    /// @param back counted from the newest sample of the graph, which is 0
    using SampleText = std::function<QString(std::size_t back)>;

    explicit GraphViewWindow(WindowServices *services);
    ~GraphViewWindow() override;

    /// Colours, opacities and threshold. Without one the window cannot be seen.
    void setViewSetting(GraphViewSetting *viewSetting);
    /// @param graphView must outlive the window or be taken away with nullptr
    void setGraphView(GraphView *graphView);
    void setCaption(const QString &caption);
    void setLastValue(const QString &lastValue);
    /// Tells about single samples in a tooltip under the pointer.
    /// @param sampleText answers a plain text; empty: there is nothing to tell
    void setSampleText(SampleText sampleText) { m_sampleText = std::move(sampleText); }
    /// What is shown beside the graph.
    const GraphPictureContent &content() const { return m_content; }

    /// Sets the resting opacity at once, without a fade.
    void updateBackgroundAlphaValue();
    /// Fades from the opacity of now; the first step is done at once. Cancels a fade.
    void changeAlphaValueTo(float target, int steps);
    bool isFading() const { return m_fade.isRunning(); }
    /// Fades to what the window is without the pointer: resting, or gone while under threshold.
    void changeWindowAlphaWithoutPointed();
    /// Whether the value is on the quiet side. Without a use while no threshold is used.
    void setUnderThreshold(bool underThreshold);
    bool underThreshold() const { return m_underThreshold; }

    /// Besides laying the parts anew: at the first time the window starts as if the pointer were on
    /// it when the program is the one that the user works with, and as if it were not otherwise.
    void updateTrackingRect() override;

    GraphWindowButton *closeButton() const { return m_closeButton; }
    GraphWindowButton *settingButton() const { return m_settingButton; }

Q_SIGNALS:
    void closeWindow();
    void showSettingPanel();

protected:
    bool event(QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseEntered(TrackingRectTag tag) override;
    void mouseExited(TrackingRectTag tag) override;
    void mouseUp(QMouseEvent *event) override;
    void paintContent(QPainter &painter, float opacity) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    GraphWindowButton *addButton(const QString &name);
    void placeButtons();
    void offerButtons(bool offered);
    void leaveAfterResize();
    void changeAlphaValue();
    void graphChanged();
    void contentChanged(const GraphPictureContent &content);
    void buttonsChanged();
    QString textAt(QPoint place) const;

    GraphWindowButton *m_closeButton;
    GraphWindowButton *m_settingButton;
    QPointer<GraphViewSetting> m_viewSetting;
    GraphView *m_graphView = nullptr;
    GraphPictureContent m_content;
    GraphPicture m_picture;
    SampleText m_sampleText;
    PointedToolTip m_toolTip;
    QTimer m_changeAlphaTimer;
    Fade m_fade;
    bool m_underThreshold = false;
    bool m_changeAlphaAtMouseUp = false; ///< the pointer left during a resize
    /// Of the whole window; none before the first updateTrackingRect().
    TrackingRectTag m_windowTrackingRectTag = TrackingRectTag::None;
};

} // namespace pulsebar
