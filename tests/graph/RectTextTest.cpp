#include "graph/RectText.h"

#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

TEST(RectText, OriginThenSizeInNestedBraces)
{
    EXPECT_EQ(textFromRect(QRectF(200, 300.5, 640, 480)), s("{{200, 300.5}, {640, 480}}"));
    EXPECT_EQ(textFromRect(QRectF()), s("{{0, 0}, {0, 0}}"));
    EXPECT_EQ(textFromRect(QRectF(-1920, -0.25, 1920, 1080)), s("{{-1920, -0.25}, {1920, 1080}}"));
}

TEST(RectText, ComesBackExactly)
{
    constexpr double kThird = 1.0 / 3.0;
    for (const QRectF &rect :
         {QRectF(0.1, 0.2, 0.3, kThird), QRectF(-1e9, 1e-9, 32767, 5e-324),
          QRectF(std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
                 std::numeric_limits<double>::min(), 12345.678901234567)}) {
        const std::optional<QRectF> back = rectFromText(textFromRect(rect));
        ASSERT_TRUE(back);
        // QRectF's own comparison is a fuzzy one.
        EXPECT_EQ(back->x(), rect.x());
        EXPECT_EQ(back->y(), rect.y());
        EXPECT_EQ(back->width(), rect.width());
        EXPECT_EQ(back->height(), rect.height());
    }
}

TEST(RectText, OneTextForEachRectangle)
{
    EXPECT_EQ(textFromRect(QRectF(-0.0, -0.0, 10, 10)), textFromRect(QRectF(0, 0, 10, 10)));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(textFromRect(QRectF(nan, infinity, -infinity, 1)), s("{{0, 0}, {0, 1}}"));
}

TEST(RectText, AnythingElseIsNone)
{
    for (const char *text :
         {"", "{}", "{{1, 2}, {3, 4}", "{{1, 2}, {3, 4}} ", " {{1, 2}, {3, 4}}",
          "{{1, 2}, {3, 4}}}", "{{1, 2}, {3}}", "{{1, 2}, {3, 4, 5}}", "{{1; 2}, {3, 4}}",
          "{{nan, 2}, {3, 4}}", "{{1, inf}, {3, 4}}", "{{1, 2}, {3, -infinity}}",
          "{{1e3, 2}, {3, 4}}", "{{0x10, 2}, {3, 4}}", "{{+1, 2}, {3, 4}}", "{{, 2}, {3, 4}}",
          "{{1, 2}, {3, \xD9\xA4}}"})
        EXPECT_FALSE(rectFromText(s(text))) << text;
    EXPECT_FALSE(rectFromText(s("{{") + QString(2000, u'9') + s(", 2}, {3, 4}}")));
    EXPECT_FALSE(rectFromText(s("{{0.") + QString(1000000, u'0') + s("1, 2}, {3, 4}}")));
}

} // namespace
} // namespace pulsebar
