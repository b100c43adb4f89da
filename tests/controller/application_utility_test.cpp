#include "controller/ApplicationUtility.h"
#include "controller/Settings.h"
#include "platform/UrlOpener.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class FakeOpener : public UrlOpener
{
public:
    bool open(const QUrl &url) override
    {
        opened += url.toEncoded();
        return true;
    }
    QByteArrayList opened;
};

TEST(ApplicationVersionNumber, GrowsWithTheVersion)
{
    EXPECT_EQ(applicationVersionNumber(s("1.0.1"), s("9")), 101);
    EXPECT_EQ(applicationVersionNumber(s("1.2"), QString()), 120);
    EXPECT_EQ(applicationVersionNumber(s("2"), QString()), 200);
    EXPECT_EQ(applicationVersionNumber(s("1.2.3"), QString()), 123);
    EXPECT_EQ(applicationVersionNumber(s("1.10"), QString()), 110);
    EXPECT_EQ(applicationVersionNumber(s("10.20.30"), QString()), 102030);
}

TEST(ApplicationVersionNumber, TheShortVersionStandsIn)
{
    EXPECT_EQ(applicationVersionNumber(QString(), s("1.3")), 130);
    EXPECT_EQ(applicationVersionNumber(s("..."), s("1.3")), 130);
    EXPECT_EQ(applicationVersionNumber(QString(), QString()), 0);
    EXPECT_EQ(applicationVersionNumber(s("devel"), QString()), 0);
}

TEST(NumOfProcessorCores, OneWhenItCannotBeTold)
{
    fakes::FactsAnswer facts;
    EXPECT_EQ(numOfProcessorCores(facts), 1);
    for (const auto &[told, cores] : {std::pair{0LL, 1}, {-4LL, 1}, {1LL << 40, 1}, {6LL, 6}}) {
        facts.named["hw.physicalcpu"] = told;
        EXPECT_EQ(numOfProcessorCores(facts), cores) << told;
    }
}

class ApplicationUtilityTest : public testing::Test
{
protected:
    QString makeFile(const char *name)
    {
        QFile file(folder.filePath(s(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    QTemporaryDir folder;
    FakeOpener opener;
};

TEST_F(ApplicationUtilityTest, TextsAreEscapedAsUrls)
{
    ApplicationUtility application(&opener, {});
    application.openURL(s("https://example.org/a b/ü?q=100%&r=[1]#top"));
    application.openURL(s("file:///tmp/\"x\"<y>|z\\"));
    EXPECT_EQ(opener.opened, (QByteArrayList{"https://example.org/a%20b/%C3%BC?q=100%25&r=[1]#top",
                                             "file:///tmp/%22x%22%3Cy%3E%7Cz%5C"}));
}

TEST_F(ApplicationUtilityTest, UrlsAreOpenedAsTheyAre)
{
    ApplicationUtility application(&opener, {});
    application.openURL(QUrl(s("https://example.org/a%20b")));
    EXPECT_EQ(opener.opened, QByteArrayList{"https://example.org/a%20b"});
}

TEST_F(ApplicationUtilityTest, WhatIsNoUrlIsNotOpened)
{
    ApplicationUtility application(&opener, {});
    for (const char *text : {"", "--help", "readme.txt", "/etc/passwd", "http://[::", "ä:b"})
        application.openURL(s(text));
    EXPECT_EQ(opener.opened, QByteArrayList());
    ApplicationUtility(nullptr, {}).openURL(s("https://example.org/"));
}

TEST_F(ApplicationUtilityTest, TheFirstManualThatIsThereIsShown)
{
    const QString missing = folder.filePath(s("missing.html"));
    const QString manual = makeFile("man ual#1.html");
    const QString readMe = makeFile("README.md");
    ApplicationUtility(&opener, {missing, manual, readMe}).showManual();
    ApplicationUtility(&opener, {missing, folder.path(), readMe}).showManual();
    EXPECT_EQ(opener.opened,
              (QByteArrayList{"file://" + folder.path().toUtf8() + "/man%20ual%231.html",
                              "file://" + folder.path().toUtf8() + "/README.md"}));
}

TEST_F(ApplicationUtilityTest, WithoutAManualNothingIsOpened)
{
    testing::internal::CaptureStderr();
    ApplicationUtility(&opener, {folder.filePath(s("missing"))}).showManual();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("manual is not installed"),
              std::string::npos);
    EXPECT_EQ(opener.opened, QByteArrayList());
}

TEST_F(ApplicationUtilityTest, TheManualIsShownOnce)
{
    const QString file = folder.filePath(s("Pulsebar.conf"));
    ApplicationUtility application(&opener, {makeFile("manual.html")});
    Settings settings(file);
    application.showManualIfItIsFirstLaunch(settings);
    EXPECT_EQ(opener.opened.size(), 1);
    // It is on the disk already, whatever becomes of the program.
    QFile stored(file);
    ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
    EXPECT_TRUE(stored.readAll().contains("\nNotFirstLaunch=true\n"));
    application.showManualIfItIsFirstLaunch(settings);
    Settings later(file);
    application.showManualIfItIsFirstLaunch(later);
    EXPECT_EQ(opener.opened.size(), 1);
}

} // namespace
} // namespace pulsebar
