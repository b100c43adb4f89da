// The exported menu and the drawn one show the same tree; where a view stands in the drawn one, the
// exported one shows its substitute.
#include "BusTesting.h"
#include "statusitem/MenuExporter.h"
#include "statusitem/MenuPopup.h"

#include <QLabel>
#include <QWidgetAction>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Client;
using testing::waitFor;

MenuItem row(const QString &title)
{
    MenuItem item;
    item.title = title;
    item.action = QStringLiteral("act");
    return item;
}

std::shared_ptr<Menu> widths()
{
    auto menu = std::make_shared<Menu>(QStringLiteral("Width on menubar"));
    for (int width = 30; width <= 50; width += 10) {
        MenuItem item = row(QString::number(width));
        item.action = QStringLiteral("setItemWidth");
        item.tag = width;
        item.exclusive = true;
        item.state = width == 40 ? ItemState::On : ItemState::Off;
        menu->addItem(item);
    }
    return menu;
}

MenuItem rowWithView()
{
    MenuItem item = row(QStringLiteral("Show Icon"));
    item.view = QStringLiteral("widthSlider");
    auto substitute = std::make_shared<MenuItem>(row(QStringLiteral("Width on menubar")));
    substitute->submenu = widths();
    item.substitute = substitute;
    return item;
}

std::shared_ptr<Menu> processMenu()
{
    auto menu = std::make_shared<Menu>(QStringLiteral("CPUUsage__412//snake_case && co"));
    menu->addItem(row(QStringLiteral("PID: 412")));
    menu->addItem(MenuItem::separatorItem());
    menu->addItem(MenuItem::separatorItem());
    MenuItem deeper = row(QStringLiteral("__deeper__"));
    auto below = std::make_shared<Menu>(QStringLiteral("deeper"));
    below->addItem(row(QStringLiteral("& below")));
    deeper.submenu = below;
    menu->addItem(deeper);
    menu->addItem(row(QStringLiteral("Force Quit")));
    return menu;
}

Menu richTree()
{
    Menu menu(QStringLiteral("Pulsebar"));
    MenuItem process = row(QStringLiteral("12.3% : snake_case && co"));
    process.submenu = processMenu();
    menu.addItem(process);
    menu.addItem(row(QStringLiteral("_chrome_ & 100%\nsecond line")));
    menu.addItem(row(QStringLiteral("<b>bold</b> \u2193\u2103 \U0001F525 مرحبا")));
    menu.addItem(row(QString(4096, u'x')));
    menu.addItem(row(QString(QChar(u'\0')) + QStringLiteral("nul")));
    menu.addItem(row(QString()));
    menu.addItem(MenuItem::separatorItem());
    MenuItem off = row(QStringLiteral("off"));
    off.enabled = false;
    menu.addItem(off);
    for (const ItemState state : {ItemState::Off, ItemState::On, ItemState::Mixed}) {
        MenuItem marked = row(QStringLiteral("marked"));
        marked.state = state;
        menu.addItem(marked);
        marked.exclusive = true;
        marked.indentation = 3;
        menu.addItem(marked);
    }
    MenuItem empty = row(QStringLiteral("Connections"));
    empty.submenu = std::make_shared<Menu>(QStringLiteral("Connections"));
    menu.addItem(empty);
    menu.addItem(rowWithView());
    menu.addItem(MenuItem::separatorItem());
    menu.addItem(row(QStringLiteral("Quit")));
    return menu;
}

/// What a user sees of one row, however it is drawn.
QString seen(const QString &title, bool enabled, bool radio, int mark, bool submenu)
{
    return QStringLiteral("%1|%2|%3%4|%5")
        .arg(title, enabled ? QStringLiteral("on") : QStringLiteral("off"),
             radio ? QStringLiteral("o") : QStringLiteral("v"), QString::number(mark),
             submenu ? QStringLiteral(">") : QString());
}

/// What a renderer shows of a text in which a doubled `mark` stands for one, and a single one for a
/// shortcut.
QString undoubled(const QString &text, QChar mark)
{
    QString shown;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == mark) {
            EXPECT_EQ(text.mid(i, 2), QString(2, mark)) << qPrintable(text);
            ++i;
        }
        shown += text[i];
    }
    return shown;
}

QStringList seenInPanel(const MenuLayoutNode &node, const QString &indent = {})
{
    QStringList rows;
    for (const MenuLayoutNode &child : node.children) {
        const QVariantMap &told = child.properties;
        if (told.value(QStringLiteral("type")) == QStringLiteral("separator")) {
            rows += indent + QStringLiteral("---");
            continue;
        }
        const QString label = undoubled(told.value(QStringLiteral("label")).toString(), u'_');
        const bool submenu = told.contains(QStringLiteral("children-display"));
        rows += indent + seen(label, told.value(QStringLiteral("enabled"), true).toBool(),
                              told.value(QStringLiteral("toggle-type")) == QStringLiteral("radio"),
                              told.value(QStringLiteral("toggle-state"), 0).toInt() != 0, submenu);
        rows += seenInPanel(child, indent + QStringLiteral("  "));
    }
    return rows;
}

