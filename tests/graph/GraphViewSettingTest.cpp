#include "graph/GraphViewSetting.h"

#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace pulsebar {
namespace {

QJsonObject encoded(const GraphViewSetting &setting)
{
    return QJsonDocument::fromJson(setting.encode().toUtf8()).object();
}

float floatOf(const GraphViewSetting &setting, const char *field)
{
    return setting.property(field).toFloat();
}

/// A complete object with one field replaced.
QString withField(const char *field, const char *json)
{
    QString text = GraphViewSetting().encode();
    const qsizetype from = text.indexOf(u'"' + s(field) + s("\":")) + s(field).size() + 3;
    qsizetype to = text.indexOf(u',', from);
    if (to < 0)
        to = text.size() - 1;
    return text.replace(from, to - from, s(json));
}

TEST(GraphViewSetting, Defaults)
{
    const GraphViewSetting setting;
    EXPECT_EQ(setting.lineColor(), QColor(Qt::red));
    EXPECT_EQ(setting.characterColor(), QColor(Qt::white));
    EXPECT_EQ(setting.backgroundColor(), QColor(Qt::black));
    EXPECT_EQ(setting.windowRect(), QRectF(200, 200, 200, 70));
    EXPECT_EQ(setting.alphaAtPoint(), 1.0F);
    EXPECT_EQ(setting.alphaWithoutPoint(), 0.55F);
    EXPECT_FALSE(setting.useThreshold());
    EXPECT_EQ(setting.threshold(), 0.0F);
    EXPECT_EQ(setting.thresholdType(), 1);
    EXPECT_EQ(setting.screenNumber(), 0);
}

TEST(GraphViewSetting, FieldsAreStoredInOrder)
{
    EXPECT_EQ(GraphViewSetting::archiveKeys(),
              (QStringList{s("lineColor"), s("backgroundColor"), s("characterColor"),
                           s("positionX"), s("positionY"), s("sizeHeight"), s("sizeWidth"),
                           s("alphaAtPoint"), s("alphaWithoutPoint"), s("useThreshold"),
                           s("threshold"), s("thresholdType"), s("screenNumber")}));
    EXPECT_EQ(GraphViewSetting().encode(),
              s("{\"lineColor\":\"#ffff0000\",\"backgroundColor\":\"#ff000000\","
                "\"characterColor\":\"#ffffffff\",\"positionX\":200,\"positionY\":200,"
                "\"sizeHeight\":70,\"sizeWidth\":200,\"alphaAtPoint\":1,"
                "\"alphaWithoutPoint\":0.55,\"useThreshold\":false,\"threshold\":0,"
                "\"thresholdType\":1,\"screenNumber\":0}"));
}

TEST(GraphViewSetting, WhatIsStoredComesBack)
{
    GraphViewSetting setting;
    setting.setProperty("lineColor", QColor(1, 2, 3, 4));
    setting.setProperty("backgroundColor", QColor::fromHsv(120, 255, 255, 128));
    setting.setWindowRect(QRectF(-1920.25, 0.1, 345.5, 67.125));
    setting.setProperty("useThreshold", true);
    setting.setProperty("threshold", 10.3F);
    setting.setProperty("thresholdType", 0);
    setting.setScreenNumber(-1);
    EXPECT_EQ(encoded(setting).value(s("backgroundColor")), s("#8000ff00"));
    const auto back = GraphViewSetting::decode(setting.encode());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->lineColor(), QColor(1, 2, 3, 4));
    EXPECT_EQ(back->backgroundColor(), QColor(0, 255, 0, 128));
    EXPECT_EQ(back->windowRect(), setting.windowRect());
    EXPECT_TRUE(back->useThreshold());
    EXPECT_EQ(back->threshold(), 10.3F);
    EXPECT_EQ(back->thresholdType(), 0);
    EXPECT_EQ(back->screenNumber(), -1);
    EXPECT_EQ(back->encode(), setting.encode());
}

