#include "graph/ShowPicture.h"

#include "support/WaitFor.h"

#include <QBackingStore>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <gtest/gtest.h>

#include <cmath>

using namespace pulsebar;

namespace {

/// No pixel is like its neighbours, so that whatever resamples it shows.
QImage pattern(QSize size, double scale, int alpha = 255)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qPremultiply(qRgba(x * 97 % 256, y * 61 % 256, (x + y) * 131 % 256, alpha));
    }
    image.setDevicePixelRatio(scale);
    return image;
}

QImage shown(const QImage &picture, float opacity, QRgb below = 0)
{
    QImage screen(picture.size(), QImage::Format_ARGB32_Premultiplied);
    screen.setDevicePixelRatio(picture.devicePixelRatio());
    screen.fill(below);
    QPainter painter(&screen);
    showPicture(painter, picture, opacity);
    return screen;
}

bool samePixels(const QImage &one, const QImage &other)
{
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                return false;
        }
    }
    return one.size() == other.size();
}

int greatestDifference(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other)), std::abs(qAlpha(one) - qAlpha(other))});
}

class PictureWidget : public QWidget
{
public:
    explicit PictureWidget(QImage picture)
        : m_picture(std::move(picture))
    {
    }

    bool painted = false;

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        showPicture(painter, m_picture, 1.0F);
        painted = true;
    }

private:
    QImage m_picture;
};

} // namespace

TEST(ShowPicture, KeepsEveryPixelAtAnyScale)
{
    for (const double scale : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        const QImage picture = pattern({200, 70}, scale);
        EXPECT_TRUE(samePixels(shown(picture, 1.0F), picture)) << scale;
        const QImage translucent = pattern({200, 70}, scale, 90);
        EXPECT_TRUE(samePixels(shown(translucent, 1.0F), translucent)) << scale;
    }
}

TEST(ShowPicture, FadesThePictureAsAWhole)
{
    for (const double scale : {1.0, 1.25, 2.0}) {
        const QImage picture = pattern({50, 20}, scale);
        const QImage half = shown(picture, 0.5F);
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 50; ++x) {
                const QRgb pixel = picture.pixel(x, y);
                const QRgb expected =
                    qRgba(qRed(pixel) / 2, qGreen(pixel) / 2, qBlue(pixel) / 2, 128);
                EXPECT_LE(greatestDifference(half.pixel(x, y), expected), 1);
            }
        }
    }
}

TEST(ShowPicture, IsAsOpaqueAsItIsToldToBe)
{
    QImage picture({10, 10}, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::black);
    for (int alpha = 0; alpha <= 255; ++alpha)
        EXPECT_EQ(qAlpha(shown(picture, float(alpha) / 255).pixel(5, 5)), alpha);
    EXPECT_EQ(qAlpha(shown(picture, 0.55F).pixel(5, 5)), 140);
}

TEST(ShowPicture, ShowsNothingWhenFadedOut)
{
    const QImage picture = pattern({50, 20}, 1.25);
    EXPECT_EQ(shown(picture, 0.0F, 0xff123456).pixel(3, 3), 0xff123456);
    EXPECT_EQ(shown(picture, -1.0F, 0xff123456).pixel(3, 3), 0xff123456);
    EXPECT_EQ(shown(picture, std::nanf(""), 0xff123456).pixel(3, 3), 0xff123456);
    QImage screen = pattern({5, 5}, 1.0);
    QPainter painter(&screen);
    showPicture(painter, QImage(), 1.0F);
    painter.end();
    EXPECT_TRUE(samePixels(screen, pattern({5, 5}, 1.0)));
}

TEST(ShowPicture, LiesOverWhatIsThere)
{
    QImage picture(10, 10, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(255, 255, 255, 128));
    EXPECT_EQ(shown(picture, 1.0F, 0xff000000).pixel(3, 3), qRgba(128, 128, 128, 255));
}

TEST(ShowPicture, LeavesThePainterAsItWas)
{
    QImage screen(10, 10, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&screen);
    showPicture(painter, pattern({5, 5}, 1.25), 0.3F);
    EXPECT_EQ(painter.opacity(), 1.0);
    EXPECT_TRUE(painter.transform().isIdentity());
}

TEST(ShowPicture, KeepsEveryPixelInAWindow)
{
    // The scale is what the process was started with; the suite is run with several.
    PictureWidget probe{QImage()};
    const double scale = probe.devicePixelRatioF();
    const QSize pixels = (QSizeF(200, 72) * scale).toSize();
    const QImage picture = pattern(pixels, scale);
    PictureWidget widget(picture);
    widget.setFixedSize(200, 72);
    widget.show();
    ASSERT_TRUE(waitFor([&widget] { return widget.painted; }));
    const auto *store = dynamic_cast<QImage *>(widget.backingStore()->paintDevice());
    ASSERT_TRUE(store);
    EXPECT_TRUE(samePixels(store->copy(QRect(QPoint(0, 0), pixels))
                               .convertToFormat(QImage::Format_ARGB32_Premultiplied),
                           picture));
}
