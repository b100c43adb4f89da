// The real program in real panels: its menu opened, read and used with the mouse.
#include "e2e/MenuClient.h"
#include "e2e/RunningProgram.h"
#include "e2e/SensorMachine.h"
#include "e2e/WindowManager.h"
#include "e2e/panel/ShownMenu.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace pulsebar::e2e {
namespace {

constexpr int kLeft = 1;
constexpr int kRight = 3;
/// The panels of these tests and the strip end above this line.
constexpr int kBelowPanel = 32;

/// One way to the menu: a panel, how the title is shown there, and the button that opens it.
struct Way
{
    const char *name;
    const char *panel; ///< empty for a bare window manager
    const char *titleOnPanel;
    int button;
};

std::ostream &operator<<(std::ostream &to, const Way &way)
{
    return to << way.name;
}

const DesktopOptions kWithPanels{
    {1200, 1000},
    {QStringLiteral("ca.desrt.dconf"), QStringLiteral("org.xfce.Xfconf"),
     QStringLiteral("org.mate.panel.applet.NotificationAreaAppletFactory")}};

/// Counts what the program tells panels about its menu.
class MenuSignals : public QObject
{
    Q_OBJECT

public:
    explicit MenuSignals(QDBusConnection &bus)
    {
        for (const char *name : {"LayoutUpdated", "ItemsPropertiesUpdated"})
            bus.connect(QString(), QStringLiteral("/MenuBar"),
                        QStringLiteral("com.canonical.dbusmenu"), QString::fromLatin1(name), this,
                        SLOT(count()));
    }
    int counted = 0;

private:
    Q_SLOT void count() { ++counted; }
};

class PanelMenuTest : public testing::TestWithParam<Way>
{
protected:
    void SetUp() override
    {
        desktop.environment().insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
        desktop.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        // Whose sockets there are is not for the test to say, and the menu has to fit the screen.
        desktop.writeSettings(QByteArray("[General]\nrefreshSec=1\nlistMax=12\nnetworkMax=0\n"
                                         "titleOnPanel=") +
                              GetParam().titleOnPanel + "\n");
        manager = std::make_unique<WindowManager>(desktop);
        startPanel();
        screen.point(aside);
        empty = screen.lookWhenStill();
        prepareMachine();
        program = std::make_unique<RunningProgram>(desktop);
        item = whereTheItemIs();
    }

    /// Called before the program is started.
    virtual void prepareMachine() {}

    void startPanel()
    {
        if (GetParam().panel[0] == '\0')
            return;
        panel =
            start(QStringLiteral(PULSEBAR_START_PANEL), {QString::fromLatin1(GetParam().panel)});
        const bool watches = waitFor([this] {
            return desktop.bus()
                .interface()
                ->isServiceRegistered(QStringLiteral("org.kde.StatusNotifierWatcher"))
                .value();
        });
        ASSERT_TRUE(watches) << panel->log().toStdString();
    }

    std::unique_ptr<Process> start(const QString &program_, const QStringList &arguments)
    {
        return std::make_unique<Process>(program_, arguments, desktop.environment());
    }

    QPoint whereTheItemIs()
    {
        QRect drawn;
        const bool there = waitFor([&] {
            drawn = Screen::difference(empty, screen.look());
            return drawn.width() > 8 && drawn.height() < kBelowPanel && program->samples > 1;
        });
        EXPECT_TRUE(there) << "the item is not drawn";
        return drawn.center();
    }

    ShownMenu openMenu()
    {
        screen.click(item, GetParam().button);
        return {screen, empty, kBelowPanel};
    }

    void keep(const char *what) const
    {
        screen.keep(QString::fromLatin1(GetParam().name) + u'-' + QString::fromLatin1(what));
    }

    /// A program of a name of its own that keeps a processor busy, started by an ordinary user.
    std::unique_ptr<Process> startBusyProcess(const QString &name)
    {
        const QString path = desktop.folder() + u'/' + name;
        QFile::copy(QStringLiteral("/usr/bin/yes"), path);
        QFile::setPermissions(desktop.folder(),
                              QFile::permissions(desktop.folder()) | QFile::ExeOther);
        const QString user =
            ::geteuid() == 0 ? QStringLiteral("setpriv --reuid 65534 --clear-groups ") : QString();
        return start(QStringLiteral("/bin/sh"),
                     {QStringLiteral("-c"),
                      QStringLiteral("exec nice %1\"$0\" >/dev/null").arg(user), path});
    }

    /// Samples that came while the test was looking at the screen do not count.
    bool waitForNewSamples() const
    {
        QCoreApplication::processEvents();
        return program->waitForSamples(2);
    }

    bool isListed(qint64 pid) const
    {
        const QVariant processes = program->get(RunningProgram::kScripting, "processes").value;
        for (const QVariantMap &process : qdbus_cast<QList<QVariantMap>>(processes)) {
            if (process.value(QStringLiteral("PID")).toString() == QString::number(pid))
                return true;
        }
        return false;
    }

