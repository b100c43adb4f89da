#include "controller/Settings.h"
#include "controller/SettingsFormat.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class SettingsTest : public testing::Test
{
protected:
    SettingsTest()
        : m_name(m_folder.filePath(QStringLiteral("Pulsebar.conf")))
    {
    }

    Settings withText(const QByteArray &text)
    {
        QFile file(m_name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + text);
        file.close();
        return Settings(m_name);
    }

    QByteArray fileText() const
    {
        QFile file(m_name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// Reads a value; tells how many lines that wrote to the log.
    template <typename P>
    static std::pair<decltype(std::declval<Settings &>().value(std::declval<P>())), int>
    logged(Settings &settings, const P &preference)
    {
        testing::internal::CaptureStderr();
        auto value = settings.value(preference);
        const std::string log = testing::internal::GetCapturedStderr();
        return {value, static_cast<int>(std::count(log.begin(), log.end(), '\n'))};
    }

private:
    QTemporaryDir m_folder;
    QString m_name;
};

TEST_F(SettingsTest, AbsentValuesAreTheDefaults)
{
    Settings settings = withText("");
    EXPECT_EQ(settings.value(preferences::kListMax), 10);
    EXPECT_EQ(settings.value(preferences::kRefreshSec), 3);
    EXPECT_EQ(settings.value(preferences::kNetworkMax), 5);
    EXPECT_FALSE(settings.value(preferences::kShowIcon));
    EXPECT_FALSE(settings.value(preferences::kItemWidth));
    EXPECT_FALSE(settings.value(preferences::kTitleTypesToDisplay));
}

TEST_F(SettingsTest, BooleansAreWordsOfPeople)
{
    Settings settings = withText("showIcon=on\ncheckMemory=Yes\nsortByMemory=off\n");
    EXPECT_TRUE(settings.value(preferences::kShowIcon));
    EXPECT_TRUE(settings.value(preferences::kCheckMemory));
    EXPECT_EQ(logged(settings, preferences::kSortByMemory), std::pair(false, 0));
}

TEST_F(SettingsTest, ReadsEachType)
{
    Settings settings = withText(
        "listMax=12\nnetworkMax=7\nshowIcon=true\ncheckMemory=1\nitemWidth=62.5\n"
        "titleTypesToDisplay=1, 10\ntoggleTitleOptionArray=true, false\ntitleOnPanel=strip\n");
    EXPECT_EQ(settings.value(preferences::kListMax), 12);
    EXPECT_EQ(settings.value(preferences::kNetworkMax), 7);
    EXPECT_TRUE(settings.value(preferences::kShowIcon));
    EXPECT_TRUE(settings.value(preferences::kCheckMemory));
    EXPECT_EQ(settings.value(preferences::kItemWidth), 62.5F);
    EXPECT_EQ(settings.value(preferences::kTitleTypesToDisplay), (QVector<int>{1, 10}));
    EXPECT_EQ(settings.value(preferences::kToggleTitleOptionArray), (QVector<bool>{true, false}));
    EXPECT_EQ(settings.value(preferences::kTitleOnPanel), QStringLiteral("strip"));
}

TEST_F(SettingsTest, SingleValueIsAListOfOne)
{
    Settings settings = withText("titleTypesToDisplay=8\n");
    EXPECT_EQ(settings.value(preferences::kTitleTypesToDisplay), QVector<int>{8});
}

TEST_F(SettingsTest, OutOfRangeNumbersAreHandedOn)
{
    Settings settings = withText("listMax=500\nrefreshSec=-3\n");
    EXPECT_EQ(settings.value(preferences::kListMax), 500);
    EXPECT_EQ(settings.value(preferences::kRefreshSec), -3);
}

TEST_F(SettingsTest, MalformedValueIsItsDefaultWithOneLogLine)
{
    Settings settings =
        withText("listMax=banana\nrefreshSec=99999999999\nnetworkMax=1, 2\nshowIcon=maybe\n"
                 "itemWidth=inf\ntitleTypesToDisplay=1, x\nfahrenheit=true\n");
    EXPECT_EQ(logged(settings, preferences::kListMax), std::pair(10, 1));
    EXPECT_EQ(logged(settings, preferences::kRefreshSec), std::pair(3, 1));
    EXPECT_EQ(logged(settings, preferences::kNetworkMax), std::pair(qint64(5), 1));
    EXPECT_EQ(logged(settings, preferences::kShowIcon), std::pair(false, 1));
    EXPECT_EQ(logged(settings, preferences::kItemWidth), std::pair(std::optional<float>(), 1));
    EXPECT_EQ(logged(settings, preferences::kTitleTypesToDisplay),
              std::pair(std::optional<QVector<int>>(), 1));
    EXPECT_EQ(logged(settings, preferences::kFahrenheit), std::pair(true, 0));
}

TEST_F(SettingsTest, NumbersArePlainDecimal)
{
    for (const char *text : {"0x10", "1e3", "nan", "-inf", "+5", "12abc", "", "1.2.3"}) {
        Settings settings = withText(QByteArray("itemWidth=") + text + "\nlistMax=" + text + '\n');
        EXPECT_EQ(logged(settings, preferences::kItemWidth), std::pair(std::optional<float>(), 1))
            << text;
        EXPECT_EQ(logged(settings, preferences::kListMax), std::pair(10, 1)) << text;
    }
}

TEST_F(SettingsTest, WritesWhatItReads)
{
    {
        Settings settings = withText("");
        settings.setValue(preferences::kListMax, 7);
        settings.setValue(preferences::kNetworkMax, qint64(0));
        settings.setValue(preferences::kShowIcon, true);
        settings.setValue(preferences::kItemWidth, 60.0F);
        settings.setValue(preferences::kTitleTypesToDisplay, QVector<int>{9, 1});
        settings.setValue(preferences::kToggleTitleOptionArray, QVector<bool>{true, false});
        settings.setValue(preferences::kTitleOnPanel, QStringLiteral("icon"));
        EXPECT_EQ(settings.value(preferences::kTitleTypesToDisplay), (QVector<int>{9, 1}));
        EXPECT_TRUE(settings.synchronize());
    }
    EXPECT_EQ(fileText(),
              QByteArray("[General]\nitemWidth=60\nlistMax=7\nnetworkMax=0\nshowIcon=true\n"
                         "titleOnPanel=icon\ntitleTypesToDisplay=9, 1\n"
                         "toggleTitleOptionArray=true, false\n"));
}

TEST_F(SettingsTest, RemovedKeyIsGone)
{
    Settings settings = withText("titleTypeToDisplay=4\nlistMax=3\n");
    settings.remove(preferences::kTitleTypeToDisplay);
    EXPECT_TRUE(settings.synchronize());
    EXPECT_EQ(fileText(), QByteArray("[General]\nlistMax=3\n"));
}

TEST_F(SettingsTest, WhatStandsThereAlreadyIsNotWrittenAnew)
{
    Settings settings = withText("listMax=7 ; a remark\nshowIcon=true\nitemWidth=60\n"
                                 "titleTypesToDisplay=1, 2\ntitleOnPanel=icon\n");
    const auto storeAll = [&settings](int listMax) {
        settings.setValue(preferences::kListMax, listMax);
        settings.setValue(preferences::kShowIcon, true);
        settings.setValue(preferences::kItemWidth, 60.0F);
        settings.setValue(preferences::kTitleTypesToDisplay, QVector<int>{1, 2});
        settings.setValue(preferences::kTitleOnPanel, QStringLiteral("icon"));
        settings.remove(preferences::kGraphWindowKeys);
        EXPECT_TRUE(settings.synchronize());
    };
    storeAll(7);
    EXPECT_TRUE(fileText().contains("a remark"));
    storeAll(8);
    EXPECT_TRUE(fileText().contains("listMax=8\n"));
}

TEST_F(SettingsTest, ABatchIsWrittenOnceAtItsEnd)
{
    Settings settings = withText("");
    {
        const Settings::Batch batch(settings);
        settings.setValue(preferences::kListMax, 7);
        EXPECT_TRUE(settings.synchronize());
        {
            const Settings::Batch inner(settings);
            EXPECT_TRUE(settings.synchronize());
        }
        EXPECT_EQ(fileText(), QByteArray("[General]\n"));
    }
    EXPECT_EQ(fileText(), QByteArray("[General]\nlistMax=7\n"));
}

TEST(Settings, FailureToWriteIsTold)
{
    Settings settings(QStringLiteral("/proc/no/such/place/Pulsebar.conf"));
    settings.setValue(preferences::kListMax, 3);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(settings.synchronize());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("could not be written"),
              std::string::npos);
}

} // namespace
} // namespace pulsebar
