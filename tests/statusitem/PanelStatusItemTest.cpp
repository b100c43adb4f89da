#include "statusitem/PanelStatusItem.h"

#include "BusTesting.h"
#include "FakeHost.h"
#include "FakeTray.h"
#include "statusitem/DBusTypes.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Client;
using testing::FakeTray;
using testing::FakeWatcher;
using testing::NamedHost;
using testing::OneRow;
using testing::PrivateBus;
using testing::settle;
using testing::SignalLog;
using testing::visibleStrip;
using testing::waitFor;

const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

class PanelStatusItemTest : public ::testing::Test
{
protected:
    std::unique_ptr<PanelStatusItem> makeItem()
    {
        PanelSurroundings around;
        around.processNames = &names;
        around.trayDock = &tray;
        around.stripPlace.load = [this] { return storedPlace; };
        around.stripPlace.store = [this](QPoint place) { storedPlace = place; };
        around.stripDelay = stripDelay;
        auto item = std::make_unique<PanelStatusItem>(around);
        item->setTitle(QStringLiteral("12.3%"));
        item->setTitleGuide(QStringLiteral("100.0%"));
        return item;
    }

    std::unique_ptr<PanelStatusItem> shownItem(FakeWatcher &watcher)
    {
        auto item = makeItem();
        item->setMenuDelegate(&menu);
        EXPECT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
        return item;
    }

    QString service() const
    {
        return QStringLiteral("org.kde.StatusNotifierItem-%1-1")
            .arg(QCoreApplication::applicationPid());
    }

    QDBusMessage get(const QString &name)
    {
        return panel.call(service(), itemPath, propertiesInterface, QStringLiteral("Get"),
                          {itemInterface, name});
    }

    QVariant property(const char *name)
    {
        return get(QString::fromLatin1(name)).arguments().value(0).value<QDBusVariant>().variant();
    }

    QVariantMap allProperties()
    {
        return qdbus_cast<QVariantMap>(panel
                                           .call(service(), itemPath, propertiesInterface,
                                                 QStringLiteral("GetAll"), {itemInterface})
                                           .arguments()
                                           .value(0));
    }

    QDBusMessage callItem(const QString &method, const QVariantList &arguments)
    {
        return panel.call(service(), itemPath, itemInterface, method, arguments);
    }

    void turn() { settle({panel.bus()}); }

    NamedHost names;
    FakeTray tray;
    OneRow menu;
    std::optional<QPoint> storedPlace;
    std::chrono::milliseconds stripDelay{0};
    Client panel;
    SignalLog changes{panel,
                      itemPath,
                      itemInterface,
                      {QStringLiteral("NewTitle"), QStringLiteral("NewIcon"),
                       QStringLiteral("NewToolTip"), QStringLiteral("NewStatus"),
                       QStringLiteral("XAyatanaNewLabel")}};
};

TEST_F(PanelStatusItemTest, IsSeenBeforeItHasAMenuAndTellsWhenTheMenuComes)
{
    FakeWatcher watcher;
    const SignalLog layouts{panel,
                            QStringLiteral("/MenuBar"),
                            QStringLiteral("com.canonical.dbusmenu"),
                            {QStringLiteral("LayoutUpdated")}};
    auto item = makeItem();
    ASSERT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
    EXPECT_EQ(property("XAyatanaLabel"), QStringLiteral("12.3%"));
    EXPECT_EQ(layouts.count(QStringLiteral("LayoutUpdated")), 0);
    item->setMenuDelegate(&menu);
    EXPECT_TRUE(waitFor([&] { return layouts.count(QStringLiteral("LayoutUpdated")) == 1; }));
    EXPECT_EQ(watcher.items(), QStringList{service()});
}

TEST_F(PanelStatusItemTest, LeavesTheStripOutWhileThePanelIsStillStarting)
{
    stripDelay = std::chrono::minutes(1);
    auto item = makeItem();
    item->setMenuDelegate(&menu);
    turn();
    EXPECT_EQ(visibleStrip(), nullptr);
    item->setTitleOnPanel(TitleOnPanel::Strip);
    EXPECT_TRUE(waitFor([] { return visibleStrip() != nullptr; })) << "wished for: at once";
    item->setTitleOnPanel(TitleOnPanel::Automatic);
    turn();
    EXPECT_NE(visibleStrip(), nullptr) << "nothing else shows the title";
    {
        const FakeWatcher watcher;
        ASSERT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
    }
    turn();
    EXPECT_EQ(visibleStrip(), nullptr) << "a panel that is started anew comes back";
}

