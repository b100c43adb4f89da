// How the item is noticed, whichever face shows it.
#include "BusTesting.h"
#include "FakeHost.h"
#include "FakeTray.h"
#include "statusitem/DBusTypes.h"
#include "statusitem/IconFile.h"
#include "statusitem/ItemDrawing.h"
#include "statusitem/NotifierPixmaps.h"
#include "statusitem/PanelStatusItem.h"

#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

#include <algorithm>

namespace pulsebar {
namespace {

using testing::Client;
using testing::FakeTray;
using testing::FakeWatcher;
using testing::NamedHost;
using testing::OneRow;
using testing::settle;
using testing::SignalLog;
using testing::visibleStrip;
using testing::waitFor;

const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");

/// Whether a picture has a pixel of nearly that colour.
bool shows(const QImage &picture, const QColor &colour)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor here = picture.pixelColor(x, y);
            if (here.alpha() > 200 && std::abs(here.red() - colour.red()) < 12 &&
                std::abs(here.green() - colour.green()) < 12 &&
                std::abs(here.blue() - colour.blue()) < 12) {
                return true;
            }
        }
    }
    return false;
}

/// A pixmap as a panel draws it.
QImage pictureOf(const ItemPixmap &pixmap)
{
    QImage picture(pixmap.width, pixmap.height, QImage::Format_ARGB32);
    for (int y = 0; y < pixmap.height; ++y) {
        qFromBigEndian<quint32>(pixmap.pixels.constData() + qsizetype(y) * pixmap.width * 4,
                                pixmap.width, picture.scanLine(y));
    }
    return picture;
}

class AttentionTest : public ::testing::Test
{
protected:
    std::unique_ptr<PanelStatusItem> makeItem()
    {
        PanelSurroundings around;
        around.processNames = &names;
        around.trayDock = &tray;
        around.stripDelay = std::chrono::milliseconds(0);
        auto item = std::make_unique<PanelStatusItem>(around);
        item->setTitle(QStringLiteral("12.3%"));
        item->setMenuDelegate(&menu);
        return item;
    }

    QVariant property(const char *name)
    {
        return panel
            .call(service(), itemPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                  QStringLiteral("Get"), {itemInterface, QString::fromLatin1(name)})
            .arguments()
            .value(0)
            .value<QDBusVariant>()
            .variant();
    }

    ItemPixmapList pixmaps(const char *name) { return qdbus_cast<ItemPixmapList>(property(name)); }

    QDBusMessage callMenu(const QString &method, const QVariantList &arguments)
    {
        return panel.call(service(), QStringLiteral("/MenuBar"),
                          QStringLiteral("com.canonical.dbusmenu"), method, arguments);
    }

    static QString service()
    {
        return QStringLiteral("org.kde.StatusNotifierItem-%1-1")
            .arg(QCoreApplication::applicationPid());
    }

    void turn() { settle({panel.bus()}); }

    NamedHost names;
    FakeTray tray;
    OneRow menu;
    Client panel;
    SignalLog changes{panel,
                      itemPath,
                      itemInterface,
                      {QStringLiteral("NewIcon"), QStringLiteral("NewAttentionIcon"),
                       QStringLiteral("NewStatus")}};
};

TEST_F(AttentionTest, IsTheStatusOfTheItemAndAnIconOfItsOwn)
{
    FakeWatcher watcher;
    auto item = makeItem();
    ASSERT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
    turn();
    changes.clear();
    const QColor colour = attentionInkOnPanel(true).fill; // this host's panels are dark
    EXPECT_FALSE(shows(pictureOf(pixmaps("IconPixmap").constLast()), colour));
    EXPECT_EQ(property("Status"), QStringLiteral("Active"));
    EXPECT_TRUE(pixmaps("AttentionIconPixmap").isEmpty());

    item->setNeedsAttention(true);
    item->setNeedsAttention(true);
    turn();
    EXPECT_EQ(property("Status"), QStringLiteral("NeedsAttention"));
    EXPECT_EQ(changes.count(QStringLiteral("NewStatus")), 1);
    EXPECT_EQ(changes.lastArguments(), QVariantList{QStringLiteral("NeedsAttention")});
    EXPECT_EQ(changes.count(QStringLiteral("NewAttentionIcon")), 1);
    const ItemPixmapList noticed = pixmaps("AttentionIconPixmap");
    ASSERT_FALSE(noticed.isEmpty());
    EXPECT_TRUE(shows(pictureOf(noticed.constLast()), colour));
    // For panels that know of no attention.
    EXPECT_EQ(pixmaps("IconPixmap"), noticed);
    EXPECT_EQ(changes.count(QStringLiteral("NewIcon")), 1);

    item->setNeedsAttention(false);
    turn();
    EXPECT_EQ(property("Status"), QStringLiteral("Active"));
    EXPECT_EQ(changes.count(QStringLiteral("NewStatus")), 2);
    EXPECT_FALSE(shows(pictureOf(pixmaps("IconPixmap").constLast()), colour));
    EXPECT_TRUE(pixmaps("AttentionIconPixmap").isEmpty());
}

