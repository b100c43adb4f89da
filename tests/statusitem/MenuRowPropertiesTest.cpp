#include "statusitem/MenuRowProperties.h"

#include "statusitem/MenuIcons.h"

#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

QVariantMap propertiesOf(const MenuItem &item)
{
    MenuIcons icons;
    return menuRowProperties(item,
                             [&icons](const QString &image) { return icons.properties(image); });
}

TEST(MenuRowProperties, TellsOnlyWhatDiffersFromTheDefaults)
{
    MenuItem item;
    item.title = QStringLiteral("Quit");
    EXPECT_EQ(propertiesOf(item), (QVariantMap{{QStringLiteral("label"), QStringLiteral("Quit")}}));
    EXPECT_EQ(propertiesOf(MenuItem::separatorItem()),
              (QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}}));
    item.enabled = false;
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("enabled")), QVariant(false));
}

TEST(MenuRowProperties, DoublesUnderscoresAndLeavesAmpersands)
{
    MenuItem item;
    item.title = QStringLiteral("_chrome & snake_case__x");
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("label")).toString(),
              QStringLiteral("__chrome & snake__case____x"));
    item.title = QString(QChar(u'\0'));
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("label")).toString(),
              QStringLiteral("\uFFFD"));
}

TEST(MenuRowProperties, TellsMarks)
{
    MenuItem item;
    EXPECT_FALSE(propertiesOf(item).contains(QStringLiteral("toggle-type")));
    item.state = ItemState::On;
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("toggle-type")), QStringLiteral("checkmark"));
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("toggle-state")), 1);
    item.state = ItemState::Mixed;
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("toggle-state")), -1);
    item.state = ItemState::Off;
    item.exclusive = true;
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("toggle-type")), QStringLiteral("radio"));
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("toggle-state")), 0);
}

TEST(MenuRowProperties, TellsSubmenusAndThemedIcons)
{
    MenuItem item;
    item.submenu = std::make_shared<Menu>();
    item.image = QStringLiteral("firefox");
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("children-display")),
              QStringLiteral("submenu"));
    EXPECT_EQ(propertiesOf(item).value(QStringLiteral("icon-name")), QStringLiteral("firefox"));
}

TEST(MenuIcons, EncodesAFileOnce)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("icon.png"));
    QImage image(48, 48, QImage::Format_ARGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(path));

    MenuIcons icons;
    const QByteArray first =
        icons.properties(path).value(QStringLiteral("icon-data")).toByteArray();
    EXPECT_TRUE(first.startsWith("\x89PNG"));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(icons.properties(path).value(QStringLiteral("icon-data")).toByteArray(), first);
}

TEST(MenuIcons, LeavesABrokenFileOut)
{
    MenuIcons icons;
    EXPECT_TRUE(icons.properties(QStringLiteral("/nonexistent/icon.png")).isEmpty());
}

} // namespace
} // namespace pulsebar
