#include "graph/GraphPicture.h"

#include "graph/GraphView.h"

#include <QApplication>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace pulsebar;

namespace {

constexpr QSize usual(200, 70);
constexpr QSize smallest(120, 42);

/// Says how often it was asked to draw.
class CountingView : public GraphView
{
public:
    mutable int drawn = 0;

protected:
    void drawGraphInRect(QImage & /*image*/, const QRectF & /*rect*/) const override { ++drawn; }
};

class GraphPictureTest : public ::testing::Test
{
protected:
    GraphPictureTest()
    {
        setting.setProperty("lineColor", QColor(Qt::red));
        setting.setProperty("backgroundColor", QColor(Qt::black));
        setting.setProperty("characterColor", QColor(Qt::white));
        view.setViewSetting(&setting);
        view.setUsageCacheArray(UsageCache(10, QVariant(0.5)));
        content.caption = QStringLiteral("CPU Total");
        content.lastValue = QStringLiteral("50.0%");
    }

    const QImage &draw(QSize size = usual, double scale = 1.0)
    {
        return picture.draw(view, content, size, scale);
    }

    QImage drawnWith(const QString &caption, const QString &lastValue, QSize size = usual)
    {
        content.caption = caption;
        content.lastValue = lastValue;
        GraphPicture fresh;
        return fresh.draw(view, content, size, 1.0);
    }

    GraphViewSetting setting;
    CountingView view;
    GraphPictureContent content;
    GraphPicture picture;
};

/// The columns, first and last, in which a rectangle of two images differs; none: 0 and -1.
std::pair<int, int> differingColumns(const QImage &one, const QImage &other)
{
    std::pair<int, int> columns{0, -1};
    for (int x = 0; x < one.width(); ++x) {
        for (int y = 0; y < one.height(); ++y) {
            if (one.pixel(x, y) == other.pixel(x, y))
                continue;
            columns = {columns.second < 0 ? x : columns.first, x};
            break;
        }
    }
    return columns;
}

bool hasDark(const QImage &image, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 80)
                return true;
        }
    }
    return false;
}

} // namespace

TEST(GraphLayout, PutsTheTextsIntoTheUpperCorners)
{
    const GraphLayout layout = graphLayout(usual, 16, 40);
    EXPECT_EQ(layout.caption, QRectF(8, 2, 138, 16));
    EXPECT_EQ(layout.lastValue, QRectF(152, 2, 40, 16));
}

TEST(GraphLayout, TakesTheNewestValuesRoomFromTheCaption)
{
    const GraphLayout narrow = graphLayout(smallest, 16, 100);
    EXPECT_EQ(narrow.lastValue.width(), 100);
    EXPECT_EQ(narrow.caption.width(), 0);
    EXPECT_EQ(graphLayout(smallest, 16, 500).lastValue, QRectF(8, 2, 104, 16));
}

TEST(GraphLayout, KeepsTheButtonsClearOfWhereTheWindowIsResized)
{
    for (const QSize size : {smallest, QSize(120, 43), QSize(150, 50), QSize(200, 60), usual,
                             QSize(400, 300), QSize(3000, 2000)}) {
        for (const double textHeight : {10.0, 16.0, 17.25, 24.0, 40.0}) {
            const GraphLayout layout = graphLayout(size, textHeight);
            const QRectF inside = QRectF(QPointF(0, 0), size).adjusted(8, 8, -8, -8);
            for (const QRectF &box : {layout.closeButton, layout.settingButton}) {
                EXPECT_TRUE(inside.contains(box));
                EXPECT_GE(box.width(), 14);
                EXPECT_EQ(box.width(), box.height());
                for (const QPointF corner :
                     {QPointF(0, 0), QPointF(size.width() - 16, 0), QPointF(0, size.height() - 16),
                      QPointF(size.width() - 16, size.height() - 16)})
                    EXPECT_FALSE(box.intersects(QRectF(corner, QSizeF(16, 16))));
            }
            EXPECT_LT(layout.closeButton.right(), layout.settingButton.left());
            EXPECT_EQ(layout.closeButton.left(), size.width() - layout.settingButton.right());
        }
    }
}

