// A program that is nothing but an item in the panel, so that a test can tell a panel's part from
// the rest: shows the title of its first argument and a menu whose first row counts the openings.
// Each line on its standard input is a command: "title TEXT", "guide TEXT", "image NAME",
// "length NUMBER", "how automatic|text|icon|strip", "attention on|off", "menu", "quit". What is
// chosen is printed.
#include "platform/Desktop.h"
#include "statusitem/PanelStatusItem.h"

#include <QApplication>
#include <QSocketNotifier>

#include <array>
#include <cstdio>
#include <string>
#include <unistd.h>

using namespace pulsebar;

namespace {

class CountingMenu : public MenuDelegate
{
public:
    void menuNeedsUpdate(Menu &menu) override
    {
        menu.removeAllItems();
        menu.addItemWithTitle(QStringLiteral("Build %1").arg(++m_builds), ItemTarget::None,
                              QStringLiteral("build"));
        menu.addItemWithTitle(QStringLiteral("snake_case & ampersand"), ItemTarget::None,
                              QStringLiteral("names"));
        menu.addItem(MenuItem::separatorItem());
        auto widths = std::make_shared<Menu>(QStringLiteral("widths"));
        widths
            ->addItemWithTitle(QStringLiteral("Narrow"), ItemTarget::None, QStringLiteral("narrow"))
            .state = ItemState::On;
        widths->addItemWithTitle(QStringLiteral("Wide"), ItemTarget::None, QStringLiteral("wide"));
        MenuItem &row = menu.addItemWithTitle(QStringLiteral("Widths"), ItemTarget::None, {});
        row.submenu = widths;
        menu.addItemWithTitle(QStringLiteral("Quit"), ItemTarget::Application,
                              QStringLiteral("terminate"));
    }

    void performAction(const Menu & /*menu*/, const MenuItem &item,
                       Qt::KeyboardModifiers modifiers) override
    {
        std::printf("chosen %s %x\n", qPrintable(item.title), unsigned(modifiers));
        std::fflush(stdout);
        if (item.action == u"terminate") {
            QCoreApplication::quit();
        }
    }

private:
    int m_builds = 0;
};

TitleOnPanel waysNamed(const QString &name)
{
    static const std::array names{QStringLiteral("automatic"), QStringLiteral("text"),
                                  QStringLiteral("icon"), QStringLiteral("strip")};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            return static_cast<TitleOnPanel>(i);
        }
    }
    return TitleOnPanel::Automatic;
}

void obey(PanelStatusItem &item, const QString &line)
{
    const QString command = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    if (command == u"title") {
        item.setTitle(rest);
    } else if (command == u"guide") {
        item.setTitleGuide(rest);
    } else if (command == u"image") {
        item.setImage(rest);
    } else if (command == u"length") {
        item.setLength(rest.toDouble());
    } else if (command == u"attention") {
        item.setNeedsAttention(rest == u"on");
    } else if (command == u"how") {
        item.setTitleOnPanel(waysNamed(rest));
    } else if (command == u"menu") {
        item.openMenu();
    } else if (command == u"quit") {
        QCoreApplication::quit();
    }
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const Desktop desktop = makeDesktop();
    PanelSurroundings surroundings;
    surroundings.trayDock = desktop.trayDock.get();
    surroundings.windowHints = desktop.windowHints.get();
    surroundings.processNames = desktop.processNames.get();
    PanelStatusItem item(surroundings);
    CountingMenu menu;
    item.setTitle(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("12.3%"));
    item.setMenuDelegate(&menu);

    std::string pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        std::array<char, 512> bytes{};
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            input.setEnabled(false);
            return;
        }
        pending.append(bytes.data(), std::size_t(count));
        for (std::size_t end = pending.find('\n'); end != std::string::npos;
             end = pending.find('\n')) {
            obey(item, QString::fromStdString(pending.substr(0, end)));
            pending.erase(0, end + 1);
        }
    });
    return QApplication::exec();
}
