#include "app/Manuals.h"
#include "support/QtPrinting.h"

#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::EndsWith;

TEST(Manuals, TheManualComesBeforeTheReadMe)
{
    const QStringList places = manualPlaces(QStringLiteral("/some/where/bin"));
    ASSERT_EQ(places.size(), 4);
    EXPECT_EQ(places[0], QStringLiteral("/some/where/share/pulsebar/manual/index.html"));
    EXPECT_THAT(places[1].toStdString(), EndsWith("/share/pulsebar/manual/index.html"));
    EXPECT_EQ(places[2], QStringLiteral("/some/where/share/doc/pulsebar/README.md"));
    EXPECT_THAT(places[3].toStdString(), EndsWith("/share/doc/pulsebar/README.md"));
}

TEST(Manuals, TheBuildTreeHasOne)
{
    EXPECT_TRUE(QFileInfo(manualPlaces(QStringLiteral(PULSEBAR_PROGRAMS)).constFirst()).isFile());
}

} // namespace
} // namespace pulsebar