QStringList seenInMenu(const QMenu &menu, const QString &indent = {})
{
    QStringList rows;
    for (const QAction *action : menu.actions()) {
        if (action->isSeparator()) {
            rows += indent + QStringLiteral("---");
            continue;
        }
        const QString text = undoubled(action->text(), u'&');
        const bool radio = action->actionGroup() != nullptr;
        rows += indent + seen(text, action->isEnabled(), radio, action->isChecked(),
                              action->menu() != nullptr);
        if (action->menu()) {
            rows += seenInMenu(*action->menu(), indent + QStringLiteral("  "));
        }
    }
    return rows;
}

class RichDelegate : public MenuDelegate
{
public:
    void menuNeedsUpdate(Menu &menu) override { menu = richTree(); }
    void performAction(const Menu &menu, const MenuItem &item, Qt::KeyboardModifiers held) override
    {
        chosen += QStringLiteral("%1/%2 %3").arg(menu.title(), item.action).arg(item.tag);
        modifiers = held;
    }

    QStringList chosen;
    Qt::KeyboardModifiers modifiers;
};

class TwoRenderersTest : public ::testing::Test
{
protected:
    TwoRenderersTest()
    {
        source.setDelegate(&delegate);
        exporter.registerOn(server.bus(), path);
    }

    MenuLayoutNode layout()
    {
        const QDBusMessage reply =
            panel.call(server.bus().baseService(), path, QStringLiteral("com.canonical.dbusmenu"),
                       QStringLiteral("GetLayout"), {0, -1, QStringList()});
        return qdbus_cast<MenuLayoutNode>(reply.arguments().value(1));
    }

    void click(int id)
    {
        panel.call(server.bus().baseService(), path, QStringLiteral("com.canonical.dbusmenu"),
                   QStringLiteral("Event"),
                   {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
    }

    const QString path = QStringLiteral("/MenuBar");
    RichDelegate delegate;
    MenuSource source;
    MenuExporter exporter{source};
    Client server;
    Client panel;
};

TEST_F(TwoRenderersTest, ShowTheSameTree)
{
    const auto rendered = renderMenu(richTree(), {}, {});
    const QStringList drawn = seenInMenu(*rendered);
    EXPECT_EQ(seenInPanel(layout()).join(u'\n').toStdString(), drawn.join(u'\n').toStdString());
    EXPECT_GT(drawn.size(), 25);
}

TEST_F(TwoRenderersTest, DifferWhereAViewStands)
{
    const MenuViewFactory factory = [](const MenuItem &item, const MenuItemChoice &,
                                       QWidget *parent) -> QWidget * {
        return new QLabel(item.view, parent);
    };
    const auto rendered = renderMenu(richTree(), {}, factory);
    const QAction *view = rendered->actions()[rendered->actions().size() - 3];
    ASSERT_NE(qobject_cast<const QWidgetAction *>(view), nullptr);
    EXPECT_EQ(view->text(), QStringLiteral("Width on menubar"));
    EXPECT_EQ(view->menu(), nullptr);

    const MenuLayoutNode root = layout();
    const MenuLayoutNode &shown = root.children[root.children.size() - 3];
    EXPECT_EQ(shown.properties.value(QStringLiteral("label")), QStringLiteral("Width on menubar"));
    ASSERT_EQ(shown.children.size(), 3);
    EXPECT_EQ(shown.children[1].properties.value(QStringLiteral("toggle-state")), 1);
}

TEST_F(TwoRenderersTest, ActOnTheRowsOfASubstitute)
{
    const MenuLayoutNode root = layout();
    click(root.children[root.children.size() - 3].children[2].id);
    ASSERT_TRUE(waitFor([this] { return !delegate.chosen.isEmpty(); }));
    EXPECT_EQ(delegate.chosen, QStringList{QStringLiteral("Width on menubar/setItemWidth 50")});
}

TEST_F(TwoRenderersTest, HandTheHeldKeysOver)
{
    for (const Qt::KeyboardModifier held : {Qt::ControlModifier, Qt::AltModifier}) {
        exporter.setKeyboard([held] { return held; });
        delegate.chosen.clear();
        click(layout().children[1].id);
        ASSERT_TRUE(waitFor([this] { return !delegate.chosen.isEmpty(); }));
        EXPECT_EQ(delegate.modifiers, held);
    }
}

} // namespace
} // namespace pulsebar