    Desktop desktop{kWithPanels};
    Screen screen{desktop};
    std::unique_ptr<WindowManager> manager;
    std::unique_ptr<Process> panel;
    std::unique_ptr<RunningProgram> program;
    const QPoint aside{200, 900};
    QImage empty;
    QPoint item;
};

TEST_P(PanelMenuTest, StandsStillAndComplete)
{
    ShownMenu menu = openMenu();
    menu.row(QStringLiteral("^\\W*Quit"));
    // A panel's tooltip comes and goes with the pointer.
    screen.point(aside);
    const QImage shown = menu.pictureWhenStill();
    keep("menu");
    const MenuSignals told(desktop.bus());
    ASSERT_TRUE(waitForNewSamples());
    EXPECT_TRUE(Screen::difference(shown, menu.picture()).isEmpty()) << "an open menu stays still";
    EXPECT_EQ(told.counted, 0);
    screen.type(QStringLiteral("Escape"));
    // A tooltip of the panel that came up meanwhile goes when the pointer comes and leaves.
    screen.point(item);
    screen.point(aside);
    EXPECT_TRUE(menu.waitUntilClosed());
}

INSTANTIATE_TEST_SUITE_P(, PanelMenuTest,
                         testing::Values(Way{"mate_right_click", "mate", "automatic", kRight},
                                         Way{"mate_left_click", "mate", "automatic", kLeft},
                                         Way{"xfce_item", "xfce", "icon", kLeft},
                                         Way{"xfce_docked_window", "xfce", "automatic", kLeft},
                                         Way{"lxqt_right_click", "lxqt", "automatic", kRight},
                                         Way{"lxqt_left_click", "lxqt", "automatic", kLeft},
                                         Way{"strip", "", "automatic", kLeft}),
                         [](const auto &way) { return std::string(way.param.name); });

/// The menu as three panels draw it, and as the program does.
class PanelMenuUseTest : public PanelMenuTest
{
protected:
    QList<int> titleTypes() const
    {
        return qdbus_cast<QList<int>>(
            program->get(RunningProgram::kControl, "titleTypesToDisplay").value);
    }

    ShownMenu openTitles()
    {
        ShownMenu menu = openMenu();
        menu.openSubmenu(QStringLiteral("^\\W*Preference"));
        menu.openSubmenu(QStringLiteral("^\\W*Top Title"));
        return menu;
    }
};

TEST_P(PanelMenuUseTest, CarriesOutChoicesWithTheKeysHeld)
{
    ShownMenu menu = openTitles();
    menu.choose(QStringLiteral("^.{0,3}\\W*Network In"));
    EXPECT_TRUE(waitFor([this] { return titleTypes() == QList<int>{2}; }));
    EXPECT_TRUE(menu.waitUntilClosed());
    openTitles().choose(QStringLiteral("^.{0,3}\\W*Network Out"), QStringLiteral("ctrl"));
    EXPECT_TRUE(waitFor([this] { return titleTypes() == QList<int>{2, 3}; }));
}

TEST_P(PanelMenuUseTest, ShowsAndEndsAProcessThatWasStartedSince)
{
    ShownMenu first = openMenu();
    first.row(QStringLiteral("^\\W*Quit"));
    screen.type(QStringLiteral("Escape"));
    ASSERT_TRUE(first.waitUntilClosed());
    // Of a name that no test beside this one uses.
    const QString name = QStringLiteral("zebra") + QString::fromLatin1(GetParam().name);
    const std::unique_ptr<Process> busy = startBusyProcess(name);
    const std::unique_ptr<Process> other = startBusyProcess(QStringLiteral("x") + name);
    ASSERT_TRUE(waitFor([&] { return isListed(busy->pid()) && isListed(other->pid()); }));
    ShownMenu second = openMenu();
    // Characters in the middle of a word may be read as others.
    second.openSubmenu(QStringLiteral(": ?z.{3,5}") + QString::fromLatin1(GetParam().name).left(2));
    // Which process it is, its end below tells.
    second.row(QStringLiteral("PID.? ?\\S{2}"));
    keep("process");
    second.choose(QStringLiteral("Force Quit"));
    ShownMenu alert(screen, empty, kBelowPanel);
    alert.row(QStringLiteral("editting data"));
    keep("alert");
    EXPECT_TRUE(busy->isRunning()) << "nothing happens before the answer";
    alert.choose(QStringLiteral("Force Quit"));
    EXPECT_TRUE(waitFor([&busy] { return !busy->isRunning(); }));
    EXPECT_TRUE(other->isRunning());
    EXPECT_TRUE(program->process().isRunning());
}

INSTANTIATE_TEST_SUITE_P(, PanelMenuUseTest,
                         testing::Values(Way{"mate", "mate", "automatic", kRight},
                                         Way{"xfce", "xfce", "icon", kLeft},
                                         Way{"lxqt", "lxqt", "automatic", kRight},
                                         Way{"own", "", "automatic", kLeft}),
                         [](const auto &way) { return std::string(way.param.name); });

/// Temperatures and fans of a machine that is not this one.
class PanelSensorsTest : public PanelMenuTest
{
protected:
    void prepareMachine() override
    {
        SensorMachine machine(desktop.useMachine(QStringLiteral("vm")));
        addSensor(machine, 0, "coretemp", "Package id 0", "61000");
        addSensor(machine, 1, "nvme", "Composite", "38000");
        machine.setChip(2, QStringLiteral("fan1_input"), "12800");
        machine.addChip(2, "nct6775");
        QFile settings(desktop.settingsFile());
        ASSERT_TRUE(settings.open(QIODevice::Append));
        settings.write("titleTypesToDisplay=10, 11\n");
    }

