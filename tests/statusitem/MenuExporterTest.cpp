#include "statusitem/MenuExporter.h"

#include "BusTesting.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Client;
using testing::settle;
using testing::SignalLog;
using testing::waitFor;

const QString menuPath = QStringLiteral("/MenuBar");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

class RecordingDelegate : public MenuDelegate
{
public:
    void menuNeedsUpdate(Menu &menu) override
    {
        ++builds;
        menu.removeAllItems();
        menu.addItemWithTitle(QStringLiteral("Build %1").arg(changing ? builds : 0),
                              ItemTarget::Controller, QStringLiteral("act"));
        auto submenu = std::make_shared<Menu>(QStringLiteral("sub"));
        submenu->addItemWithTitle(QStringLiteral("below"), ItemTarget::Controller,
                                  QStringLiteral("below"));
        menu.addItemWithTitle(QStringLiteral("More"), ItemTarget::None, {}).submenu = submenu;
        MenuItem &off = menu.addItemWithTitle(QStringLiteral("Off"), ItemTarget::Controller,
                                              QStringLiteral("off"));
        off.enabled = false;
    }

    void performAction(const Menu &menu, const MenuItem &item, Qt::KeyboardModifiers held) override
    {
        holder = menu.title();
        chosen.append(item.title);
        modifiers = held;
    }

    int builds = 0;
    bool changing = true;
    QStringList chosen;
    QString holder;
    Qt::KeyboardModifiers modifiers;
};

class MenuExporterTest : public ::testing::Test
{
protected:
    MenuExporterTest()
    {
        source.setDelegate(&delegate);
        exporter.registerOn(server.bus(), menuPath);
    }

    QDBusMessage call(Client &client, const QString &method, const QVariantList &arguments)
    {
        return client.call(server.bus().baseService(), menuPath, menuInterface, method, arguments);
    }

    MenuLayoutNode layout(int parent = 0, int depth = -1, const QStringList &names = {})
    {
        const QDBusMessage reply = call(panel, QStringLiteral("GetLayout"), {parent, depth, names});
        revision = reply.arguments().value(0).toUInt();
        return qdbus_cast<MenuLayoutNode>(reply.arguments().value(1));
    }

    QDBusMessage event(Client &client, int id, const QString &name)
    {
        return call(client, QStringLiteral("Event"),
                    {id, name, QVariant::fromValue(QDBusVariant(0)), 0U});
    }

    QDBusMessage aboutToShowGroup(Client &client, const QList<int> &ids)
    {
        return call(client, QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(ids)});
    }

    static QString labelOf(const MenuLayoutNode &node)
    {
        return node.properties.value(QStringLiteral("label")).toString();
    }

    RecordingDelegate delegate;
    MenuSource source;
    MenuExporter exporter{source};
    Client server;
    Client panel;
    SignalLog changes{panel, menuPath, menuInterface, {QStringLiteral("LayoutUpdated")}};
    uint revision = 0;
};

TEST_F(MenuExporterTest, StandsBuiltBeforeAnybodyAsks)
{
    EXPECT_EQ(delegate.builds, 1);
    const MenuLayoutNode root = layout();
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(QStringLiteral("children-display")), QStringLiteral("submenu"));
    ASSERT_EQ(root.children.size(), 3);
    EXPECT_EQ(labelOf(root.children[0]), QStringLiteral("Build 1"));
    ASSERT_EQ(root.children[1].children.size(), 1);
    EXPECT_EQ(labelOf(root.children[1].children[0]), QStringLiteral("below"));
    EXPECT_EQ(delegate.builds, 1) << "reading builds nothing";
}

TEST_F(MenuExporterTest, ObeysTheDepth)
{
    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    const MenuLayoutNode one = layout(0, 1);
    ASSERT_EQ(one.children.size(), 3);
    EXPECT_TRUE(one.children[1].children.isEmpty());
    const MenuLayoutNode below = layout(one.children[1].id, -1);
    EXPECT_EQ(below.id, one.children[1].id);
    EXPECT_EQ(below.children.size(), 1);
}

TEST_F(MenuExporterTest, SendsOnlyThePropertiesAskedFor)
{
    const MenuLayoutNode root = layout(0, -1, {QStringLiteral("enabled")});
    EXPECT_TRUE(root.children[0].properties.isEmpty());
    EXPECT_EQ(root.children[2].properties, (QVariantMap{{QStringLiteral("enabled"), false}}));
}