TEST_F(AttentionTest, IsAnIconFileForAHostThatReadsNames)
{
    names.name = QStringLiteral("ayatana-indicator-application-service");
    FakeWatcher watcher;
    auto item = makeItem();
    item->setImage(QStringLiteral("an-icon-of-no-theme"));
    ASSERT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
    ASSERT_TRUE(waitFor([&] { return !property("IconName").toString().isEmpty(); }));
    EXPECT_EQ(property("AttentionIconName"), QString());
    item->setNeedsAttention(true);
    turn();
    const QString name = property("AttentionIconName").toString();
    EXPECT_EQ(property("IconName"), name);
    EXPECT_TRUE(pixmaps("AttentionIconPixmap").isEmpty());
    const QImage drawn(name);
    EXPECT_TRUE(shows(drawn, attentionInkOnPanel(false).fill) ||
                shows(drawn, attentionInkOnPanel(true).fill));
}

TEST_F(AttentionTest, IsAColourOfTheStrip)
{
    auto item = makeItem();
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    EXPECT_FALSE(shows(visibleStrip()->grab().toImage(), attentionBackground()));
    item->setNeedsAttention(true);
    turn();
    const QImage noticed = visibleStrip()->grab().toImage();
    EXPECT_TRUE(shows(noticed, attentionBackground()));
    EXPECT_TRUE(shows(noticed, inkOnAttention().fill)) << "the title can be read";
    item->setNeedsAttention(false);
    turn();
    EXPECT_FALSE(shows(visibleStrip()->grab().toImage(), attentionBackground()));
}

TEST_F(AttentionTest, IsAColourInTheTray)
{
    const auto picture = [this] {
        return QImage(reinterpret_cast<const uchar *>(tray.picture.data()), tray.drawn.width(),
                      tray.drawn.height(), QImage::Format_ARGB32_Premultiplied)
            .copy();
    };
    tray.present = true;
    auto item = makeItem();
    ASSERT_TRUE(waitFor([&] { return !tray.wanted.isEmpty(); }));
    for (const bool dark : {true, false}) {
        tray.colour = dark ? 0x202020 : 0xE0E0E0;
        item->setNeedsAttention(false);
        tray.give(tray.wanted);
        turn();
        EXPECT_FALSE(shows(picture(), attentionInkOnPanel(dark).fill));
        item->setNeedsAttention(true);
        turn();
        EXPECT_TRUE(shows(picture(), attentionInkOnPanel(dark).fill));
    }
}

TEST_F(AttentionTest, AProgramsIconGivesWayToTheSignThatCanBeColoured)
{
    QTemporaryDir folder;
    QImage grey(32, 32, QImage::Format_ARGB32);
    grey.fill(Qt::gray);
    ItemContent content;
    content.image = folder.filePath(QStringLiteral("grey.png"));
    ASSERT_TRUE(grey.save(content.image));
    const PixmapContent usual = pixmapContentOf(content, PixmapStyle::Icon, true);
    content.attention = true;
    const PixmapContent noticed = pixmapContentOf(content, PixmapStyle::Icon, true);
    EXPECT_NE(renderPixmaps(usual), renderPixmaps(noticed));
    ItemContent sign;
    sign.attention = true;
    EXPECT_EQ(renderPixmaps(noticed),
              renderPixmaps(pixmapContentOf(sign, PixmapStyle::Icon, true)));
}

TEST_F(AttentionTest, TheItemTellsThatItsMenuIsOpenedOnAPanel)
{
    FakeWatcher watcher;
    auto item = makeItem();
    QSignalSpy opened(item.get(), &StatusItem::menuOpened);
    ASSERT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
    turn();
    // A panel reads the menu when it meets it, and before anybody sees it.
    callMenu(QStringLiteral("AboutToShow"), {0});
    EXPECT_EQ(opened.count(), 0);
    const auto event = [&](const QString &name) {
        callMenu(QStringLiteral("Event"),
                 {0, name, QVariant::fromValue(QDBusVariant(QString())), 0U});
    };
    event(QStringLiteral("opened"));
    EXPECT_EQ(opened.count(), 1);
    event(QStringLiteral("closed"));
    EXPECT_EQ(opened.count(), 1);
    callMenu(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0})});
    EXPECT_EQ(opened.count(), 2);
}

TEST_F(AttentionTest, TheItemTellsThatItsOwnMenuIsOpened)
{
    auto item = makeItem();
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    QSignalSpy opened(item.get(), &StatusItem::menuOpened);
    QTest::mouseClick(visibleStrip(), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return opened.count() == 1; }));
    if (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
}

} // namespace
} // namespace pulsebar