    static void addSensor(SensorMachine &machine, int number, const QByteArray &chip,
                          const QByteArray &label, const QByteArray &reading)
    {
        machine.setChip(number, QStringLiteral("temp1_label"), label);
        machine.setChip(number, QStringLiteral("temp1_input"), reading);
        machine.addChip(number, chip);
    }
};

// The degree signs are read as anything.
TEST_P(PanelSensorsTest, ShowsTemperatures)
{
    EXPECT_EQ(program->title(), QStringLiteral("CPU:61\u2103 | 12800RPM"));
    ShownMenu menu = openMenu();
    menu.openSubmenu(QStringLiteral("CPU Die: ?61.?0"));
    menu.row(QStringLiteral("NVMe Drive: ?38.?0"));
    keep("temperatures");
}

TEST_P(PanelSensorsTest, ShowsFans)
{
    ShownMenu menu = openMenu();
    menu.openSubmenu(QStringLiteral("Fan: ?12800RPM"));
    menu.row(QStringLiteral("Maximum: ?12800.?0RPM"));
    keep("fan");
    menu.choose(QStringLiteral("Actual: ?12800RPM"));
    EXPECT_TRUE(waitFor([this] { return program->title() == QStringLiteral("12800RPM"); }));
}

INSTANTIATE_TEST_SUITE_P(, PanelSensorsTest,
                         testing::Values(Way{"mate", "mate", "automatic", kRight},
                                         Way{"lxqt", "lxqt", "automatic", kRight},
                                         Way{"own", "", "automatic", kLeft}),
                         [](const auto &way) { return std::string(way.param.name); });

/// The program's own menu where no panel runs.
class OwnMenuTest : public PanelMenuTest
{
protected:
    QString callItem(const char *method)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(program->process().pid()),
            QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"),
            QString::fromLatin1(method));
        call.setArguments({0, 0});
        return desktop.bus().call(call).errorName();
    }

    void expectMenuAndLeave()
    {
        ShownMenu menu(screen, empty, kBelowPanel);
        menu.row(QStringLiteral("^\\W*Quit"));
        screen.type(QStringLiteral("Escape"));
        EXPECT_TRUE(menu.waitUntilClosed());
    }
};

TEST_P(OwnMenuTest, OpensHoweverItIsAskedFor)
{
    screen.point({100, 100});
    for (const char *method : {"Activate", "ContextMenu"}) {
        EXPECT_EQ(callItem(method), QString());
        expectMenuAndLeave();
    }
    EXPECT_EQ(program->control("openMenu").error, QString());
    expectMenuAndLeave();
}

TEST_P(OwnMenuTest, SetsTheWidthByTheSlider)
{
    ShownMenu menu = openMenu();
    menu.openSubmenu(QStringLiteral("^\\W*Preference"));
    const QRect label = menu.row(QStringLiteral("Width on menubar")).place;
    keep("slider");
    const double before = program->get(RunningProgram::kControl, "itemWidth").value.toDouble();
    // The groove begins beside the label; somewhere on its further half is a greater width.
    screen.drag({label.right() + 30, label.center().y()},
                {label.right() + 150, label.center().y()});
    EXPECT_TRUE(waitFor([&] {
        return program->get(RunningProgram::kControl, "itemWidth").value.toDouble() > before + 20;
    }));
    screen.type(QStringLiteral("Escape"));
}

TEST_P(OwnMenuTest, ShowsTheRawReportInTheMenuAndInAWindow)
{
    ShownMenu menu = openMenu();
    menu.openSubmenu(QStringLiteral("^\\W*Detailed Information"));
    menu.row(QStringLiteral("Processes: ?[0-9]+"));
    keep("detail");
    screen.type(QStringLiteral("Escape"));
    screen.type(QStringLiteral("Escape"));
    ASSERT_TRUE(menu.waitUntilClosed());

    MenuClient client(desktop, program->process().pid());
    ASSERT_TRUE(client.choose({QStringLiteral("Detailed Information"), QStringLiteral("Detail")}));
    ShownMenu window(screen, empty, kBelowPanel);
    window.row(QStringLiteral("Processes: ?[0-9]+"));
    keep("window");
    const QImage before = window.picture();
    EXPECT_TRUE(waitFor([&] { return !Screen::difference(before, window.picture()).isEmpty(); }))
        << "it follows the samples";
    screen.type(QStringLiteral("Escape"));
    EXPECT_TRUE(window.waitUntilClosed());
    ASSERT_TRUE(waitForNewSamples()) << "the program goes on";
}

INSTANTIATE_TEST_SUITE_P(, OwnMenuTest, testing::Values(Way{"bare", "", "automatic", kLeft}));

} // namespace
} // namespace pulsebar::e2e

#include "panel_menu_test.moc"