TEST(GraphViewSetting, EveryFloatComesBackExactly)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> exponent(-37.0F, 38.0F);
    std::uniform_real_distribution<float> mantissa(-1.0F, 1.0F);
    for (int i = 0; i < 2000; ++i) {
        const float number = mantissa(random) * std::pow(10.0F, exponent(random));
        GraphViewSetting setting;
        setting.setProperty("threshold", number);
        const auto back = GraphViewSetting::decode(setting.encode());
        ASSERT_TRUE(back);
        ASSERT_EQ(back->threshold(), number);
    }
}

TEST(GraphViewSetting, ANumberTooSmallForAFloatIsZeroWithoutASign)
{
    const auto setting = GraphViewSetting::decode(s("{\"positionX\":-4e-76}"));
    ASSERT_TRUE(setting);
    const auto back = GraphViewSetting::decode(setting->encode());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->encode(), setting->encode());
}

TEST(GraphViewSetting, OpacityAndTextColourAreNeverTakenFromTheStore)
{
    GraphViewSetting setting;
    setting.setProperty("alphaWithoutPoint", 0.3F);
    setting.setProperty("alphaAtPoint", 0.4F);
    setting.setProperty("characterColor", QColor(Qt::blue));
    EXPECT_EQ(encoded(setting).value(s("alphaWithoutPoint")), 0.3);
    EXPECT_EQ(encoded(setting).value(s("alphaAtPoint")), 0.4);
    EXPECT_EQ(encoded(setting).value(s("characterColor")), s("#ff0000ff"));
    const auto back = GraphViewSetting::decode(setting.encode());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->alphaWithoutPoint(), 0.55F);
    EXPECT_EQ(back->alphaAtPoint(), 1.0F);
    EXPECT_EQ(back->characterColor(), QColor(Qt::white));
}

TEST(GraphViewSetting, MissingFieldsAreEmptyAndNotTheDefaults)
{
    for (const char *text : {"{}", "{\"threshold\":null,\"thresholdType\":null,\"lineColor\":null,"
                                   "\"sizeWidth\":null}"}) {
        const auto setting = GraphViewSetting::decode(s(text));
        ASSERT_TRUE(setting) << text;
        EXPECT_EQ(setting->threshold(), 0.0F);
        EXPECT_EQ(setting->thresholdType(), 0);
        EXPECT_EQ(setting->windowRect(), QRectF(0, 0, 0, 0));
        EXPECT_FALSE(setting->lineColor().isValid());
        EXPECT_FALSE(setting->backgroundColor().isValid());
        EXPECT_EQ(setting->characterColor(), QColor(Qt::white));
        EXPECT_EQ(setting->alphaAtPoint(), 1.0F);
        EXPECT_EQ(setting->alphaWithoutPoint(), 0.55F);
        EXPECT_FALSE(setting->useThreshold());
        EXPECT_EQ(setting->screenNumber(), 0);
    }
}

TEST(GraphViewSetting, AColourThatThereIsNotStaysAway)
{
    const auto setting = GraphViewSetting::decode(s("{}"));
    ASSERT_TRUE(setting);
    EXPECT_FALSE(encoded(*setting).contains(s("lineColor")));
    const auto back = GraphViewSetting::decode(setting->encode());
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->lineColor().isValid());
}

TEST(GraphViewSetting, OneMissingFieldLeavesTheOthers)
{
    QString text = GraphViewSetting().encode();
    text.remove(s(",\"thresholdType\":1"));
    const auto setting = GraphViewSetting::decode(text);
    ASSERT_TRUE(setting);
    EXPECT_EQ(setting->thresholdType(), 0);
    EXPECT_EQ(setting->lineColor(), QColor(Qt::red));
    EXPECT_EQ(setting->windowRect(), QRectF(200, 200, 200, 70));
}

