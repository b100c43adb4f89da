#include "controller/SettingsFormat.h"
#include "controller/SettingsText.h"
#include "support/Text.h"
#include "util/DecimalText.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar::settingsformat {
namespace {

QVariant parsed(const char *value)
{
    return parse(QByteArray("[General]\nkey=") + value + "\n").values.value(s("key"));
}

QVariant roundTrip(const QVariant &value)
{
    return parse(write({{s("key"), value}})).values.value(s("key"));
}

TEST(SettingsFormat, ReadsGeneralKeysWithoutTheirGroup)
{
    const Parsed file = parse("[General]\nlistMax=12\nshowIcon = true \n\n; a remark\n# another\n");
    EXPECT_EQ(file.values.size(), 2);
    EXPECT_EQ(file.values.value(s("listMax")), s("12"));
    EXPECT_EQ(file.values.value(s("showIcon")), s("true"));
    EXPECT_EQ(file.droppedLines, 0);
}

TEST(SettingsFormat, ReadsKeysOfOtherGroupsWithIt)
{
    EXPECT_EQ(parse("a=1\n[Other]\nb=2\n").values,
              (QSettings::SettingsMap{{s("a"), s("1")}, {s("Other/b"), s("2")}}));
}

TEST(SettingsFormat, GeneralGroupInAnyCase)
{
    EXPECT_EQ(parse("[general]\na=1\n").values.value(s("a")), s("1"));
    EXPECT_EQ(parse("[GENERAL]\na=1\n").values.value(s("a")), s("1"));
}

TEST(SettingsFormat, UnquotedSemicolonBeginsARemark)
{
    EXPECT_EQ(parsed("8 ; eight, or so"), s("8"));
    EXPECT_EQ(parsed("1, 2;"), QVariant(QStringList{s("1"), s("2")}));
    EXPECT_EQ(parsed("\"a;b\""), s("a;b"));
}

TEST(SettingsFormat, PlainJsonArrayIsOneText)
{
    const char *array = R"([{"type": 10, "note": "a;b\\c"}, {"type": 18}])";
    EXPECT_EQ(parsed(array), s(array));
    EXPECT_EQ(parsed(R"("[{\"type\":10},{\"type\":18}]")"), s(R"([{"type":10},{"type":18}])"));
    EXPECT_EQ(parsed("[]"), s("[]"));
    // A list of words is one, whatever they begin and end with.
    const QStringList words{s("[ow"), s("in \"b\""), s("1]")};
    EXPECT_EQ(roundTrip(words), words);
}

TEST(SettingsFormat, PlainJsonObjectIsOneText)
{
    const char *object = R"({"alpha": 0.5, "color": "#80FF0000", "list": [1, 2], "a\\b": ";"})";
    EXPECT_EQ(parsed(object), s(object));
    EXPECT_EQ(roundTrip(s(object)), s(object));
    EXPECT_EQ(parsed("{\\\"alpha\\\":1}"), s("{\"alpha\":1}"));
}

TEST(SettingsFormat, LastOfTwoLinesOfOneKeyHolds)
{
    EXPECT_EQ(parse("a=1\na=2\n").values.value(s("a")), s("2"));
}

TEST(SettingsFormat, ReadsLists)
{
    EXPECT_EQ(parsed("1, 2,3"), QVariant(QStringList{s("1"), s("2"), s("3")}));
    EXPECT_EQ(parsed("\"a, b\", c"), QVariant(QStringList{s("a, b"), s("c")}));
    EXPECT_EQ(parsed("1,"), QVariant(QStringList{s("1"), QString()}));
}

TEST(SettingsFormat, ReadsQuotesAndEscapes)
{
    EXPECT_EQ(parsed("\"  kept  \""), s("  kept  "));
    EXPECT_EQ(parsed("a\\nb\\t\\\"\\\\"), s("a\nb\t\"\\"));
    EXPECT_EQ(parsed("\\x41"), s("A"));
    EXPECT_EQ(parsed("\\101"), s("A"));
    EXPECT_EQ(parsed("a\\"), s("a"));
    EXPECT_EQ(parsed("a\\\xF0\xA3\xA3\xA3z"), s("az"));
    EXPECT_EQ(parsed("\\xD800 \\x110000").toString().size(), 3);
}

TEST(SettingsFormat, NeverDecodesTypedObjects)
{
    const char *object = "@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x1QColor)";
    EXPECT_EQ(parsed(object).typeId(), QMetaType::QString);
    EXPECT_TRUE(parsed(object).toString().startsWith(s("@Variant(")));
    EXPECT_EQ(parsed("@Invalid()"), s("@Invalid()"));
    EXPECT_EQ(parsed("@ByteArray(x)"), s("@ByteArray(x)"));
}

TEST(SettingsFormat, OpenQuoteCostsOneValueOnly)
{
    const Parsed file = parse("a=\"open\nb=2\n");
    EXPECT_EQ(file.values.value(s("b")), s("2"));
}

TEST(SettingsFormat, DropsWhatIsNoSetting)
{
    const Parsed file = parse("nonsense\n=value\n[broken\na=1\n[General/x]\nb=2\n");
    EXPECT_EQ(file.droppedLines, 4);
    EXPECT_EQ(file.values, (QSettings::SettingsMap{{s("a"), s("1")}}));
}

TEST(SettingsFormat, TakesAnyBytes)
{
    const Parsed file = parse(QByteArray("a=\0\xff\xfe\nb=1", 9));
    EXPECT_EQ(file.values.value(s("a")).toString(),
              (QString(QChar(u'\0')) + QString(2, QChar(0xFFFD))));
    EXPECT_EQ(file.values.value(s("b")), s("1"));
    EXPECT_EQ(parse("\xEF\xBB\xBF[General]\r\na=1\r\n").values.value(s("a")), s("1"));
}

TEST(SettingsFormat, WritesForPeople)
{
    const QSettings::SettingsMap values{
        {s("listMax"), 10},
        {s("showIcon"), false},
        {s("itemWidth"), 62.5F},
        {s("titleTypesToDisplay"), QVariantList{1, 10}},
        {s("toggle"), QVariantList{true, false}},
        {s("titleOnPanel"), s("automatic")},
        {s("empty"), QVariantList()},
        {s("Other/key"), s("a; b")},
    };
    EXPECT_EQ(write(values), QByteArray("[General]\nitemWidth=62.5\nlistMax=10\nshowIcon=false\n"
                                        "titleOnPanel=automatic\ntitleTypesToDisplay=1, 10\n"
                                        "toggle=true, false\n\n[Other]\nkey=\"a; b\"\n"));
}

TEST(SettingsFormat, NeverWritesTypedObjects)
{
    EXPECT_EQ(write({{s("key"), QVariantMap{{s("a"), 1}}}, {s("none"), QVariant()}}), QByteArray());
}

TEST(SettingsFormat, TextsComeBackExactly)
{
    for (const char *text : {"plain", "", " blanks ", "a,b", "a;b", "a=b", "\"quoted\"",
                             "back\\slash", "line\nfeed\r\t", "@Variant(x)", "@@", "[General]",
                             "#x", "\xC3\xA4\xE2\x82\xAC", "\x01\x7F", "1, 2"})
        EXPECT_EQ(roundTrip(s(text)), s(text)) << text;
    const QString withZero = s("a") + QChar(u'\0') + s("1b");
    EXPECT_EQ(roundTrip(withZero), withZero);
    const QString withMark = QChar(QChar::ByteOrderMark) + s("a");
    EXPECT_EQ(roundTrip(withMark), withMark);
    const QStringList list{s("a, b"), s(" c "), QString(), s("\"")};
    EXPECT_EQ(roundTrip(list), list);
    // Between the braces, quoted words make it look like an object.
    const QStringList braced{s("{ow"), s("in \"b\""), s("1}")};
    EXPECT_EQ(roundTrip(braced), braced);
}

TEST(SettingsFormat, NumbersArePlainDecimal)
{
    EXPECT_EQ(decimalText(60.0F), s("60"));
    EXPECT_EQ(decimalText(62.5F), s("62.5"));
    EXPECT_EQ(decimalText(0.1F), s("0.1"));
    EXPECT_EQ(decimalText(-1.5), s("-1.5"));
    EXPECT_EQ(decimalText(1e20), s("100000000000000000000"));
    EXPECT_FALSE(decimalText(std::numeric_limits<double>::denorm_min()).contains(u'e'));
}

TEST(SettingsFormat, KeysAreEncodedReversibly)
{
    EXPECT_EQ(encodedKey(s("GraphWindowSetting_CPU-1")), s("GraphWindowSetting_CPU-1"));
    for (const char *key :
         {"a/b", "100%", "a=b", "a//b/", "\xC3\xA4", " x ", "[g]", ";c", "a\nb", "%41", ""}) {
        const QString encoded = encodedKey(s(key));
        EXPECT_EQ(decodedKey(encoded), s(key));
        for (const QChar c : encoded)
            EXPECT_TRUE(c.unicode() < 128 && (c.isLetterOrNumber() || s("_-%").contains(c))) << key;
    }
}

TEST(SettingsFormat, UnknownKeysOutliveAChange)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(s("deep/down/Pulsebar.conf"));
    {
        QSettings file(name, format());
        file.setValue(s("mine"), 1);
    }
    QFile edited(name);
    ASSERT_TRUE(edited.open(QIODevice::WriteOnly));
    edited.write("[General]\nmine=1\nGraphWindowSetting_CPU%2F1={}\ngraphWindowKeys=a__b, "
                 "c__d\n[Later]\nx=y\n");
    edited.close();
    {
        QSettings file(name, format());
        file.setValue(s("mine"), 2);
    }
    ASSERT_TRUE(edited.open(QIODevice::ReadOnly));
    EXPECT_EQ(edited.readAll(),
              QByteArray("[General]\nGraphWindowSetting_CPU%2F1={}\ngraphWindowKeys=a__b, c__d\n"
                         "mine=2\n\n[Later]\nx=y\n"));
}

TEST(SettingsFormat, HugeFileIsReadUpToItsBound)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(s("Pulsebar.conf"));
    QFile huge(name);
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    huge.write("[General]\nfirst=1\n");
    huge.write("long=" + QByteArray(2 * kMaxFileSize, 'x') + "\nlast=1\n");
    huge.close();
    testing::internal::CaptureStderr();
    const QSettings file(name, format());
    EXPECT_EQ(file.allKeys(), QStringList{s("first")});
    EXPECT_NE(testing::internal::GetCapturedStderr().find("larger"), std::string::npos);
}

} // namespace
} // namespace pulsebar::settingsformat
