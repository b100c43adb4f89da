#include "platform/linux_/desktop/DBusNotifications.h"

#include "statusitem/BusTesting.h"
#include "support/NotificationServer.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Client;
using testing::NotificationServer;
using testing::ShownNotification;
using testing::waitFor;

const QString kKey = QStringLiteral("alert-1");

Notification text(const char *summary, const char *body = "")
{
    return {s(summary), s(body), {{s("default"), s("Show")}, {s("quit"), s("Quit")}}};
}

class Notes : public Notifications::Listener
{
public:
    void notificationActionChosen(const QString &key, const QString &action) override
    {
        actions += key + u' ' + action;
    }
    void notificationNotShown(const QString &key) override { notShown += key; }

    QStringList actions;
    QStringList notShown;
};

class DBusNotificationsTest : public ::testing::Test
{
protected:
    DBusNotificationsTest() { notifications->setListener(&notes); }

    void turn() { testing::settle({program.bus(), desktop.bus()}); }

    /// Waits until the server has been asked for so many. @return the last of them
    ShownNotification shown(const NotificationServer &server, int count = 1)
    {
        EXPECT_TRUE(waitFor([&] { return server.all.size() >= count; }));
        turn();
        EXPECT_EQ(server.all.size(), count);
        return server.all.isEmpty() ? ShownNotification() : server.all.constLast();
    }

    Client desktop;
    Client program;
    Notes notes;
    std::unique_ptr<DBusNotifications> notifications =
        std::make_unique<DBusNotifications>(program.bus());
};

TEST_F(DBusNotificationsTest, IsShownAsTheProgramsOwn)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("CPU above 90%", "91.5% for 20 seconds"));
    const ShownNotification seen = shown(server);
    EXPECT_EQ(seen.program, s("Pulsebar"));
    EXPECT_EQ(seen.icon, s("org.pulsebar.Pulsebar"));
    EXPECT_EQ(seen.summary, s("CPU above 90%"));
    EXPECT_EQ(seen.body, s("91.5% for 20 seconds"));
    EXPECT_EQ(seen.actions, (QStringList{s("default"), s("Show"), s("quit"), s("Quit")}));
    EXPECT_EQ(seen.hints.value(s("desktop-entry")), QVariant(s("org.pulsebar.Pulsebar")));
    EXPECT_EQ(seen.hints.value(s("urgency")).metaType(), QMetaType::fromType<uchar>());
    EXPECT_EQ(seen.hints.value(s("urgency")).toInt(), 1);
    EXPECT_EQ(seen.timeout, -1);
    EXPECT_EQ(seen.replaces, 0U);
    EXPECT_TRUE(notes.notShown.isEmpty());
}

TEST_F(DBusNotificationsTest, SaysNothingToTheBusBeforeThereIsSomethingToShow)
{
    NotificationServer server(desktop.bus());
    notifications->withdraw(kKey);
    turn();
    EXPECT_EQ(server.askedAbilities, 0);
}

TEST_F(DBusNotificationsTest, TheNextOneOfAKeyReplacesTheOneBefore)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("first"));
    const uint id = shown(server).id;
    notifications->show(kKey, text("second"));
    notifications->show(s("other"), text("third"));
    EXPECT_EQ(shown(server, 3).replaces, 0U);
    EXPECT_EQ(server.all.at(1).replaces, id);
    EXPECT_EQ(server.visible.size(), 2);
    EXPECT_EQ(server.askedAbilities, 1);
}

TEST_F(DBusNotificationsTest, OfManyAskedForInOneTurnTheLastStays)
{
    NotificationServer server(desktop.bus());
    for (const char *summary : {"one", "two", "three"})
        notifications->show(kKey, text(summary));
    EXPECT_EQ(shown(server).summary, s("three"));
    // The number of the first is not known yet when the second is asked for.
    notifications->show(kKey, text("four"));
    notifications->show(kKey, text("five"));
    ASSERT_TRUE(waitFor([&] { return server.all.size() == 3; }));
    ASSERT_EQ(server.visible.size(), 1);
    EXPECT_EQ(server.visible.cbegin()->summary, s("five"));
}

TEST_F(DBusNotificationsTest, IsWithdrawn)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("first"));
    shown(server);
    notifications->withdraw(kKey);
    EXPECT_TRUE(waitFor([&] { return server.visible.isEmpty(); }));
}

TEST_F(DBusNotificationsTest, IsWithdrawnWhileItIsUnderWay)
{
    NotificationServer server(desktop.bus());
    // Before the server has said what it can do: it is never told.
    notifications->show(kKey, text("never"));
    notifications->withdraw(kKey);
    ASSERT_TRUE(waitFor([&] { return server.askedAbilities == 1; }));
    turn();
    EXPECT_TRUE(server.all.isEmpty());
    // Before the server has said its number: it is closed as soon as that is known.
    notifications->show(kKey, text("short"));
    notifications->withdraw(kKey);
    shown(server);
    EXPECT_TRUE(waitFor([&] { return server.visible.isEmpty(); }));
    // Wanted again in between: it stays.
    notifications->show(kKey, text("short"));
    notifications->withdraw(kKey);
    notifications->show(kKey, text("stays"));
    ASSERT_TRUE(waitFor([&] { return server.all.size() == 3; }));
    turn();
    ASSERT_EQ(server.visible.size(), 1);
    EXPECT_EQ(server.visible.cbegin()->summary, s("stays"));
}

