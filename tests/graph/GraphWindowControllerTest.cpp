#include "graph/GraphWindowController.h"

#include "graph/GraphSettingWindowController.h"
#include "graph/GraphViewWindow.h"
#include "graph/RectText.h"
#include "graph/ScreenChanges.h"
#include "graph/WindowServices.h"
#include "support/QtPrinting.h"
#include "support/Text.h"
#include "support/WaitFor.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class FakeStore : public GraphSettingStore
{
public:
    std::optional<QString> graphSetting(const QString &key) override
    {
        return texts.contains(key) ? std::optional(texts.value(key)) : std::nullopt;
    }
    void setGraphSetting(const QString &key, const QString &text) override
    {
        texts.insert(key, text);
        flushed = false;
    }
    void flush() override { flushed = true; }
    void reportMalformed(const QString &key) override { malformed += key; }

    QHash<QString, QString> texts;
    QStringList malformed;
    bool flushed = false;
};

constexpr QRectF kMain{0, 0, 800, 800};
constexpr QRectF kSecond{800, 0, 800, 800};
constexpr QRectF kDefaultFrame{200, 200, 200, 70};

class GraphWindowControllerTest : public testing::Test
{
protected:
    GraphWindowControllerTest()
    {
        // A pointer that an earlier test left over the window would wake it.
        QCursor::setPos(0, 0);
    }

    GraphWindowParts parts()
    {
        GraphWindowParts all{store};
        all.windowServices = &services;
        all.screenChanges = &screenChanges;
        all.screens = [this] { return space; };
        all.closeGraphViewForKey = [this](const QString &key) { closed += key; };
        return all;
    }

    std::unique_ptr<GraphWindowController> make(const char *key)
    {
        return std::make_unique<GraphWindowController>(s(key), parts());
    }

    std::unique_ptr<GraphWindowController> open(const char *key = "CPUTotalUsage")
    {
        auto controller = make(key);
        controller->window();
        EXPECT_TRUE(
            waitFor([&controller] { return controller->graphViewWindow()->isOrderedIn(); }));
        return controller;
    }

    void storeFor(const char *key, const GraphViewSetting &setting)
    {
        store.texts.insert(s(key), setting.encode());
    }

    QJsonObject stored(const char *key) const
    {
        return QJsonDocument::fromJson(store.texts.value(s(key)).toUtf8()).object();
    }

    static QRectF frameOf(const GraphWindowController &controller)
    {
        return controller.graphViewWindow()->frame();
    }

    static QDialog *shownPanel()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *dialog = qobject_cast<QDialog *>(widget);
            if (dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }

    FakeStore store;
    WindowServices services{{}};
    ScreenChanges screenChanges;
    ScreenSpace space{{kMain}, 0, 800.0};
    QStringList closed;
};

TEST_F(GraphWindowControllerTest, MakesTheWindowOnceAndShowsItShortlyAfter)
{
    const auto controller = make("CPUTotalUsage");
    EXPECT_EQ(controller->graphViewWindow(), nullptr);
    controller->window();
    GraphViewWindow *window = controller->graphViewWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->isOrderedIn());
    EXPECT_TRUE(waitFor([window] { return window->isOrderedIn(); }));
    EXPECT_EQ(window->frame(), kDefaultFrame);
    EXPECT_EQ(controller->currentScreenRect(), kMain);
    EXPECT_FLOAT_EQ(window->alphaValue(), 0.55F);
    EXPECT_EQ(window->windowTitle(), s("CPU Total"));
    controller->window();
    EXPECT_EQ(controller->graphViewWindow(), window);
}

TEST_F(GraphWindowControllerTest, DrawsTrafficOnItsOwnScale)
{
    const auto isNetwork = [this](const char *key) {
        const auto controller = make(key);
        controller->window();
        return dynamic_cast<const NetworkGraphView *>(controller->graphView()) != nullptr;
    };
    EXPECT_TRUE(isNetwork("Network__NetworkInMinuteStats"));
    EXPECT_TRUE(isNetwork("Network__NetworkOutMinuteStats"));
    EXPECT_FALSE(isNetwork("CPUTotalUsage"));
    EXPECT_FALSE(isNetwork("Network__eth0"));
}