TEST(GraphViewSetting, SettingsWrittenByHand)
{
    const auto setting = GraphViewSetting::decode(
        s(" { \"useThreshold\": 1, \"thresholdType\": true,\n \"threshold\": 5e1,"
          " \"lineColor\": \"#80AbCdEf\", \"later\": {\"a\": [1]}, \"screenNumber\": 2.0 } "));
    ASSERT_TRUE(setting);
    EXPECT_TRUE(setting->useThreshold());
    EXPECT_EQ(setting->thresholdType(), 1);
    EXPECT_EQ(setting->threshold(), 50.0F);
    EXPECT_EQ(setting->lineColor(), QColor(0xAB, 0xCD, 0xEF, 0x80));
    EXPECT_EQ(setting->screenNumber(), 2);
}

TEST(GraphViewSetting, WhatIsNoObjectIsNone)
{
    for (const char *text :
         {"", "{", "}", "[]", "[{}]", "null", "1", "\"{}\"", "{}{}", "{} x", "{\"threshold\":}",
          "{threshold:1}", "{'a':1}", "@Variant(x)", "{\"threshold\":NaN}",
          "{\"threshold\":Infinity}", "{\"threshold\":-inf}", "{\"threshold\":0x10}"})
        EXPECT_FALSE(GraphViewSetting::decode(s(text))) << text;
    const QString whole = GraphViewSetting().encode();
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(GraphViewSetting::decode(whole.left(length))) << length;
    EXPECT_TRUE(GraphViewSetting::decode(whole));
}

TEST(GraphViewSetting, ImpossibleValuesAreNone)
{
    for (const char *field : {"positionX", "positionY", "sizeHeight", "sizeWidth", "alphaAtPoint",
                              "alphaWithoutPoint", "threshold"}) {
        EXPECT_TRUE(GraphViewSetting::decode(withField(field, "12.5"))) << field;
        for (const char *value :
             {"\"12\"", "true", "[]", "{}", "[1]", "1e300", "-1e300", "1e400", "3.5e38"})
            EXPECT_FALSE(GraphViewSetting::decode(withField(field, value))) << field << value;
    }
    for (const char *field : {"thresholdType", "screenNumber", "useThreshold"}) {
        EXPECT_TRUE(GraphViewSetting::decode(withField(field, "-2147483648"))) << field;
        EXPECT_TRUE(GraphViewSetting::decode(withField(field, "2147483647"))) << field;
        for (const char *value : {"\"1\"", "[]", "{}", "0.5", "2147483648", "-2147483649", "1e300"})
            EXPECT_FALSE(GraphViewSetting::decode(withField(field, value))) << field << value;
    }
    for (const char *field : {"lineColor", "backgroundColor", "characterColor"}) {
        EXPECT_TRUE(GraphViewSetting::decode(withField(field, "\"#00000000\""))) << field;
        for (const char *value :
             {"\"\"", "\"red\"", "\"#ff0000\"", "\"#ffff00000\"", "\"#0xff0000\"", "\"#+fff0000\"",
              "\" ffff0000\"", "\"#ffff000g\"", "\"#ffff0000\\n\"", "4294901760", "true", "[]"})
            EXPECT_FALSE(GraphViewSetting::decode(withField(field, value))) << field << value;
    }
}

TEST(GraphViewSetting, SizesThatNoWindowHasAreNone)
{
    for (const char *field : {"sizeHeight", "sizeWidth"}) {
        for (const char *value : {"-1", "-0.001", "32768", "1e9"})
            EXPECT_FALSE(GraphViewSetting::decode(withField(field, value))) << field << value;
        for (const char *value : {"0", "1", "32767"})
            EXPECT_TRUE(GraphViewSetting::decode(withField(field, value))) << field << value;
    }
    EXPECT_TRUE(GraphViewSetting::decode(withField("positionX", "-99999")));
}

