#include "graph/GraphViewWindow.h"

#include "graph/GraphView.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphWindowButton.h"
#include "graph/HaloText.h"
#include "graph/ShowPicture.h"
#include "graph/WindowTitle.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>

#include <chrono>
#include <utility>

namespace pulsebar {

namespace {

bool applicationIsActive()
{
    return QGuiApplication::focusWindow() != nullptr;
}

} // namespace

GraphViewWindow::GraphViewWindow(WindowServices *services)
    : DraggableClearWindow(services)
    , m_closeButton(addButton(QStringLiteral("Close")))
    , m_settingButton(addButton(QStringLiteral("Settings")))
    , m_toolTip(this, [this](QPoint place) { return textAt(place); })
{
    connect(m_closeButton, &QAbstractButton::clicked, this, &GraphViewWindow::closeWindow);
    connect(m_settingButton, &QAbstractButton::clicked, this, &GraphViewWindow::showSettingPanel);
    m_changeAlphaTimer.setSingleShot(true);
    m_changeAlphaTimer.setInterval(std::chrono::round<std::chrono::milliseconds>(
        std::chrono::duration<double>(Fade::interval)));
    connect(&m_changeAlphaTimer, &QTimer::timeout, this, &GraphViewWindow::changeAlphaValue);
    // Or a click would give it to the first button, as windows have it that come to the focus.
    setFocus();
    updateBackgroundAlphaValue();
}

GraphViewWindow::~GraphViewWindow()
{
    // Hiding sends events to the buttons, which tell this class.
    orderOut();
    setGraphView(nullptr);
}

GraphWindowButton *GraphViewWindow::addButton(const QString &name)
{
    auto *button = new GraphWindowButton(name, this);
    button->installEventFilter(this);
    connect(button, &GraphWindowButton::lookChanged, this, &GraphViewWindow::buttonsChanged);
    return button;
}

void GraphViewWindow::setViewSetting(GraphViewSetting *viewSetting)
{
    if (m_viewSetting) {
        m_viewSetting->disconnect(this);
    }
    m_viewSetting = viewSetting;
    if (viewSetting) {
        connect(viewSetting, &GraphViewSetting::colorsChanged, this,
                &GraphViewWindow::graphChanged);
        graphChanged();
    }
}

void GraphViewWindow::setGraphView(GraphView *graphView)
{
    if (m_graphView) {
        m_graphView->setNeedsDisplay({});
    }
    m_graphView = graphView;
    if (graphView) {
        graphView->setNeedsDisplay([this] { graphChanged(); });
        graphChanged();
    }
}

void GraphViewWindow::graphChanged()
{
    if (m_viewSetting) {
        m_content.characterColor = m_viewSetting->characterColor();
    }
    setNeedsDisplay();
    // Every sample moves those before it.
    m_toolTip.refresh();
}

/// Empty where nothing is to be told.
QString GraphViewWindow::textAt(QPoint place) const
{
    if (!m_graphView || !m_sampleText) {
        return {};
    }
    // Amid the pixel to which the pointer points.
    const std::optional<std::size_t> back = m_graphView->sampleAt(place.x() + 0.5, width());
    return back ? m_sampleText(*back) : QString();
}

bool GraphViewWindow::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip) {
        return DraggableClearWindow::event(event);
    }
    event->setAccepted(m_toolTip.show(static_cast<QHelpEvent *>(event)->pos()));
    return true;
}

void GraphViewWindow::mouseMoveEvent(QMouseEvent *event)
{
    DraggableClearWindow::mouseMoveEvent(event);
    if (event->buttons() == Qt::NoButton) {
        m_toolTip.follow(event->position().toPoint());
    }
}

void GraphViewWindow::contentChanged(const GraphPictureContent &content)
{
    if (content == m_content) {
        return;
    }
    m_content = content;
    setNeedsDisplay();
}

void GraphViewWindow::setCaption(const QString &caption)
{
    setWindowTitle(literalWindowTitle(caption));
    GraphPictureContent content = m_content;
    content.caption = caption;
    contentChanged(content);
}

void GraphViewWindow::setLastValue(const QString &lastValue)
{
    GraphPictureContent content = m_content;
    content.lastValue = lastValue;
    contentChanged(content);
}

void GraphViewWindow::buttonsChanged()
{
    GraphPictureContent content = m_content;
    content.closeButton = m_closeButton->look();
    content.settingButton = m_settingButton->look();
    content.closeButtonFocused = m_closeButton->showsFocus();
    content.settingButtonFocused = m_settingButton->showsFocus();
    contentChanged(content);
}

