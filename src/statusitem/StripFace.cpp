#include "statusitem/StripFace.h"

#include "platform/WindowHints.h"
#include "statusitem/ItemDrawing.h"
#include "statusitem/TitleText.h"
#include "util/WindowSystem.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <cmath>
#include <utility>

namespace pulsebar {

namespace {

constexpr int margin = 4;

bool placesItself()
{
    return placesWindows(QGuiApplication::platformName());
}

Qt::WindowFlags stripFlags()
{
    Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                            Qt::WindowDoesNotAcceptFocus;
    const bool bypassed = bypassesWindowManager(QGuiApplication::platformName(),
                                                !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
    return bypassed ? flags | Qt::X11BypassWindowManagerHint : flags;
}

int mainScreenBottom()
{
    const QRect main = QGuiApplication::primaryScreen()->geometry();
    return main.y() + main.height();
}

QRect areaAround(QPoint centre)
{
    const QScreen *screen = QGuiApplication::screenAt(centre);
    return (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

} // namespace

StripFace::StripFace(StripPlace place, WindowHints *hints)
    : QWidget(nullptr, stripFlags())
    , m_place(std::move(place))
    , m_hints(hints)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11DoNotAcceptFocus);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    setWindowTitle(QStringLiteral("Pulsebar"));
    if (m_place.load) {
        m_left = m_place.load();
    }
    followScreens();
    // An item that never says anything has a size, too: its sign's.
    fitToContent();
}

void StripFace::followScreens()
{
    const auto watch = [this](const QScreen *screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, &StripFace::putInPlace);
    };
    for (const QScreen *screen : QGuiApplication::screens()) {
        watch(screen);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this, watch](const QScreen *screen) {
        watch(screen);
        putInPlace();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &StripFace::putInPlace);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &StripFace::putInPlace);
}

void StripFace::setContent(const ItemContent &content)
{
    if (content == m_content) {
        return;
    }
    m_content = content;
    setAccessibleName(content.title);
    fitToContent();
    update();
}

void StripFace::fitToContent()
{
    const int height = fontMetrics().height() + 2 * margin;
    const double scale = devicePixelRatioF();
    const int width = lineWidth(m_content, int(std::lround(height * scale)), scale);
    const QSize fitting(int(std::ceil(width / scale)) + 2 * margin, height);
    if (fitting != size() || !isVisible()) {
        setFixedSize(fitting);
        putInPlace();
    }
}

QPoint StripFace::wantedTopLeft() const
{
    if (m_left) {
        return placeDownward(*m_left, height(), mainScreenBottom());
    }
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    return {area.x() + area.width() - width() - margin, area.y() + margin};
}

void StripFace::putInPlace()
{
    if (m_dragging || !placesItself() || !QGuiApplication::primaryScreen()) {
        return;
    }
    const QPoint wanted = wantedTopLeft();
    const QPoint centre = wanted + QPoint(width() / 2, height() / 2);
    m_topLeft = insideArea(wanted, size(), areaAround(centre));
    move(m_topLeft);
}

void StripFace::rememberPlace()
{
    m_left = placeUpward(m_topLeft, height(), mainScreenBottom());
    if (m_place.store) {
        m_place.store(*m_left);
    }
}

void StripFace::paintEvent(QPaintEvent * /*event*/)
{
    // Painted means mapped: only now does a window manager listen.
    if (!std::exchange(m_hinted, true) && m_hints) {
        m_hints->keepOnAllWorkspaces(quintptr(winId()));
    }
    const double scale = devicePixelRatioF();
    const Ink ink =
        m_content.attention ? inkOnAttention() : Ink{palette().color(QPalette::WindowText), {}};
    QImage line = drawLine(m_content, (QSizeF(size()) * scale).toSize(), scale, ink);
    line.setDevicePixelRatio(scale);
    QPainter painter(this);
    // Areas, not lines: a line's pixels fall unevenly at a scale factor.
    painter.fillRect(rect(), palette().mid());
    painter.fillRect(rect().adjusted(1, 1, -1, -1),
                     m_content.attention ? QBrush(attentionBackground()) : palette().window());
    painter.drawImage(QPoint(0, 0), line);
}

void StripFace::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->position().toPoint();
    m_pressedAt = event->globalPosition().toPoint();
    m_dragging = false;
}

void StripFace::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    const QPoint pointer = event->globalPosition().toPoint();
    if (!m_dragging &&
        (pointer - m_pressedAt).manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    m_dragging = true;
    if (!placesItself()) {
        m_pressed.reset();
        windowHandle()->startSystemMove();
        return;
    }
    m_topLeft = pointer - *m_pressed;
    move(m_topLeft);
}

void StripFace::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    const bool wasPressed = std::exchange(m_pressed, std::nullopt).has_value();
    if (!std::exchange(m_dragging, false)) {
        if (wasPressed) {
            Q_EMIT clicked();
        }
        return;
    }
    if (placesItself()) {
        const QPoint centre = m_topLeft + QPoint(width() / 2, height() / 2);
        m_topLeft = insideArea(m_topLeft, size(), areaAround(centre));
        move(m_topLeft);
        rememberPlace();
    }
}

void StripFace::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        fitToContent();
    }
}

void StripFace::hideEvent(QHideEvent *event)
{
    m_hinted = false;
    QWidget::hideEvent(event);
}

void StripFace::closeEvent(QCloseEvent *event)
{
    // The item goes with the program, not at a window manager's request.
    event->setAccepted(!event->spontaneous());
}

} // namespace pulsebar