TEST_F(PanelStatusItemTest, AStripThatNeverHadATextIsAsSmallAsItsSign)
{
    auto item = makeItem();
    item->setTitleOnPanel(TitleOnPanel::Icon);
    item->setMenuDelegate(&menu);
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    EXPECT_LT(visibleStrip()->height(), 64);
    EXPECT_LT(visibleStrip()->width(), 64);
}

TEST_F(PanelStatusItemTest, ComesAnewToMateWhereALabelWouldStay)
{
    names.name = QStringLiteral("notification-area-applet");
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    item->setTitleOnPanel(TitleOnPanel::Icon);
    ASSERT_TRUE(waitFor([&] { return watcher.items().size() == 2; }));
    EXPECT_FALSE(allProperties().contains(QStringLiteral("XAyatanaLabel")));
    EXPECT_EQ(changes.count(QStringLiteral("XAyatanaNewLabel")), 0) << "an empty label hides it";
    item->setTitleOnPanel(TitleOnPanel::Text);
    turn();
    turn();
    EXPECT_EQ(property("XAyatanaLabel"), QStringLiteral("12.3%"));
    EXPECT_EQ(watcher.items().size(), 2) << "a label that comes is taken by the item it knows";
}

TEST_F(PanelStatusItemTest, ShowsMateThePictureBesideTheTitleInOneWidePixmap)
{
    names.name = QStringLiteral("notification-area-applet");
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    item->setImage(QStringLiteral("firefox"));
    ASSERT_TRUE(waitFor([&] { return watcher.items().size() == 2; }));
    EXPECT_FALSE(allProperties().contains(QStringLiteral("XAyatanaLabel")));
    const auto pixmaps = qdbus_cast<ItemPixmapList>(property("IconPixmap"));
    ASSERT_FALSE(pixmaps.isEmpty());
    for (const ItemPixmap &pixmap : pixmaps) {
        EXPECT_GT(pixmap.width, pixmap.height * 2);
    }
    item->setImage(QString());
    turn();
    EXPECT_FALSE(allProperties().contains(QStringLiteral("XAyatanaLabel")))
        << "a rotation's next title is shown in the same way";
    item->setTitleGuide(QStringLiteral("In 1023MB"));
    turn();
    EXPECT_EQ(property("XAyatanaLabel"), QStringLiteral("12.3%")) << "other titles were chosen";
}

TEST_F(PanelStatusItemTest, ShowsThePropertiesOfTheProtocol)
{
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    const QVariantMap all = allProperties();
    EXPECT_EQ(all.value(QStringLiteral("Id")), QStringLiteral("pulsebar"));
    EXPECT_EQ(all.value(QStringLiteral("Category")), QStringLiteral("SystemServices"));
    EXPECT_EQ(all.value(QStringLiteral("Status")), QStringLiteral("Active"));
    EXPECT_EQ(all.value(QStringLiteral("Title")), QStringLiteral("12.3%"));
    EXPECT_EQ(all.value(QStringLiteral("XAyatanaLabel")), QStringLiteral("12.3%"));
    EXPECT_EQ(all.value(QStringLiteral("XAyatanaLabelGuide")), QStringLiteral("100.0%"));
    EXPECT_EQ(all.value(QStringLiteral("ItemIsMenu")), QVariant(true));
    EXPECT_EQ(all.value(QStringLiteral("WindowId")).typeId(), QMetaType::Int)
        << "MATE wants an int";
    EXPECT_EQ(all.value(QStringLiteral("Menu")).value<QDBusObjectPath>().path(),
              QStringLiteral("/MenuBar"));
    EXPECT_EQ(all.value(QStringLiteral("IconName")), QString()) << "the pixmaps matter";
    const auto toolTip = qdbus_cast<ItemToolTip>(all.value(QStringLiteral("ToolTip")));
    EXPECT_EQ(toolTip.title, QStringLiteral("12.3%"));
    const auto pixmaps = qdbus_cast<ItemPixmapList>(all.value(QStringLiteral("IconPixmap")));
    EXPECT_EQ(pixmaps.size(), 4);
    EXPECT_EQ(get(QStringLiteral("NoSuch")).type(), QDBusMessage::ErrorMessage);
}