void GraphViewWindow::offerButtons(bool offered)
{
    m_closeButton->setOffered(offered);
    m_settingButton->setOffered(offered);
}

void GraphViewWindow::updateBackgroundAlphaValue()
{
    setAlphaValue(m_viewSetting ? m_viewSetting->alphaWithoutPoint() : 0.0F);
}

void GraphViewWindow::changeAlphaValueTo(float target, int steps)
{
    m_fade.start(target, steps);
    m_changeAlphaTimer.stop();
    changeAlphaValue();
}

void GraphViewWindow::changeAlphaValue()
{
    setAlphaValue(m_fade.step(alphaValue()));
    if (m_fade.isRunning()) {
        m_changeAlphaTimer.start();
    }
}

void GraphViewWindow::changeWindowAlphaWithoutPointed()
{
    if (!m_viewSetting) {
        return;
    }
    const bool gone = m_viewSetting->useThreshold() && m_underThreshold;
    changeAlphaValueTo(gone ? 0.0F : m_viewSetting->alphaWithoutPoint(), Fade::usualSteps);
}

void GraphViewWindow::setUnderThreshold(bool underThreshold)
{
    if (!m_viewSetting || !m_viewSetting->useThreshold()) {
        return;
    }
    if (std::exchange(m_underThreshold, underThreshold) != underThreshold) {
        changeWindowAlphaWithoutPointed();
    }
}

void GraphViewWindow::updateTrackingRect()
{
    if (applicationIsActive()) {
        mouseEntered(TrackingRectTag::None);
    } else {
        mouseExited(TrackingRectTag::None);
    }
    m_windowTrackingRectTag = TrackingRectTag::Window;
    tracking().updateWindowRect(contentSize());
    DraggableClearWindow::updateTrackingRect();
}

void GraphViewWindow::mouseEntered(TrackingRectTag tag)
{
    if (tag == m_windowTrackingRectTag && m_viewSetting) {
        changeAlphaValueTo(m_viewSetting->alphaAtPoint(), Fade::usualSteps);
        offerButtons(true);
    }
    DraggableClearWindow::mouseEntered(tag);
}

void GraphViewWindow::mouseExited(TrackingRectTag tag)
{
    if (tag == m_windowTrackingRectTag && m_viewSetting) {
        if (isResizing()) {
            m_changeAlphaAtMouseUp = true;
        } else {
            changeWindowAlphaWithoutPointed();
            offerButtons(false);
        }
    }
    DraggableClearWindow::mouseExited(tag);
}

void GraphViewWindow::leaveAfterResize()
{
    if (std::exchange(m_changeAlphaAtMouseUp, false)) {
        changeWindowAlphaWithoutPointed();
        offerButtons(false);
    }
}

void GraphViewWindow::mouseUp(QMouseEvent *event)
{
    leaveAfterResize();
    DraggableClearWindow::mouseUp(event);
}

void GraphViewWindow::leaveEvent(QEvent *event)
{
    m_toolTip.end();
    DraggableClearWindow::leaveEvent(event);
}

void GraphViewWindow::hideEvent(QHideEvent *event)
{
    m_toolTip.end();
    // The drag ends here, and its release will not be told.
    DraggableClearWindow::hideEvent(event);
    leaveAfterResize();
}

void GraphViewWindow::placeButtons()
{
    const GraphLayout layout = graphLayout(size(), lineHeight(font()));
    m_closeButton->setGeometry(layout.closeButton.toAlignedRect());
    m_settingButton->setGeometry(layout.settingButton.toAlignedRect());
}

void GraphViewWindow::resizeEvent(QResizeEvent *event)
{
    DraggableClearWindow::resizeEvent(event);
    placeButtons();
}

void GraphViewWindow::changeEvent(QEvent *event)
{
    DraggableClearWindow::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        GraphPictureContent content = m_content;
        content.font = font();
        contentChanged(content);
        placeButtons();
    }
}

void GraphViewWindow::closeEvent(QCloseEvent *event)
{
    // At a window manager's request it is closed as its button does it.
    if (event->spontaneous()) {
        event->ignore();
        Q_EMIT closeWindow();
    }
}

bool GraphViewWindow::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter) {
        const auto *pointer = static_cast<QSinglePointEvent *>(event);
        pointerAt(static_cast<QWidget *>(object)->mapTo(this, pointer->position()));
    }
    return DraggableClearWindow::eventFilter(object, event);
}

void GraphViewWindow::paintContent(QPainter &painter, float opacity)
{
    if (m_graphView) {
        showPicture(painter, m_picture.draw(*m_graphView, m_content, size(), devicePixelRatioF()),
                    opacity);
    }
}

} // namespace pulsebar
