#include "controller/GraphSettings.h"
#include "controller/Settings.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace pulsebar {
namespace {

class GraphSettingsTest : public testing::Test
{
protected:
    QByteArray fileText() const
    {
        QFile file(m_name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void writeFile(const QByteArray &text) const
    {
        QFile file(m_name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + text);
    }

    std::optional<QString> readAnew(const QString &key) const
    {
        Settings settings(m_name);
        return GraphSettings(settings).graphSetting(key);
    }

    QTemporaryDir m_folder;
    QString m_name = m_folder.filePath(QStringLiteral("Pulsebar.conf"));
};

const QStringList &awkwardNames()
{
    static const QStringList names{s("usual"),        s(""),
                                   s("a/b//c"),       s("100%"),
                                   s("%41"),          s("a=b"),
                                   s("a;b"),          s("a,b, c"),
                                   s("\"quoted\""),   s("back\\slash"),
                                   s("line\nfeed"),   s("tab\there"),
                                   s(" blanks "),     s("{brace}"),
                                   s("[General]"),    s("#hash"),
                                   s("@Variant(x)"),  s("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
                                   s("\x01\x1B\x7F"), QString(QChar(u'\0')) + s("zero")};
    return names;
}

TEST_F(GraphSettingsTest, AnyNameIsAKeyOfItsOwn)
{
    {
        Settings settings(m_name);
        GraphSettings store(settings);
        for (const QString &name : awkwardNames())
            store.setGraphSetting(s("GraphWindowSetting_") + name, s("{\"of\":") + name + s("}"));
        store.flush();
    }
    for (const QString &name : awkwardNames())
        EXPECT_EQ(readAnew(s("GraphWindowSetting_") + name), s("{\"of\":") + name + s("}"));
    EXPECT_EQ(readAnew(s("GraphWindowSetting_other")), std::nullopt);
    EXPECT_EQ(fileText().count('\n'), awkwardNames().size() + 1);
}

TEST_F(GraphSettingsTest, PlainKeysStandAsTheyAre)
{
    Settings settings(m_name);
    GraphSettings store(settings);
    store.setGraphSetting(s("GraphWindowSetting_CPUTotalUsage"), s("{\"threshold\":1}"));
    store.setGraphSetting(s("GraphWindowSetting_412//a b"), s("x"));
    store.flush();
    EXPECT_EQ(fileText(),
              QByteArray("[General]\nGraphWindowSetting_412%2F%2Fa%20b=x\n"
                         "GraphWindowSetting_CPUTotalUsage=\"{\\\"threshold\\\":1}\"\n"));
}

TEST_F(GraphSettingsTest, ReadsObjectsWrittenByHand)
{
    writeFile("GraphWindowSetting_CPUTotalUsage={\"threshold\": 1, \"useThreshold\": true}\n");
    EXPECT_EQ(readAnew(s("GraphWindowSetting_CPUTotalUsage")),
              s("{\"threshold\": 1, \"useThreshold\": true}"));
}

TEST_F(GraphSettingsTest, ProcessesAreForgottenBeforeTheFileGrowsTooLarge)
{
    Settings settings(m_name);
    GraphSettings store(settings);
    const QString beginning = s("GraphWindowSetting_");
    const QString panel = s("ViewSettingWindow_");
    const QString object(350, u'x');
    store.setGraphSetting(beginning + s("CPUTotalUsage"), object);
    store.setGraphSetting(panel + s("Temperature__CPU Die"), object);
    for (int i = 0; i < 600; ++i) {
        store.setGraphSetting(beginning + s("process %1").arg(i), object);
        store.setGraphSetting(panel + s("CPUUsage__%1//name").arg(i), object);
        EXPECT_EQ(store.graphSetting(beginning + s("process %1").arg(i)), object);
    }
    store.flush();
    EXPECT_EQ(settings.textKeys(beginning).size(), GraphSettings::kMostOfAKind);
    EXPECT_EQ(settings.textKeys(panel).size(), GraphSettings::kMostOfAKind);
    EXPECT_LT(fileText().size(), 1 << 19);
    EXPECT_EQ(readAnew(beginning + s("CPUTotalUsage")), object);
    EXPECT_EQ(readAnew(panel + s("Temperature__CPU Die")), object);
    EXPECT_EQ(readAnew(panel + s("CPUUsage__599//name")), object);
    store.setGraphSetting(beginning + s("CPUTotalUsage"), s("y"));
    EXPECT_EQ(settings.textKeys(beginning).size(), GraphSettings::kMostOfAKind);
}

TEST_F(GraphSettingsTest, AListIsNoText)
{
    writeFile("GraphWindowSetting_a=1, 2\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(readAnew(s("GraphWindowSetting_a")), std::nullopt);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("GraphWindowSetting_a"),
              std::string::npos);
}

TEST_F(GraphSettingsTest, OfNoUseIsSaidOnceForEachKey)
{
    Settings settings(m_name);
    GraphSettings store(settings);
    testing::internal::CaptureStderr();
    store.reportMalformed(s("GraphWindowSetting_a\nb"));
    store.reportMalformed(s("GraphWindowSetting_a\nb"));
    store.reportMalformed(s("GraphWindowSetting_c"));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2) << log;
    EXPECT_NE(log.find("GraphWindowSetting_a%0Ab"), std::string::npos);
}

TEST_F(GraphSettingsTest, KeysOfOpenWindowsComeBackExactly)
{
    QVector<QStringList> lists{awkwardNames()};
    for (const QString &name : awkwardNames())
        lists += {name};
    for (const QStringList &keys : lists) {
        {
            Settings settings(m_name);
            settings.setValue(preferences::kGraphWindowKeys, keys);
            EXPECT_EQ(settings.value(preferences::kGraphWindowKeys), keys);
            EXPECT_TRUE(settings.synchronize());
        }
        EXPECT_EQ(Settings(m_name).value(preferences::kGraphWindowKeys), keys);
    }
}

TEST_F(GraphSettingsTest, KeysAreWordsInTheFile)
{
    Settings settings(m_name);
    settings.setValue(preferences::kGraphWindowKeys, {s("CPUTotalUsage"), s("CPUUsage__1//a, b")});
    settings.synchronize();
    EXPECT_EQ(fileText(),
              QByteArray("[General]\ngraphWindowKeys=CPUTotalUsage, \"CPUUsage__1//a, b\"\n"));
    settings.remove(preferences::kGraphWindowKeys);
    settings.synchronize();
    EXPECT_EQ(settings.value(preferences::kGraphWindowKeys), std::nullopt);
    EXPECT_FALSE(fileText().contains("graphWindowKeys"));
}

} // namespace
} // namespace pulsebar
