#include "statusitem/IconFile.h"

#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

const QString unthemed = QStringLiteral("an-icon-of-no-theme");

TEST(IconFile, HandsPathsOn)
{
    IconFile file;
    EXPECT_EQ(file.nameFor(QStringLiteral("/usr/share/pixmaps/x.png"), true),
              QStringLiteral("/usr/share/pixmaps/x.png"));
}

TEST(IconFile, DrawsWhatNoThemeHas)
{
    IconFile file;
    const QString path = file.nameFor(unthemed, true);
    EXPECT_FALSE(QImage(path).isNull()) << path.toStdString();
    EXPECT_EQ(file.nameFor(unthemed, true), path) << "drawn once";
}

TEST(IconFile, GivesAChangedPictureAnotherPathAndKeepsOneFile)
{
    QString light;
    {
        IconFile file;
        const QString dark = file.nameFor(unthemed, true);
        light = file.nameFor(unthemed, false);
        EXPECT_NE(dark, light);
        EXPECT_FALSE(QFile::exists(dark));
        EXPECT_TRUE(QFile::exists(light));
    }
    EXPECT_FALSE(QFile::exists(light)) << "nothing stays behind";
}

} // namespace
} // namespace pulsebar
