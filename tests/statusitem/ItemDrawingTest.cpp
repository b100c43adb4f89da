#include "statusitem/ItemDrawing.h"

#include "statusitem/NotifierPixmaps.h"
#include "statusitem/PanelStatusItem.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

const Ink white{Qt::white, {}};

ItemContent titled(const char *title, const char *guide = "")
{
    ItemContent content;
    content.title = QString::fromUtf8(title);
    content.guide = QString::fromUtf8(guide);
    return content;
}

/// Columns that hold anything: the first and the last, or -1.
std::pair<int, int> inkColumns(const QImage &image)
{
    int first = -1;
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                first = first < 0 ? x : first;
                last = x;
                break;
            }
        }
    }
    return {first, last};
}

TEST(Encoding, IsBigEndianStraightArgb)
{
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, 0x80402010);
    image.setPixel(1, 0, 0xFF010203);
    const ItemPixmap pixmap = encoded(image);
    EXPECT_EQ(pixmap.width, 2);
    EXPECT_EQ(pixmap.height, 1);
    EXPECT_EQ(pixmap.pixels, QByteArray("\x80\x40\x20\x10\xFF\x01\x02\x03", 8));
}

TEST(Line, HasTheWidthOfTheWidestText)
{
    const int narrow = lineWidth(titled("1.0%", "100.0%"), 22, 1);
    const int wide = lineWidth(titled("100.0%", "100.0%"), 22, 1);
    EXPECT_EQ(narrow, wide);
    EXPECT_GT(lineWidth(titled("In 1023MB", "1%"), 22, 1), wide) << "a text is never cut";
    ItemContent chosen = titled("1%");
    chosen.length = 200;
    EXPECT_EQ(lineWidth(chosen, 22, 1), 200);
    EXPECT_EQ(lineWidth(chosen, 44, 2), 400);
}

TEST(Line, DrawsTheWholeTextInside)
{
    const ItemContent content = titled("12.3% | In 1.2MB");
    const QImage image = drawLine(content, {lineWidth(content, 22, 1), 22}, 1, inkOnPanel(true));
    const auto [first, last] = inkColumns(image);
    EXPECT_GT(first, 0);
    EXPECT_LT(last, image.width() - 1);
    EXPECT_GT(last - first, image.width() / 2);
}

TEST(Line, PutsTheImageLeftOfTheText)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("red.png"));
    QImage red(16, 16, QImage::Format_ARGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(path));
    ItemContent content = titled("12.3%");
    const int without = lineWidth(content, 22, 1);
    content.image = path;
    const int width = lineWidth(content, 22, 1);
    EXPECT_GT(width, without + 10);
    const QImage image = drawLine(content, {width, 22}, 1, white);
    EXPECT_EQ(image.pixelColor(10, 11), QColor(Qt::red));
    EXPECT_NE(image.pixelColor(width - 8, 11), QColor(Qt::red));
}

TEST(Icon, IsTheProgramsSignInTheInksColour)
{
    ItemContent content;
    const QImage own = drawIcon(content, 22, white);
    EXPECT_EQ(own, drawSign(22, white));
    content.image = PanelStatusItem::programImage();
    EXPECT_EQ(drawIcon(content, 22, white), own);
    content.image = QStringLiteral("/nonexistent.png");
    EXPECT_EQ(drawIcon(content, 22, white), own) << "an icon that cannot be read is no hole";
    const QImage black = drawIcon(content, 22, {Qt::black, {}});
    EXPECT_NE(black, own);
    EXPECT_EQ(black.convertToFormat(QImage::Format_Alpha8),
              own.convertToFormat(QImage::Format_Alpha8));
}

TEST(ShortText, FillsASquareWithoutLeavingIt)
{
    for (const char *text : {"5", "12", "100", "1.2M", "1023K"}) {
        const QImage image = drawShortText(titled(text), 22, inkOnPanel(false));
        const auto [first, last] = inkColumns(image);
        EXPECT_GE(first, 0) << text;
        EXPECT_GE(last, first + 3) << text;
        EXPECT_EQ(image.size(), QSize(22, 22));
    }
}

TEST(NotifierPixmaps, OffersWideOnesOnlyInTheWideStyle)
{
    const ItemContent content = titled("12.3%", "100.0%");
    for (const PixmapStyle style : {PixmapStyle::Icon, PixmapStyle::ShortText}) {
        for (const ItemPixmap &pixmap : renderPixmaps(pixmapContentOf(content, style, true))) {
            EXPECT_EQ(pixmap.width, pixmap.height);
            EXPECT_EQ(pixmap.pixels.size(), pixmap.width * pixmap.height * 4);
        }
    }
    const ItemPixmapList wide =
        renderPixmaps(pixmapContentOf(content, PixmapStyle::WideText, true));
    ASSERT_EQ(wide.size(), 3);
    EXPECT_EQ(wide[0].width, wide[0].height) << "a square for those who squeeze";
    EXPECT_EQ(wide[1].height, 22);
    EXPECT_GT(wide[1].width, 30);
    EXPECT_EQ(wide[2].height, 44);
}

TEST(NotifierPixmaps, ShowTheShortTitleWithItsUnit)
{
    const auto pixmaps =
        renderPixmaps(pixmapContentOf(titled("In 1.2MB"), PixmapStyle::ShortText, true));
    EXPECT_EQ(pixmaps.first(), encoded(drawShortText(titled("1.2M"), 22, inkOnPanel(true))));
}

TEST(NotifierPixmaps, DifferOnlyWhenSomethingDrawnDiffers)
{
    const auto of = [](const char *title, PixmapStyle style) {
        return pixmapContentOf(titled(title, "100.0%"), style, true);
    };
    EXPECT_EQ(of("12.3%", PixmapStyle::ShortText), of("12.4%", PixmapStyle::ShortText));
    EXPECT_NE(of("12.3%", PixmapStyle::ShortText), of("13.4%", PixmapStyle::ShortText));
    EXPECT_EQ(of("12.3%", PixmapStyle::Icon), of("99.9%", PixmapStyle::Icon));
    EXPECT_NE(of("12.3%", PixmapStyle::WideText), of("12.4%", PixmapStyle::WideText));
}

} // namespace
} // namespace pulsebar