TEST_F(GraphPictureTest, IsOneImageAtTheScreensScale)
{
    EXPECT_EQ(draw(usual, 1.0).size(), QSize(200, 70));
    EXPECT_EQ(draw(usual, 1.25).size(), QSize(250, 88));
    EXPECT_EQ(draw(usual, 1.25).devicePixelRatio(), 1.25);
    EXPECT_EQ(draw(usual, 1.1).size(), QSize(220, 77));
    EXPECT_EQ(draw(usual, 2.0).size(), QSize(400, 140));
    EXPECT_EQ(draw().format(), QImage::Format_ARGB32_Premultiplied);
}

TEST_F(GraphPictureTest, DrawsTheGraphOnlyWhenItIsAnother)
{
    draw();
    EXPECT_EQ(view.drawn, 1);
    draw();
    content.lastValue = QStringLiteral("51.0%");
    content.closeButton = GraphButtonLook::Plain;
    draw();
    EXPECT_EQ(view.drawn, 1) << "texts and buttons lie over the graph that is kept";
    view.setUsageCacheArray(UsageCache(10, QVariant(0.5)));
    draw();
    EXPECT_EQ(view.drawn, 2);
    setting.setProperty("lineColor", QColor(Qt::green));
    draw();
    EXPECT_EQ(view.drawn, 3);
    setting.setProperty("backgroundColor", QColor(Qt::white));
    draw();
    EXPECT_EQ(view.drawn, 4);
    draw(QSize(210, 70));
    EXPECT_EQ(view.drawn, 5);
    draw(QSize(210, 70), 2.0);
    EXPECT_EQ(view.drawn, 6);
}

TEST_F(GraphPictureTest, TouchesNothingWhenNothingChanged)
{
    const QImage before = draw();
    EXPECT_EQ(draw().constBits(), before.constBits());
    content.lastValue = QStringLiteral("51.0%");
    EXPECT_NE(draw(), before);
    content.lastValue = QStringLiteral("50.0%");
    EXPECT_EQ(draw(), before) << "no traces of the other value";
}

TEST_F(GraphPictureTest, ShowsTheCaptionLeftAndTheNewestValueRight)
{
    const QImage bare = drawnWith({}, {});
    const auto caption = differingColumns(bare, drawnWith(QStringLiteral("CPU"), {}));
    // A halo of 3 pixels reaches beyond the text.
    EXPECT_GE(caption.first, 5);
    EXPECT_LE(caption.first, 12);
    EXPECT_LT(caption.second, 80);
    const auto value = differingColumns(bare, drawnWith({}, QStringLiteral("5%")));
    EXPECT_GT(value.first, 120);
    EXPECT_LE(value.second, 195);
    EXPECT_GE(value.second, 185);
}

TEST_F(GraphPictureTest, CutsTheCaptionAndNotTheNewestValue)
{
    const QString value = QStringLiteral("1023.9MB");
    const QImage alone = drawnWith({}, value, smallest);
    const auto valueColumns = differingColumns(drawnWith({}, {}, smallest), alone);
    const QImage both = drawnWith(QString(200, u'W'), value, smallest);
    const auto captionColumns = differingColumns(alone, both);
    ASSERT_GE(captionColumns.second, 0) << "something of the caption is left";
    EXPECT_LT(captionColumns.second, valueColumns.first + 2);
    EXPECT_EQ(drawnWith(QStringLiteral("CPU"), QString(200, u'8'), smallest),
              drawnWith({}, QString(200, u'8'), smallest));
}

TEST_F(GraphPictureTest, SetsTheTextsOffFromAnyBackground)
{
    for (const QColor &background : {QColor(Qt::white), QColor(255, 255, 255, 10)}) {
        setting.setProperty("backgroundColor", background);
        setting.setProperty("lineColor", QColor(Qt::white));
        QImage onWhite(usual, QImage::Format_ARGB32_Premultiplied);
        onWhite.fill(Qt::white);
        QPainter(&onWhite).drawImage(0, 0, drawnWith(QStringLiteral("CPU"), {}));
        EXPECT_TRUE(hasDark(onWhite, QRect(5, 2, 40, 18)));
    }
    content.characterColor = Qt::black;
    setting.setProperty("backgroundColor", QColor(Qt::black));
    const QImage dark = drawnWith(QStringLiteral("CPU"), {});
    int lightest = 0;
    for (int x = 5; x < 45; ++x)
        lightest = std::max(lightest, qGray(dark.pixel(x, 10)));
    EXPECT_GT(lightest, 150);
}