TEST_F(MenuExporterTest, AnswersForGroupsAndSingleProperties)
{
    const MenuLayoutNode root = layout();
    const QList<int> ids{root.children[0].id, 9999, root.children[1].id};
    QDBusMessage reply = call(panel, QStringLiteral("GetGroupProperties"),
                              {QVariant::fromValue(ids), QStringList()});
    const auto list = qdbus_cast<MenuItemPropertiesList>(reply.arguments().value(0));
    ASSERT_EQ(list.size(), 2) << "an unknown row is left out";
    EXPECT_EQ(list[0].id, root.children[0].id);
    EXPECT_EQ(list[0].properties.value(QStringLiteral("label")), QStringLiteral("Build 1"));

    reply =
        call(panel, QStringLiteral("GetProperty"), {root.children[0].id, QStringLiteral("label")});
    EXPECT_EQ(reply.arguments().value(0).value<QDBusVariant>().variant(),
              QStringLiteral("Build 1"));
    reply = call(panel, QStringLiteral("GetProperty"), {9999, QStringLiteral("label")});
    EXPECT_EQ(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    reply = call(panel, QStringLiteral("GetLayout"), {9999, -1, QStringList()});
    EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage);
}

TEST_F(MenuExporterTest, BuildsWhenAboutToShowAndSignalsNothing)
{
    const QDBusMessage reply = call(panel, QStringLiteral("AboutToShow"), {0});
    EXPECT_EQ(reply.arguments().value(0), QVariant(true));
    EXPECT_EQ(delegate.builds, 2);
    EXPECT_EQ(labelOf(layout().children[0]), QStringLiteral("Build 2"));
    settle({server.bus(), panel.bus()});
    EXPECT_EQ(changes.count(QStringLiteral("LayoutUpdated")), 0);
}

TEST_F(MenuExporterTest, NeverBuildsForASubmenu)
{
    const int submenu = layout().children[1].id;
    EXPECT_EQ(call(panel, QStringLiteral("AboutToShow"), {submenu}).arguments().value(0),
              QVariant(false));
    const QDBusMessage reply = aboutToShowGroup(panel, {submenu});
    EXPECT_TRUE(qdbus_cast<QList<int>>(reply.arguments().value(0)).isEmpty());
    EXPECT_EQ(delegate.builds, 1);
    EXPECT_EQ(changes.count(QStringLiteral("LayoutUpdated")), 0);
}

TEST_F(MenuExporterTest, BuildsAndSignalsForAGroup)
{
    layout();
    const uint before = revision;
    const QDBusMessage reply = aboutToShowGroup(panel, {0, 9999});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{0});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(1)), QList<int>{9999});
    ASSERT_TRUE(waitFor([this] { return changes.count(QStringLiteral("LayoutUpdated")) == 1; }));
    EXPECT_GT(changes.lastArguments().value(0).toUInt(), before);
    EXPECT_EQ(changes.lastArguments().value(1), QVariant(0));
    EXPECT_EQ(labelOf(layout().children[0]), QStringLiteral("Build 2"));
}

TEST_F(MenuExporterTest, SignalsNothingForAGroupWhenNothingChanged)
{
    delegate.changing = false;
    aboutToShowGroup(panel, {0});
    ASSERT_TRUE(waitFor([this] { return changes.count(QStringLiteral("LayoutUpdated")) == 1; }));
    aboutToShowGroup(panel, {0});
    aboutToShowGroup(panel, {0});
    settle({server.bus(), panel.bus()});
    EXPECT_EQ(delegate.builds, 4);
    EXPECT_EQ(changes.count(QStringLiteral("LayoutUpdated")), 1);
}

TEST_F(MenuExporterTest, SignalsForAGroupWhatAnotherPanelWasToldByTheAnswerOnly)
{
    delegate.changing = false;
    call(panel, QStringLiteral("AboutToShow"), {0});
    Client other;
    aboutToShowGroup(other, {0});
    EXPECT_TRUE(waitFor([this] { return changes.count(QStringLiteral("LayoutUpdated")) == 1; }));
}

TEST_F(MenuExporterTest, StaysStillWhileOpenElsewhere)
{
    Client other;
    event(other, 0, QStringLiteral("opened"));
    aboutToShowGroup(panel, {0});
    settle({server.bus(), panel.bus()});
    EXPECT_EQ(changes.count(QStringLiteral("LayoutUpdated")), 0);
    event(other, 0, QStringLiteral("closed"));
    aboutToShowGroup(panel, {0});
    EXPECT_TRUE(waitFor([this] { return changes.count(QStringLiteral("LayoutUpdated")) == 1; }));
}