TEST_F(PanelStatusItemTest, HasNoLabelWithoutText)
{
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    item->setTitle(QString());
    item->setTitleGuide(QString());
    turn();
    EXPECT_FALSE(allProperties().contains(QStringLiteral("XAyatanaLabel")));
    EXPECT_FALSE(allProperties().contains(QStringLiteral("XAyatanaLabelGuide")));
    EXPECT_EQ(get(QStringLiteral("XAyatanaLabel")).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(property("Title"), QStringLiteral("Pulsebar"));
    EXPECT_EQ(changes.count(QStringLiteral("XAyatanaNewLabel")), 1);
}

TEST_F(PanelStatusItemTest, SignalsOnlyWhatChanged)
{
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    turn();
    changes.clear();
    item->setTitle(QStringLiteral("12.3%"));
    item->setTitleGuide(QStringLiteral("100.0%"));
    item->setImage(QStringLiteral("firefox"));
    item->setImage(QString());
    turn();
    EXPECT_EQ(changes.count(QStringLiteral("NewTitle")), 0);
    EXPECT_EQ(changes.count(QStringLiteral("NewIcon")), 0)
        << "changed and changed back in one turn";
    item->setTitle(QStringLiteral("12.4%"));
    turn();
    EXPECT_EQ(changes.count(QStringLiteral("NewTitle")), 1);
    EXPECT_EQ(changes.count(QStringLiteral("NewToolTip")), 1);
    EXPECT_EQ(changes.count(QStringLiteral("XAyatanaNewLabel")), 1);
    EXPECT_EQ(changes.count(QStringLiteral("NewIcon")), 0) << "the number drawn is still 12";
    EXPECT_EQ(changes.count(QStringLiteral("NewStatus")), 0);
    item->setTitle(QStringLiteral("13.0%"));
    turn();
    EXPECT_EQ(changes.count(QStringLiteral("NewIcon")), 1);
}

TEST_F(PanelStatusItemTest, JoinsAWatcherThatComesLaterAndOneThatComesBack)
{
    auto item = makeItem();
    item->setMenuDelegate(&menu);
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    {
        FakeWatcher watcher;
        ASSERT_TRUE(waitFor([&] { return watcher.items().contains(service()); }));
        ASSERT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
    }
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    FakeWatcher again;
    EXPECT_TRUE(waitFor([&] { return again.items().contains(service()); }));
    EXPECT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
}

TEST_F(PanelStatusItemTest, DoesNotRelyOnAWatcherWithoutAHost)
{
    FakeWatcher watcher(false);
    auto item = shownItem(watcher);
    EXPECT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    watcher.setHost(true);
    EXPECT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
}

TEST_F(PanelStatusItemTest, WithdrawsForTheStrip)
{
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    item->setTitleOnPanel(TitleOnPanel::Strip);
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    EXPECT_EQ(get(QStringLiteral("Title")).type(), QDBusMessage::ErrorMessage);
    item->setTitleOnPanel(TitleOnPanel::Automatic);
    EXPECT_TRUE(waitFor([&] { return watcher.items().size() == 2; }));
    EXPECT_EQ(visibleStrip(), nullptr);
}

TEST_F(PanelStatusItemTest, SendsIconsByNameToTheIndicatorService)
{
    names.name = QStringLiteral("ayatana-indicator-application-service");
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    EXPECT_FALSE(property("IconName").toString().isEmpty());
    EXPECT_TRUE(qdbus_cast<ItemPixmapList>(property("IconPixmap")).isEmpty());
}

TEST_F(PanelStatusItemTest, SendsWidePixmapsToWaybar)
{
    names.name = QStringLiteral("waybar");
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    const auto pixmaps = qdbus_cast<ItemPixmapList>(property("IconPixmap"));
    ASSERT_EQ(pixmaps.size(), 3);
    EXPECT_GT(pixmaps[1].width, pixmaps[1].height);
}

TEST_F(PanelStatusItemTest, RefusesThePlasmaClickOnly)
{
    names.name = QStringLiteral("plasmashell");
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    EXPECT_EQ(callItem(QStringLiteral("Activate"), {1, 2}).errorName(),
              QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    names.name = QStringLiteral("gnome-shell");
    EXPECT_EQ(callItem(QStringLiteral("Activate"), {1, 2}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(callItem(QStringLiteral("Scroll"), {1, QStringLiteral("Vertical")}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(callItem(QStringLiteral("SecondaryActivate"), {1, 2}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(callItem(QStringLiteral("XAyatanaSecondaryActivate"), {7U}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(callItem(QStringLiteral("Activate"), {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(callItem(QStringLiteral("NoSuch"), {}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(PanelStatusItemTest, StepsBackOnXfceWhileDockedWide)
{
    names.name = QStringLiteral("wrapper-2.0");
    tray.present = true;
    FakeWatcher watcher;
    auto item = shownItem(watcher);
    ASSERT_TRUE(waitFor([&] { return !tray.wanted.isEmpty(); }));
    EXPECT_EQ(property("Status"), QStringLiteral("Active")) << "not docked yet";
    tray.give(tray.wanted);
    turn();
    EXPECT_EQ(property("Status"), QStringLiteral("Passive"));
    EXPECT_EQ(changes.count(QStringLiteral("NewStatus")), 1);
    EXPECT_EQ(tray.drawn, tray.wanted);
    tray.give({22, 22});
    turn();
    EXPECT_EQ(property("Status"), QStringLiteral("Active")) << "a square is no better";
    item->setTitleOnPanel(TitleOnPanel::Icon);
    turn();
    EXPECT_TRUE(tray.wanted.isEmpty());
    EXPECT_EQ(property("Status"), QStringLiteral("Active"));
}

TEST_F(PanelStatusItemTest, JoinsATrayWhereNoWatcherServes)
{
    auto item = makeItem();
    item->setMenuDelegate(&menu);
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    tray.setPresent(true);
    ASSERT_TRUE(waitFor([&] { return tray.wanted.width() > 30; }));
    EXPECT_EQ(visibleStrip(), nullptr);
    tray.give({22, 22});
    EXPECT_EQ(tray.drawn, QSize(22, 22)) << "the number in the square that the tray gives";
    tray.setPresent(false);
    EXPECT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
}

TEST_F(PanelStatusItemTest, DrawsInTheTrayOnlyWhatChanged)
{
    tray.present = true;
    auto item = makeItem();
    item->setMenuDelegate(&menu);
    ASSERT_TRUE(waitFor([&] { return !tray.wanted.isEmpty(); }));
    tray.give(tray.wanted);
    turn();
    const int before = tray.drawings;
    const QSize wanted = tray.wanted;
    item->setImage(QStringLiteral("x"));
    item->setImage(QString());
    turn();
    EXPECT_EQ(tray.drawings, before);
    item->setTitle(QStringLiteral("1.0%"));
    turn();
    EXPECT_EQ(tray.drawings, before + 1);
    EXPECT_EQ(tray.wanted, wanted) << "a shorter text does not move the neighbours";
}

TEST_F(PanelStatusItemTest, WritesOnTheTrayInInkThatStandsOut)
{
    tray.present = true;
    auto item = makeItem();
    ASSERT_TRUE(waitFor([&] { return !tray.wanted.isEmpty(); }));
    const auto opaqueOf = [this](std::uint32_t background) {
        tray.colour = background;
        tray.give(tray.wanted);
        return std::pair(std::count(tray.picture.begin(), tray.picture.end(), 0xFFFFFFFFU),
                         std::count(tray.picture.begin(), tray.picture.end(), 0xFF202020U));
    };
    const auto [whiteOnDark, darkOnDark] = opaqueOf(0x101010);
    EXPECT_GT(whiteOnDark, 0);
    EXPECT_EQ(darkOnDark, 0);
    EXPECT_GT(opaqueOf(0xF0F0F0).second, 0);
}

TEST_F(PanelStatusItemTest, KeepsTheWidthOfARotationThatShowsAPictureNowAndThen)
{
    tray.present = true;
    auto item = makeItem();
    item->setImage(QStringLiteral("firefox"));
    ASSERT_TRUE(waitFor([&] { return !tray.wanted.isEmpty(); }));
    const QSize withImage = tray.wanted;
    item->setImage(QString());
    item->setTitle(QStringLiteral("1.0%"));
    turn();
    EXPECT_EQ(tray.wanted, withImage);
    item->setTitleGuide(QStringLiteral("99.0%"));
    turn();
    EXPECT_LT(tray.wanted.width(), withImage.width()) << "other titles were chosen";
}

TEST_F(PanelStatusItemTest, TellsAboutTitleAndLengthOnce)
{
    auto item = makeItem();
    int titles = 0;
    int lengths = 0;
    QObject::connect(item.get(), &StatusItem::titleChanged, [&] { ++titles; });
    QObject::connect(item.get(), &StatusItem::lengthChanged, [&] { ++lengths; });
    item->setTitle(QStringLiteral("1%"));
    item->setTitle(QStringLiteral("1%"));
    item->setLength(60);
    item->setLength(60);
    EXPECT_EQ(titles, 1);
    EXPECT_EQ(lengths, 1);
    EXPECT_FALSE(item->hasMenu());
}

TEST_F(PanelStatusItemTest, ComesBackAfterTheBusWasAway)
{
    auto watcher = std::make_unique<FakeWatcher>();
    auto item = shownItem(*watcher);
    ASSERT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
    PrivateBus::instance().stop();
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    watcher.reset();
    PrivateBus::instance().start();
    watcher = std::make_unique<FakeWatcher>();
    EXPECT_TRUE(waitFor([&] { return watcher->items().contains(service()); }));
    EXPECT_TRUE(waitFor([] { return visibleStrip() == nullptr; }));
}

} // namespace
} // namespace pulsebar