TEST_F(GraphWindowControllerTest, StartsWithStoredSettings)
{
    GraphViewSetting setting;
    setting.setWindowRect({30, 40, 300, 90});
    setting.setProperty("lineColor", QColor(1, 2, 3, 4));
    storeFor("GraphWindowSetting_CPU1", setting);
    const auto controller = open("CPUUsage__CPU1");
    EXPECT_EQ(frameOf(*controller), QRectF(30, 40, 300, 90));
    EXPECT_EQ(controller->viewSetting().lineColor(), QColor(1, 2, 3, 4));
    EXPECT_EQ(store.malformed, QStringList());
}

TEST_F(GraphWindowControllerTest, StartsAfreshFromAnEntryOfNoUse)
{
    store.texts.insert(s("GraphWindowSetting_CPU1"), s(R"({"lineColor":"#FFFF)"));
    const auto controller = open("CPUUsage__CPU1");
    EXPECT_EQ(frameOf(*controller), kDefaultFrame);
    EXPECT_EQ(store.malformed, QStringList(s("GraphWindowSetting_CPU1")));
}

TEST_F(GraphWindowControllerTest, IsNeverSmallerThanItCanBeDragged)
{
    store.texts.insert(s("GraphWindowSetting_CPU1"), s(R"({"positionX":50,"positionY":60})"));
    const auto controller = open("CPUUsage__CPU1");
    EXPECT_EQ(frameOf(*controller).size(), QSizeF(120, 42));
}

TEST_F(GraphWindowControllerTest, AProcessStartsWithDefaultsThoughItsSettingsAreStored)
{
    {
        const auto controller = open("CPUUsage__412//top");
        controller->graphViewWindow()->setFrame({10, 20, 150, 60});
        controller->close();
    }
    EXPECT_TRUE(store.flushed);
    EXPECT_EQ(store.texts.keys(), QStringList(s("GraphWindowSetting_top")));
    EXPECT_EQ(stored("GraphWindowSetting_top").value(s("positionX")).toDouble(), 10.0);
    const auto again = open("CPUUsage__412//top");
    EXPECT_EQ(frameOf(*again), kDefaultFrame);
}

TEST_F(GraphWindowControllerTest, ComesBackWhereItWasClosed)
{
    {
        const auto controller = open("Network__NetworkInMinuteStats");
        controller->graphViewWindow()->setFrame({10, 20, 150, 60});
        controller->close();
        EXPECT_FALSE(controller->graphViewWindow()->isOrderedIn());
    }
    const auto again = open("Network__NetworkInMinuteStats");
    EXPECT_EQ(frameOf(*again), QRectF(10, 20, 150, 60));
}

TEST_F(GraphWindowControllerTest, StoringLeavesTheWindowOpen)
{
    const auto controller = open();
    controller->graphViewWindow()->setFrame({10, 20, 150, 60});
    controller->storeSetting();
    EXPECT_TRUE(store.flushed);
    EXPECT_EQ(stored("GraphWindowSetting_CPUTotalUsage").value(s("sizeWidth")).toDouble(), 150.0);
    EXPECT_TRUE(controller->graphViewWindow()->isOrderedIn());
}

TEST_F(GraphWindowControllerTest, AWindowThatWasNotPlacedYetKeepsItsStoredPlace)
{
    GraphViewSetting setting;
    setting.setWindowRect({30, 40, 300, 90});
    storeFor("GraphWindowSetting_CPU1", setting);
    const QString before = store.texts.value(s("GraphWindowSetting_CPU1"));
    const auto controller = make("CPUUsage__CPU1");
    controller->window();
    controller->storeSetting();
    EXPECT_EQ(store.texts.value(s("GraphWindowSetting_CPU1")), before);
    controller->close();
    EXPECT_EQ(store.texts.value(s("GraphWindowSetting_CPU1")), before);
    // Nor is a closed one shown when its time would have come.
    EXPECT_FALSE(waitFor([&] { return controller->graphViewWindow()->isOrderedIn(); }, 30));
}

TEST_F(GraphWindowControllerTest, RemembersWhereItIsMovedForTheScreenAndOverall)
{
    space.screens += kSecond;
    const auto controller = open();
    controller->graphViewWindow()->setFrame({300, 310, 140, 50});
    const GraphViewSetting &setting = controller->viewSetting();
    EXPECT_EQ(setting.windowRect(), QRectF(300, 310, 140, 50));
    EXPECT_EQ(setting.windowRectForScreen(kMain), QRectF(300, 310, 140, 50));
    EXPECT_EQ(setting.screenNumber(), 0);
}

TEST_F(GraphWindowControllerTest, DoesNotRememberAMoveToAnotherScreenBeforeItCloses)
{
    space.screens += kSecond;
    const auto controller = open();
    const GraphViewSetting &setting = controller->viewSetting();
    controller->graphViewWindow()->setFrame({900, 310, 140, 50});
    EXPECT_EQ(setting.windowRect(), kDefaultFrame);
    EXPECT_EQ(setting.screenNumber(), 0);
    controller->close();
    EXPECT_EQ(setting.windowRect(), QRectF(900, 310, 140, 50));
    EXPECT_EQ(setting.windowRectForScreen(kSecond), QRectF(900, 310, 140, 50));
    EXPECT_EQ(setting.screenNumber(), 1);
}

TEST_F(GraphWindowControllerTest, OffEveryScreenItHasNumberMinusOne)
{
    const auto controller = open();
    controller->graphViewWindow()->setFrame({-5000, 310, 140, 50});
    EXPECT_EQ(controller->viewSetting().windowRect(), kDefaultFrame);
    controller->close();
    EXPECT_EQ(controller->viewSetting().screenNumber(), -1);
    EXPECT_EQ(controller->viewSetting().windowRectForScreen(QRectF()), QRectF(-5000, 310, 140, 50));
    EXPECT_EQ(controller->viewSetting().windowRect(), QRectF(-5000, 310, 140, 50));
}

TEST_F(GraphWindowControllerTest, ReturnsToItsScreenWhenThatComesBack)
{
    space.screens += kSecond;
    GraphViewSetting setting;
    setting.setWindowRect({1000, 100, 140, 50});
    setting.setScreenNumber(1);
    storeFor("GraphWindowSetting_CPUTotalUsage", setting);
    const auto controller = open();
    EXPECT_EQ(controller->currentScreenRect(), kSecond);
    controller->graphViewWindow()->setFrame({1010, 110, 140, 50});

    space.screens.removeLast();
    Q_EMIT screenChanges.changed();
    EXPECT_EQ(frameOf(*controller), QRectF(200, 200, 140, 50));
    EXPECT_EQ(controller->currentScreenRect(), kMain);

    space.screens += kSecond;
    Q_EMIT screenChanges.changed();
    EXPECT_EQ(frameOf(*controller), QRectF(1010, 110, 140, 50));
    EXPECT_EQ(controller->currentScreenRect(), kSecond);
}

TEST_F(GraphWindowControllerTest, AChangeOfScreensIsHandledOncePerTurn)
{
    const auto controller = open();
    int changes = 0;
    QObject::connect(&screenChanges, &ScreenChanges::changed, &screenChanges,
                     [&changes] { ++changes; });
    QScreen *screen = QGuiApplication::primaryScreen();
    for (int i = 0; i < 3; ++i) {
        Q_EMIT qGuiApp->primaryScreenChanged(screen);
        Q_EMIT screen->geometryChanged({});
    }
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(waitFor([&changes] { return changes > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(changes, 1);
}

TEST_F(GraphWindowControllerTest, ShowsTheNewestValue)
{
    const auto controller = open("Temperature__CPU Die");
    controller->setUsageCacheArray(UsageCache{40.0, 41.0, 61.46});
    EXPECT_EQ(controller->graphView()->usageCacheArray().size(), 3);
    EXPECT_EQ(controller->graphViewWindow()->content().lastValue, s("61.5℃"));
    controller->setUsageCacheArray(UsageCache{});
    EXPECT_EQ(controller->graphViewWindow()->content().lastValue, s("0.0℃"));
    controller->setUsageCacheArray(std::nullopt);
    EXPECT_EQ(controller->graphViewWindow()->content().lastValue, s("0.0℃"));
    EXPECT_TRUE(controller->graphView()->usageCacheArray().isEmpty());
}

TEST_F(GraphWindowControllerTest, TestsTheThresholdOnlyWhileItIsUsed)
{
    const auto controller = open();
    GraphViewSetting &setting = controller->viewSetting();
    setting.setProperty("threshold", 50.0F);
    controller->setUsageCacheArray(UsageCache{0.1});
    EXPECT_FALSE(controller->graphViewWindow()->underThreshold());
    setting.setProperty("useThreshold", true);
    controller->setUsageCacheArray(UsageCache{0.1});
    EXPECT_TRUE(controller->graphViewWindow()->underThreshold());
    controller->setUsageCacheArray(UsageCache{0.9});
    EXPECT_FALSE(controller->graphViewWindow()->underThreshold());
}

TEST_F(GraphWindowControllerTest, SkipsTheThresholdWhileTheWindowIsResized)
{
    const auto controller = open();
    GraphViewWindow *window = controller->graphViewWindow();
    controller->viewSetting().setProperty("threshold", 50.0F);
    controller->viewSetting().setProperty("useThreshold", true);
    const QPoint corner(window->width() - 4, window->height() - 4);
    QTest::mouseMove(window, corner);
    QTest::mousePress(window, Qt::LeftButton, {}, corner);
    ASSERT_TRUE(window->isResizing());
    controller->setUsageCacheArray(UsageCache{0.1});
    EXPECT_FALSE(window->underThreshold());
    EXPECT_EQ(window->content().lastValue, s("10.0%")) << "everything else goes on";
    QTest::mouseRelease(window, Qt::LeftButton, {}, corner);
    controller->setUsageCacheArray(UsageCache{0.1});
    EXPECT_TRUE(window->underThreshold());
}

TEST_F(GraphWindowControllerTest, FollowsTheFourFields)
{
    const auto controller = open();
    GraphViewWindow *window = controller->graphViewWindow();
    controller->viewSetting().setProperty("alphaWithoutPoint", 0.25F);
    EXPECT_FLOAT_EQ(window->alphaValue(), 0.25F) << "at once";
    controller->viewSetting().setProperty("alphaAtPoint", 0.5F);
    EXPECT_FLOAT_EQ(window->alphaValue(), 0.25F);

    controller->viewSetting().setProperty("threshold", 50.0F);
    controller->viewSetting().setProperty("useThreshold", true);
    controller->setUsageCacheArray(UsageCache{0.1});
    ASSERT_TRUE(window->underThreshold());
    EXPECT_TRUE(waitFor([window] { return window->alphaValue() == 0.0F; }));
    controller->viewSetting().setProperty("useThreshold", false);
    EXPECT_TRUE(waitFor([window] { return window->alphaValue() == 0.25F; }));
    controller->viewSetting().setProperty("useThreshold", true);
    EXPECT_TRUE(waitFor([window] { return window->alphaValue() == 0.0F; }));
}

TEST_F(GraphWindowControllerTest, HiddenItIsFedAndComesBack)
{
    const auto controller = open();
    controller->orderOut();
    EXPECT_FALSE(controller->graphViewWindow()->isOrderedIn());
    controller->setUsageCacheArray(UsageCache{0.5});
    EXPECT_EQ(controller->graphViewWindow()->content().lastValue, s("50.0%"));
    controller->orderFront();
    EXPECT_TRUE(controller->graphViewWindow()->isOrderedIn());
}

TEST_F(GraphWindowControllerTest, HiddenBeforeItWasShownItStaysHidden)
{
    const auto controller = make("CPUTotalUsage");
    controller->window();
    controller->orderOut();
    EXPECT_TRUE(waitFor([&] { return controller->currentScreenRect() == kMain; }));
    EXPECT_FALSE(controller->graphViewWindow()->isOrderedIn());
    controller->orderFront();
    EXPECT_TRUE(controller->graphViewWindow()->isOrderedIn());
    EXPECT_EQ(frameOf(*controller), kDefaultFrame);
}

TEST_F(GraphWindowControllerTest, AsksToBeClosedWhenTheWindowIsDone)
{
    auto controller = open();
    Q_EMIT controller->graphViewWindow()->closeWindow();
    EXPECT_EQ(closed, QStringList()) << "not in the midst of the window's own work";
    EXPECT_TRUE(waitFor([this] { return !closed.isEmpty(); }));
    EXPECT_EQ(closed, QStringList(s("CPUTotalUsage")));
}

TEST_F(GraphWindowControllerTest, ShowsOnePanelForTheLifeOfTheWindow)
{
    auto controller = open("FanMove__FanAverage");
    Q_EMIT controller->graphViewWindow()->showSettingPanel();
    const GraphSettingWindowController *panel = controller->settingController();
    ASSERT_NE(panel, nullptr);
    ASSERT_NE(shownPanel(), nullptr);
    EXPECT_EQ(shownPanel()->windowTitle(), s("Graph Settings: Fan Average"));
    QTest::keyClick(shownPanel(), Qt::Key_Escape);
    EXPECT_FALSE(panel->isOpen());
    controller->showSettingPanel();
    EXPECT_TRUE(panel->isOpen());
    EXPECT_EQ(controller->settingController(), panel);
    controller->settingController()->settingSheetOk();
    EXPECT_FALSE(panel->isOpen());
    controller->showSettingPanel();
    controller->close();
    EXPECT_EQ(shownPanel(), nullptr);
}

TEST_F(GraphWindowControllerTest, GoesWhileAMenuOfItsPanelIsOpen)
{
    auto controller = open("CPU1");
    controller->viewSetting().setProperty("useThreshold", true);
    controller->showSettingPanel();
    const QPointer<QDialog> panel = shownPanel();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(panel));
    const auto *number = panel->findChild<QDoubleSpinBox *>();
    ASSERT_NE(number, nullptr);
    bool hadMenu = false;
    // The menu has an event loop of its own, from within the number field's event handler.
    QTimer::singleShot(0, panel, [&] {
        hadMenu = QApplication::activePopupWidget() != nullptr;
        controller->close();
        controller.reset();
    });
    QTest::mouseClick(panel->windowHandle(), Qt::RightButton, {},
                      number->mapTo(panel, number->rect().center()));
    EXPECT_TRUE(hadMenu);
    EXPECT_TRUE(panel.isNull());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(GraphWindowControllerTest, ThePanelComesBackWhereItWas)
{
    const QString key = s("ViewSettingWindow_CPUUsage__412//top");
    const auto controller = open("CPUUsage__412//top");
    controller->showSettingPanel();
    // The inside of the window, whatever frame is around it.
    shownPanel()->setGeometry(100, 200, 460, 420);
    QTest::keyClick(shownPanel(), Qt::Key_Escape);
    EXPECT_EQ(store.texts.value(key), textFromRect({100, 180, 460, 420}));
    const auto other = open("CPUUsage__412//top");
    other->showSettingPanel();
    EXPECT_EQ(shownPanel()->geometry(), QRect(100, 200, 460, 420));
}

TEST_F(GraphWindowControllerTest, ThePanelIsBroughtBackOntoTheScreen)
{
    store.texts.insert(s("ViewSettingWindow_CPU1"), textFromRect({700, -100, 460, 420}));
    const auto controller = open("CPU1");
    controller->showSettingPanel();
    EXPECT_EQ(shownPanel()->geometry(), QRect(340, 380, 460, 420));
}

TEST_F(GraphWindowControllerTest, AMalformedPlaceOfThePanelIsSaidAndLeftAlone)
{
    store.texts.insert(s("ViewSettingWindow_CPU1"), s("{{1, 2}, {3"));
    const auto controller = open("CPU1");
    controller->showSettingPanel();
    EXPECT_NE(shownPanel(), nullptr);
    EXPECT_EQ(store.malformed, QStringList(s("ViewSettingWindow_CPU1")));
}

TEST_F(GraphWindowControllerTest, AnOpenPanelsPlaceIsStoredWithTheRest)
{
    const auto controller = open("CPU1");
    controller->storeSetting();
    EXPECT_FALSE(store.texts.contains(s("ViewSettingWindow_CPU1")));
    controller->showSettingPanel();
    controller->storeSetting();
    EXPECT_TRUE(store.texts.contains(s("ViewSettingWindow_CPU1")));
    EXPECT_TRUE(store.flushed);
}

TEST_F(GraphWindowControllerTest, ThePanelNamesAProcessLiterally)
{
    const auto controller = open("CPUUsage__412//a[*]b & <b>");
    controller->showSettingPanel();
    // The toolkit's own placeholder is doubled, so that it shows as it is.
    EXPECT_EQ(shownPanel()->windowTitle(), s("Graph Settings: a[*][*]b & <b>"));
}

} // namespace
} // namespace pulsebar