TEST_F(DBusNotificationsTest, TellsWhichActionWasChosen)
{
    NotificationServer server(desktop.bus());
    notifications->show(s("other"), text("first"));
    notifications->show(kKey, text("second"));
    ASSERT_TRUE(waitFor([&] { return server.all.size() == 2; }));
    turn();
    const uint id = server.visible.value(1).summary == u"second" ? 1 : 2;
    server.choose(id, s("quit"));
    ASSERT_TRUE(waitFor([&] { return !notes.actions.isEmpty(); }));
    EXPECT_EQ(notes.actions, QStringList{kKey + s(" quit")});
    turn();
    // The server has closed it, and gives its number to others.
    server.choose(id, s("quit"));
    server.choose(77, s("quit"));
    turn();
    EXPECT_EQ(notes.actions.size(), 1);
    notifications->show(kKey, text("again"));
    EXPECT_EQ(shown(server, 3).replaces, 0U);
}

TEST_F(DBusNotificationsTest, TakesActionsFromTheServerAlone)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("first"));
    const uint id = shown(server).id;
    Client stranger;
    QDBusMessage signal =
        QDBusMessage::createSignal(s("/org/freedesktop/Notifications"),
                                   s("org.freedesktop.Notifications"), s("ActionInvoked"));
    signal.setArguments({id, s("quit")});
    stranger.bus().send(signal);
    testing::settle({stranger.bus(), program.bus()});
    EXPECT_TRUE(notes.actions.isEmpty());
}

TEST_F(DBusNotificationsTest, OffersNoActionsWhereTheyCannotBeChosen)
{
    NotificationServer server(desktop.bus());
    server.abilities = QStringList{s("body")};
    notifications->show(kKey, text("first", "a < b & c > d"));
    const ShownNotification seen = shown(server);
    EXPECT_TRUE(seen.actions.isEmpty());
    EXPECT_EQ(seen.body, s("a < b & c > d"));
}

TEST_F(DBusNotificationsTest, NamesOfProcessesAreNoMarkupAndNoControls)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("<b>\nloud", "most used: <a href=\"x\">cc&1\nplus\x1b</a>"));
    const ShownNotification seen = shown(server);
    EXPECT_EQ(seen.summary, s("<b>\uFFFDloud"));
    EXPECT_EQ(seen.body, s("most used: &lt;a href=\"x\"&gt;cc&amp;1\uFFFDplus\uFFFD&lt;/a&gt;"));
    notifications->show(s("long"), {QString(5000, u'x'), QString(5000, u'y'), {}});
    const ShownNotification cut = shown(server, 2);
    EXPECT_EQ(cut.summary.size(), 160);
    EXPECT_EQ(cut.body.size(), 600);
}

TEST_F(DBusNotificationsTest, SaysWhenThereIsNoServer)
{
    notifications->show(kKey, text("first"));
    EXPECT_TRUE(notes.notShown.isEmpty());
    ASSERT_TRUE(waitFor([&] { return !notes.notShown.isEmpty(); }));
    EXPECT_EQ(notes.notShown, QStringList{kKey});
    // One that comes later is used from then on.
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("second"));
    EXPECT_EQ(shown(server).summary, s("second"));
    EXPECT_EQ(notes.notShown.size(), 1);
}

TEST_F(DBusNotificationsTest, SaysWhenTheServerRefuses)
{
    NotificationServer server(desktop.bus());
    server.refuses = true;
    notifications->show(kKey, text("first"));
    ASSERT_TRUE(waitFor([&] { return notes.notShown == QStringList{kKey}; }));
}

TEST_F(DBusNotificationsTest, AServerThatGivesNoNumberHasShownNothing)
{
    NotificationServer server(desktop.bus());
    server.sameNumber = 0;
    notifications->show(kKey, text("first"));
    ASSERT_TRUE(waitFor([&] { return notes.notShown == QStringList{kKey}; }));
}

TEST_F(DBusNotificationsTest, AnActionCountsForTheLastToWhomTheNumberWasGiven)
{
    NotificationServer server(desktop.bus());
    server.sameNumber = 7;
    QStringList keys;
    for (int i = 0; i < 8; ++i) {
        keys += s("alert-%1").arg(i);
        notifications->show(keys.constLast(), text("busy"));
        shown(server, i + 1);
    }
    server.choose(7, s("quit"));
    ASSERT_TRUE(waitFor([&] { return !notes.actions.isEmpty(); }));
    EXPECT_EQ(notes.actions, QStringList{keys.constLast() + s(" quit")});
}

TEST_F(DBusNotificationsTest, AServerThatGoesTakesItsNotificationsAlong)
{
    auto server = std::make_unique<NotificationServer>(desktop.bus());
    notifications->show(kKey, text("first"));
    shown(*server);
    server.reset();
    ASSERT_TRUE(waitFor([&] { return notes.notShown == QStringList{kKey}; }));
    // The next one may be another program, with other abilities and numbers of its own.
    NotificationServer next(desktop.bus());
    next.abilities.clear();
    notifications->show(kKey, text("second"));
    const ShownNotification seen = shown(next);
    EXPECT_EQ(seen.replaces, 0U);
    EXPECT_TRUE(seen.actions.isEmpty());
    EXPECT_EQ(next.askedAbilities, 1);
}

TEST_F(DBusNotificationsTest, NothingStaysOnTheScreenAfterTheProgram)
{
    NotificationServer server(desktop.bus());
    notifications->show(kKey, text("first"));
    shown(server);
    notifications.reset();
    EXPECT_TRUE(waitFor([&] { return server.visible.isEmpty(); }));
}

TEST_F(DBusNotificationsTest, WithoutABusNothingIsShownAndItSaysSo)
{
    DBusNotifications lonely{QDBusConnection(s("no such connection"))};
    lonely.setListener(&notes);
    lonely.show(kKey, text("first"));
    EXPECT_TRUE(notes.notShown.isEmpty());
    EXPECT_TRUE(waitFor([&] { return notes.notShown == QStringList{kKey}; }));
}

} // namespace
} // namespace pulsebar