TEST_F(GraphPictureTest, FollowsTheDesktopsFontSize)
{
    const auto heightOfText = [this] {
        const QImage bare = drawnWith({}, {});
        const QImage with = drawnWith(QStringLiteral("CPU"), {});
        int rows = 0;
        for (int y = 0; y < bare.height(); ++y)
            rows += std::equal(bare.constScanLine(y), bare.constScanLine(y) + bare.bytesPerLine(),
                               with.constScanLine(y))
                        ? 0
                        : 1;
        return rows;
    };
    const QFont before = QApplication::font();
    const int usualHeight = heightOfText();
    QFont large = before;
    large.setPointSizeF(2 * before.pointSizeF());
    content.font = large;
    EXPECT_GT(heightOfText(), usualHeight + 5);
    QApplication::setFont(large);
    EXPECT_EQ(GraphPictureContent().font.pointSizeF(), large.pointSizeF());
    QApplication::setFont(before);
}

TEST_F(GraphPictureTest, ShowsAnyText)
{
    const QImage bare = drawnWith({}, {});
    for (const char16_t *text : {u"61.5℃", u"↓ 3KB", u"日本語", u"محمد", u"a\nb\tc\x01", u"😀"})
        EXPECT_NE(drawnWith(QString::fromUtf16(text), {}), bare);
    EXPECT_NE(drawnWith(QString(1 << 20, u'x'), {}), bare);
    content.characterColor = QColor();
    EXPECT_EQ(drawnWith(QStringLiteral("CPU"), QStringLiteral("5%")), bare);
}

TEST_F(GraphPictureTest, ShowsEachLookOfTheButtons)
{
    content.caption.clear();
    content.lastValue.clear();
    QVector<QImage> seen{draw()};
    const auto expectAnother = [&] {
        const QImage image = draw();
        EXPECT_FALSE(seen.contains(image));
        seen.append(image);
    };
    for (const auto look :
         {GraphButtonLook::Plain, GraphButtonLook::Hovered, GraphButtonLook::Pressed}) {
        content.closeButton = look;
        expectAnother();
        content.closeButtonFocused = true;
        expectAnother();
        content.closeButtonFocused = false;
        content.closeButton = GraphButtonLook::Hidden;
        content.settingButton = look;
        expectAnother();
        content.settingButtonFocused = true;
        expectAnother();
        content.settingButtonFocused = false;
        content.settingButton = GraphButtonLook::Hidden;
    }
    content.closeButtonFocused = content.settingButtonFocused = true;
    EXPECT_EQ(draw(), seen.first()) << "what is hidden has no ring either";
}

TEST_F(GraphPictureTest, PutsTheButtonsWhereTheLayoutSays)
{
    content.caption.clear();
    content.lastValue.clear();
    for (const double scale : {1.0, 1.25, 2.0}) {
        content.closeButton = GraphButtonLook::Hidden;
        const QImage without = draw(usual, scale);
        content.closeButton = GraphButtonLook::Plain;
        const auto columns = differingColumns(without, draw(usual, scale));
        const QRectF box = graphLayout(usual, lineHeight(content.font)).closeButton;
        EXPECT_NEAR(columns.first, box.left() * scale, 1 + scale / 2);
        EXPECT_NEAR(columns.second + 1, box.right() * scale, 1 + scale / 2);
    }
}

TEST_F(GraphPictureTest, LeavesNothingShiningThroughATranslucentWindow)
{
    // A fade shows the whole image with one opacity; inside it, what lies above hides what is
    // below.
    content.closeButton = GraphButtonLook::Hovered;
    const QImage &image = draw();
    const QPointF centre = graphLayout(usual, lineHeight(content.font)).closeButton.center();
    EXPECT_EQ(qAlpha(image.pixel(int(centre.x()), int(centre.y()))), 255);
    for (int x = 0; x < image.width(); ++x)
        EXPECT_EQ(qAlpha(image.pixel(x, 40)), 255);
}

TEST_F(GraphPictureTest, DrawsAViewWithoutSettings)
{
    GraphView none;
    EXPECT_EQ(picture.draw(none, {}, usual, 1.0).pixel(100, 35), 0U);
}