TEST(GraphViewSetting, AWindowLargerThanAnyScreenIsNone)
{
    const auto sized = [](const char *width, const char *height) {
        return GraphViewSetting::decode(
            QStringLiteral("{\"sizeWidth\":%1,\"sizeHeight\":%2}").arg(s(width), s(height)));
    };
    EXPECT_TRUE(sized("7680", "4320"));
    EXPECT_TRUE(sized("4320", "7680"));
    EXPECT_TRUE(sized("32767", "1000"));
    EXPECT_FALSE(sized("7681", "4320"));
    EXPECT_FALSE(sized("12000", "12000"));
    EXPECT_FALSE(sized("32767", "32767"));
}

TEST(GraphViewSetting, HugeAndDeepTextsAreNone)
{
    EXPECT_FALSE(GraphViewSetting::decode(s("{\"a\":\"") + QString(5000000, u'x') + s("\"}")));
    EXPECT_FALSE(
        GraphViewSetting::decode(s("{\"a\":") + QString(8000, u'[') + QString(8000, u']') + u'}'));
}

TEST(GraphViewSetting, WhatIsNotFiniteIsNotStored)
{
    GraphViewSetting setting;
    setting.setProperty("threshold", std::numeric_limits<float>::quiet_NaN());
    setting.setProperty("alphaAtPoint", std::numeric_limits<float>::infinity());
    const auto back = GraphViewSetting::decode(setting.encode());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->threshold(), 0.0F);
}

TEST(GraphViewSetting, TheRectangleIsNarrowed)
{
    GraphViewSetting setting;
    setting.setWindowRect(QRectF(0.1, 1e300, 100.2, 50));
    EXPECT_EQ(setting.windowRect().x(), static_cast<double>(0.1F));
    EXPECT_EQ(setting.windowRect().y(), static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_EQ(setting.windowRect().width(), static_cast<double>(100.2F));
    EXPECT_EQ(floatOf(setting, "sizeWidth"), 100.2F);
    EXPECT_EQ(floatOf(setting, "sizeHeight"), 50.0F);
}

TEST(GraphViewSetting, EachScreenHasItsLastRectangle)
{
    GraphViewSetting setting;
    const QRectF screen(0, 0, 1920, 1080);
    const QRectF other(1920, 0, 1920, 1080);
    EXPECT_EQ(setting.windowRectForScreen(screen), QRectF());
    setting.setWindowRectForScreen(QRectF(1, 2, 3, 4), screen);
    setting.setWindowRectForScreen(QRectF(5.5, 6, 7, 8), screen);
    setting.setWindowRectForScreen(QRectF(9, 10, 11, 12), QRectF());
    EXPECT_EQ(setting.windowRectForScreen(screen), QRectF(5.5, 6, 7, 8));
    EXPECT_EQ(setting.windowRectForScreen(QRectF()), QRectF(9, 10, 11, 12));
    EXPECT_EQ(setting.windowRectForScreen(other), QRectF());
    EXPECT_EQ(setting.windowRect(), QRectF(200, 200, 200, 70));
    const auto back = GraphViewSetting::decode(setting.encode());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->windowRectForScreen(screen), QRectF());
}

TEST(GraphViewSetting, ChangesAreTold)
{
    GraphViewSetting setting;
    QSignalSpy colors(&setting, &GraphViewSetting::colorsChanged);
    QSignalSpy threshold(&setting, &GraphViewSetting::thresholdChanged);
    QSignalSpy alpha(&setting, &GraphViewSetting::alphaWithoutPointChanged);
    setting.setProperty("lineColor", QColor(Qt::green));
    setting.setProperty("lineColor", QColor(Qt::green));
    setting.setProperty("threshold", 4.0F);
    EXPECT_EQ(colors.count(), 1);
    EXPECT_EQ(threshold.count(), 1);
    EXPECT_EQ(alpha.count(), 0);
}

} // namespace
} // namespace pulsebar
