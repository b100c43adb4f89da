#include "graph/ButtonArt.h"

#include "graph/LineRaster.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace pulsebar {

namespace {

/// Lengths are parts of the button's radius.
constexpr double rim = 0.1;
constexpr double ring = 0.16;

/// Interrupts a line.
QPointF gap()
{
    constexpr double nowhere = std::numeric_limits<double>::quiet_NaN();
    return {nowhere, nowhere};
}

QPointF onCircle(double radius, double turn)
{
    const double angle = 2 * std::numbers::pi * turn;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

QVector<QPointF> circle(double radius)
{
    constexpr int sides = 32;
    QVector<QPointF> points;
    for (int i = 0; i <= sides; ++i)
        points.append(onCircle(radius, double(i) / sides));
    return points;
}

QVector<QPointF> cross()
{
    constexpr double arm = 0.33;
    return {{-arm, -arm}, {arm, arm}, gap(), {-arm, arm}, {arm, -arm}};
}

QVector<QPointF> gear()
{
    constexpr int teeth = 8;
    QVector<QPointF> points = circle(0.32);
    for (int i = 0; i < teeth; ++i)
        points << gap() << onCircle(0.42, double(i) / teeth) << onCircle(0.55, double(i) / teeth);
    return points;
}

/// The disc's colour.
QColor discColor(GraphButton button, GraphButtonLook look)
{
    const bool closes = button == GraphButton::Close;
    switch (look) {
    case GraphButtonLook::Hovered:
        return closes ? QColor(214, 54, 46) : QColor(43, 108, 196);
    case GraphButtonLook::Pressed:
        return closes ? QColor(150, 30, 24) : QColor(24, 70, 138);
    default:
        return {40, 40, 44, 225};
    }
}

/// The pixels of one button, in parts of its radius around its centre.
class Canvas
{
public:
    Canvas(QImage &image, const QRectF &box)
        : m_image(image)
        , m_center(box.center() * image.devicePixelRatio())
        , m_radius(std::min(box.width(), box.height()) / 2 * image.devicePixelRatio())
    {
    }

    void stroke(QVector<QPointF> points, double width, const QColor &color)
    {
        for (QPointF &point : points)
            point = m_center + point * m_radius;
        drawPolyline(m_image, points, width * m_radius, color);
    }

    /// A point of the line is a disc.
    void disc(double radius, const QColor &color) { stroke({QPointF(0, 0)}, 2 * radius, color); }

private:
    QImage &m_image;
    QPointF m_center;
    double m_radius;
};

} // namespace

void drawGraphButton(QImage &image, const QRectF &box, GraphButton button, GraphButtonLook look,
                     bool focused)
{
    if (look == GraphButtonLook::Hidden)
        return;
    Canvas canvas(image, box);
    const double disc = focused ? 1 - 2 * ring : 1 - rim;
    if (focused) {
        canvas.disc(1, QColor(0, 0, 0, 200));
        canvas.stroke(circle(1 - ring), ring, QColor(90, 170, 255));
    }
    canvas.disc(disc, discColor(button, look));
    canvas.stroke(circle(disc), rim, QColor(255, 255, 255, 190));
    if (button == GraphButton::Close)
        canvas.stroke(cross(), 0.2, Qt::white);
    else
        canvas.stroke(gear(), 0.2, Qt::white);
}

} // namespace pulsebar
