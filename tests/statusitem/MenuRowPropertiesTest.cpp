#include "statusitem/MenuRowProperties.h"

#include "statusitem/MenuIcons.h"

#include <QDir>
#include <QIcon>
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

TEST(MenuRowProperties, TellsSubmenusAndIconsThatItCannotLoad)
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

/// An icon theme with one square icon of a name.
class IconTheme
{
public:
    explicit IconTheme(const QString &icon)
        : m_icon(m_folder.filePath(QStringLiteral("sample/16/%1.png").arg(icon)))
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("sample/16"));
        QFile index(m_folder.filePath(QStringLiteral("sample/index.theme")));
        EXPECT_TRUE(index.open(QFile::WriteOnly));
        index.write("[Icon Theme]\nName=Sample\nDirectories=16\n\n[16]\nSize=16\n");
        QImage image(16, 16, QImage::Format_ARGB32);
        image.fill(Qt::green);
        EXPECT_TRUE(image.save(m_icon));
        QIcon::setThemeSearchPaths({m_folder.path()});
        QIcon::setThemeName(QStringLiteral("sample"));
    }
    ~IconTheme()
    {
        QIcon::setThemeSearchPaths(m_paths);
        QIcon::setThemeName(m_name);
    }
    bool remove() const { return QFile::remove(m_icon); }

private:
    QTemporaryDir m_folder;
    QString m_icon;
    QStringList m_paths = QIcon::themeSearchPaths();
    QString m_name = QIcon::themeName();
};

TEST(MenuIcons, LoadsAThemedIconOnceHoweverManyRowsShowItHoweverOften)
{
    const QString name = QStringLiteral("sample-program");
    const IconTheme theme(name);
    MenuIcons icons;
    const QByteArray first =
        icons.properties(name).value(QStringLiteral("icon-data")).toByteArray();
    ASSERT_TRUE(first.startsWith("\x89PNG"));
    EXPECT_FALSE(icons.properties(name).contains(QStringLiteral("icon-name")));
    ASSERT_TRUE(theme.remove());
    for (int i = 0; i < 40; ++i) {
        const QByteArray again =
            icons.properties(name).value(QStringLiteral("icon-data")).toByteArray();
        EXPECT_EQ(again.constData(), first.constData()) << "the bytes are shared, not made anew";
    }
}

TEST(MenuIcons, FollowsTheThemeOfTheDesktop)
{
    const QString name = QStringLiteral("sample-program");
    MenuIcons icons;
    EXPECT_EQ(icons.properties(name).value(QStringLiteral("icon-name")), name);
    const IconTheme theme(name);
    EXPECT_TRUE(icons.properties(name).contains(QStringLiteral("icon-data")));
}

TEST(MenuIcons, LeavesABrokenFileOut)
{
    MenuIcons icons;
    EXPECT_TRUE(icons.properties(QStringLiteral("/nonexistent/icon.png")).isEmpty());
}

} // namespace
} // namespace pulsebar