TEST_F(MenuExporterTest, ForgetsAPanelThatDiedWithTheMenuOpen)
{
    {
        Client other;
        event(other, 0, QStringLiteral("opened"));
    }
    settle({server.bus(), panel.bus()});
    EXPECT_TRUE(waitFor([this] {
        aboutToShowGroup(panel, {0});
        return changes.count(QStringLiteral("LayoutUpdated")) > 0;
    }));
}

TEST_F(MenuExporterTest, RefreshesForAPanelThatNeverSaidClosed)
{
    event(panel, 0, QStringLiteral("opened"));
    aboutToShowGroup(panel, {0});
    EXPECT_TRUE(waitFor([this] { return changes.count(QStringLiteral("LayoutUpdated")) == 1; }));
}

TEST_F(MenuExporterTest, GrowsItsRevisionWithEveryChange)
{
    uint before = 0;
    for (int i = 0; i < 5; ++i) {
        call(panel, QStringLiteral("AboutToShow"), {0});
        layout();
        EXPECT_GT(revision, before);
        before = revision;
    }
}

TEST_F(MenuExporterTest, KeepsNumbersAndRevisionWhileNothingChanges)
{
    delegate.changing = false;
    call(panel, QStringLiteral("AboutToShow"), {0});
    const int id = layout().children[0].id;
    const uint before = revision;
    call(panel, QStringLiteral("AboutToShow"), {0});
    EXPECT_EQ(layout().children[0].id, id);
    EXPECT_EQ(revision, before);
}

TEST_F(MenuExporterTest, ActsOnTheRowThatTheUserSaw)
{
    const int seen = layout().children[0].id;
    call(panel, QStringLiteral("AboutToShow"), {0});
    event(panel, seen, QStringLiteral("clicked"));
    EXPECT_TRUE(
        waitFor([this] { return delegate.chosen == QStringList{QStringLiteral("Build 1")}; }));
}

TEST_F(MenuExporterTest, ActsOnNothingThatIsTooOld)
{
    const int seen = layout().children[0].id;
    call(panel, QStringLiteral("AboutToShow"), {0});
    call(panel, QStringLiteral("AboutToShow"), {0});
    const QDBusMessage reply = event(panel, seen, QStringLiteral("clicked"));
    EXPECT_EQ(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    settle({server.bus(), panel.bus()});
    EXPECT_TRUE(delegate.chosen.isEmpty());
}

TEST_F(MenuExporterTest, LeavesRowsThatCannotBeChosen)
{
    const MenuLayoutNode root = layout();
    event(panel, root.children[2].id, QStringLiteral("clicked"));
    event(panel, root.children[1].id, QStringLiteral("clicked"));
    event(panel, root.children[0].id, QStringLiteral("hovered"));
    settle({server.bus(), panel.bus()});
    EXPECT_TRUE(delegate.chosen.isEmpty());
}

TEST_F(MenuExporterTest, TakesGroupsOfEvents)
{
    const MenuLayoutNode root = layout();
    const MenuEventList events{
        {root.children[0].id, QStringLiteral("clicked"), QDBusVariant(0), 0},
        {9999, QStringLiteral("clicked"), QDBusVariant(0), 0},
    };
    const QDBusMessage reply =
        call(panel, QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{9999});
    EXPECT_TRUE(waitFor([this] { return delegate.chosen.size() == 1; }));
}

TEST_F(MenuExporterTest, AsksTheKeyboardWhenTheClickArrives)
{
    exporter.setKeyboard([] { return Qt::ControlModifier | Qt::AltModifier; });
    event(panel, layout().children[0].id, QStringLiteral("clicked"));
    ASSERT_TRUE(waitFor([this] { return !delegate.chosen.isEmpty(); }));
    EXPECT_EQ(delegate.modifiers, Qt::ControlModifier | Qt::AltModifier);
}

TEST_F(MenuExporterTest, SaysItsVersion)
{
    const QDBusMessage reply = panel.call(server.bus().baseService(), menuPath,
                                          QStringLiteral("org.freedesktop.DBus.Properties"),
                                          QStringLiteral("GetAll"), {menuInterface});
    const auto all = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    EXPECT_EQ(all.value(QStringLiteral("Version")).toUInt(), 3U);
    EXPECT_EQ(all.value(QStringLiteral("Status")), QStringLiteral("normal"));
    EXPECT_EQ(all.value(QStringLiteral("TextDirection")), QStringLiteral("ltr"));
}

} // namespace
} // namespace pulsebar
