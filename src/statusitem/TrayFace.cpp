#include "statusitem/TrayFace.h"

#include "statusitem/TitleText.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace pulsebar {

namespace {

constexpr int usualHeight = 22;

double screenScale()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1.0;
}

QImage pictureFor(const ItemContent &content, QSize wanted, QSize given, const Ink &ink)
{
    if (!content.title.isEmpty() && cutToSquare(wanted, given)) {
        const int extent = std::min(given.width(), given.height());
        ItemContent shortened = content;
        shortened.title = shortTitle(content.title);
        const QImage square = drawShortText(shortened, extent, ink);
        QImage picture(given, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        for (int y = 0; y < extent; ++y) {
            std::copy_n(square.constScanLine(y), square.bytesPerLine(),
                        picture.scanLine(y + (given.height() - extent) / 2) +
                            qsizetype(given.width() - extent) / 2 * 4);
        }
        return picture;
    }
    return drawLine(content, given, screenScale(), ink);
}

} // namespace

TrayFace::TrayFace(TrayDock *dock, QObject *parent)
    : QObject(parent)
    , m_dock(dock)
{
    if (m_dock) {
        m_dock->setListener(this);
    }
}

TrayFace::~TrayFace()
{
    if (m_dock) {
        m_dock->setListener(nullptr);
        m_dock->undock();
    }
}

void TrayFace::show(const ItemContent &content, bool dark)
{
    m_content = content;
    m_dark = dark;
    askForRoom();
    draw();
}

void TrayFace::hide()
{
    if (!m_content) {
        return;
    }
    m_content.reset();
    m_drawn.reset();
    m_wanted = {};
    m_dock->undock();
}

void TrayFace::askForRoom()
{
    if (!m_content || !trayAvailable()) {
        return;
    }
    const int height =
        docked() ? m_dock->geometry().height() : int(std::lround(usualHeight * screenScale()));
    const int width = m_content->title.isEmpty() && m_content->length <= 0
                          ? height
                          : lineWidth(*m_content, height, screenScale());
    if (m_wanted != QSize(width, height)) {
        m_wanted = {width, height};
        m_dock->dock(m_wanted);
    }
}

Ink TrayFace::ink() const
{
    const bool attention = m_content->attention;
    const auto said = m_dock->foreground();
    if (said && attention) {
        // Light texts stand on a dark panel.
        return attentionInkOnPanel(qGray(QRgb(*said)) >= 128);
    }
    if (said) {
        return {QColor(QRgb(*said)), {}};
    }
    // Panels of small window managers have colours of their own, whatever the desktop's windows
    // are.
    const auto behind = m_dock->background();
    const bool dark = behind ? qGray(QRgb(*behind)) < 128 : m_dark;
    return attention ? attentionInkOnPanel(dark) : inkOnPanel(dark);
}

void TrayFace::draw()
{
    if (!m_content || !docked()) {
        return;
    }
    const Drawn now{*m_content, m_dock->geometry().size(), m_dark};
    if (now.size.isEmpty() || m_drawn == now) {
        return;
    }
    m_drawn = now;
    const QImage picture = pictureFor(*m_content, m_wanted, now.size, ink());
    const auto *pixels = reinterpret_cast<const std::uint32_t *>(picture.constBits());
    m_dock->draw(picture.size(),
                 {pixels, std::size_t(picture.width()) * std::size_t(picture.height())});
}

bool TrayFace::showsWholeTitle() const
{
    return docked() && !cutToSquare(m_wanted, m_dock->geometry().size());
}

QRect TrayFace::geometry() const
{
    if (!docked()) {
        return {};
    }
    const QRect place = m_dock->geometry();
    const double scale = screenScale();
    return {(QPointF(place.topLeft()) / scale).toPoint(), (QSizeF(place.size()) / scale).toSize()};
}

void TrayFace::trayAvailableChanged()
{
    m_wanted = {};
    m_drawn.reset();
    askForRoom();
    Q_EMIT trayChanged();
}

void TrayFace::traySizeChanged()
{
    askForRoom();
    m_drawn.reset();
    draw();
    Q_EMIT dockedChanged();
}

void TrayFace::trayClicked(Qt::MouseButton button)
{
    if (button == Qt::LeftButton || button == Qt::RightButton) {
        Q_EMIT clicked();
    }
}

} // namespace pulsebar
