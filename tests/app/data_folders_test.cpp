#include "app/DataFolders.h"
#include "support/QtPrinting.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(DataFolders, TheUsersOwnComesFirst)
{
    qputenv("XDG_DATA_HOME", "/somewhere/data");
    const QStringList folders = dataFolders(QStringLiteral("/opt/pulsebar/bin"));
    ASSERT_EQ(folders.size(), 3);
    EXPECT_EQ(folders.at(0), QStringLiteral("/somewhere/data/pulsebar"));
    EXPECT_EQ(folders.at(1), QStringLiteral("/opt/pulsebar/share/pulsebar"));
    EXPECT_TRUE(folders.at(2).endsWith(QStringLiteral("/pulsebar")));
    qunsetenv("XDG_DATA_HOME");
    EXPECT_TRUE(
        dataFolders(QString()).constFirst().endsWith(QStringLiteral("/.local/share/pulsebar")));
}

TEST(DataFolders, TheBuildTreeHasTheSensorLists)
{
    const QString folder = dataFolders(QStringLiteral(PULSEBAR_PROGRAMS)).at(1);
    EXPECT_TRUE(QFileInfo(folder + QStringLiteral("/Temperature.plist")).isFile());
    EXPECT_TRUE(QFileInfo(folder + QStringLiteral("/Fan.plist")).isFile());
}

} // namespace
} // namespace pulsebar
