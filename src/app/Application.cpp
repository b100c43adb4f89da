#include "app/Application.h"

#include "app/CommandLine.h"
#include "app/DataFolders.h"
#include "app/Display.h"
#include "app/Graphs.h"
#include "app/HelperPaths.h"
#include "app/Manuals.h"
#include "app/ProgramPath.h"
#include "app/SessionBus.h"
#include "app/TerminationSignals.h"
#include "controller/ApplicationUtility.h"
#include "controller/Controller.h"
#include "controller/Scripting.h"
#include "controller/Settings.h"
#include "engine/TopMonitor.h"
#include "platform/Desktop.h"
#include "platform/Platform.h"
#include "processes/NettopMonitor.h"
#include "sensors/Battery.h"
#include "sensors/Fans.h"
#include "sensors/SensorLists.h"
#include "sensors/SmcLink.h"
#include "sensors/Temperatures.h"
#include "statusitem/PanelStatusItem.h"
#include "views/AlertPanels.h"
#include "views/DetailWindow.h"
#include "views/MenuViews.h"
#include "views/QuestionBoxes.h"

#include <QApplication>
#include <QIcon>
#include <QLoggingCategory>
#include <QPoint>
#include <QSessionManager>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcApp, "pulsebar.app")

/// quit() would ask every window first, and the strip does not let itself be closed.
void endProgram()
{
    QCoreApplication::exit(EXIT_SUCCESS);
}

/// The collectors of what sensors tell, with what they share.
struct Sensors
{
    explicit Sensors(const Platform &platform)
        : Sensors(platform, readSensorLists(dataFolders(QCoreApplication::applicationDirPath())))
    {
    }

    SmcLink smc;
    Temperatures temperatures;
    Fans fans;
    Battery battery;

private:
    Sensors(const Platform &platform, const SensorLists &lists)
        : smc(*platform.smc)
        , temperatures(smc, lists.temperature, platform.sensorNames.get())
        , fans(smc, lists.fan)
        , battery(*platform.battery)
    {
    }
};

/// Everything that lives as long as the program, in the order in which it is made.
class Program
{
public:
    Program()
        : m_platform(makePlatform())
        , m_desktop(makeDesktop())
        , m_settings(Settings::standardFileName())
        , m_statusItem(surroundings())
        , m_sensors(*m_platform)
        , m_monitor(sources(), samplerCommand(QStringLiteral("pulsebar-top")))
        , m_networkMonitor(samplerCommand(QStringLiteral("pulsebar-nettop")))
        , m_graphs(
              m_desktop, m_settings,
              [this](const QString &key) { return m_monitor.cacheDataForKey(key); },
              [this](const QString &key, std::size_t back) {
                  return m_controller.sampleText(key, back);
              })
        , m_detailWindow([this] { return newestReport(); })
        , m_application(m_desktop.urlOpener.get(),
                        manualPlaces(QCoreApplication::applicationDirPath()))
        , m_controller(parts())
        , m_scripting(m_controller)
    {
        QObject::connect(&m_controller, &Controller::sampleShown, &m_detailWindow,
                         &DetailWindow::refresh);
    }

    Controller &controller() { return m_controller; }
    Scripting &scripting() { return m_scripting; }

private:
    MonitorSources sources()
    {
        MonitorSources sources;
        sources.coreTicks = m_platform->coreTicks.get();
        sources.interfaces = m_platform->interfaceCounters.get();
        sources.disks = m_platform->diskCounters.get();
        sources.icons = m_platform->processIcons.get();
        sources.battery = &m_sensors.battery;
        sources.temperatures = &m_sensors.temperatures;
        sources.fans = &m_sensors.fans;
        sources.workspace = m_platform->workspace.get();
        return sources;
    }

    ControllerParts parts()
    {
        ControllerParts parts{m_monitor, m_statusItem, m_settings, PanelStatusItem::programImage(),
                              endProgram};
        parts.networkMonitor = &m_networkMonitor;
        parts.graphWindows = &m_graphs.windows();
        parts.processes = m_platform->processes.get();
        parts.showDetailWindow = [this] { m_detailWindow.show(); };
        parts.processActions = processActions();
        parts.notifications = m_desktop.notifications.get();
        parts.editAlert = [this](const AlertEdit &edit,
                                 std::function<void(const AlertRule &)> accepted) {
            m_alertPanels.edit(edit, std::move(accepted));
        };
        parts.loginItems = m_platform->loginItems.get();
        parts.application = &m_application;
        parts.applicationPath = [] {
            return lastingProgramPath(QCoreApplication::applicationFilePath(),
                                      QCoreApplication::arguments().value(0), qgetenv("PATH"));
        };
        return parts;
    }

    ProcessActionParts processActions()
    {
        ProcessActionParts parts;
        parts.services = {m_platform->processes.get(), m_platform->processTable.get(),
                          m_platform->workspace.get(), m_desktop.applicationWindows.get()};
        parts.fileViewer = m_desktop.fileViewer.get();
        parts.administratorRights = m_desktop.administratorRights.get();
        parts.ask = [this](const Question &question, std::function<void(bool)> answer) {
            m_questions.ask(question, std::move(answer));
        };
        parts.opener = m_desktop.urlOpener.get();
        return parts;
    }

    QString newestReport() const
    {
        return m_monitor.topDict().value(QStringLiteral("topResult")).toString();
    }

    PanelSurroundings surroundings()
    {
        PanelSurroundings surroundings;
        surroundings.trayDock = m_desktop.trayDock.get();
        surroundings.windowHints = m_desktop.windowHints.get();
        surroundings.processNames = m_desktop.processNames.get();
        surroundings.stripPlace.load = [this] { return storedStripPlace(); };
        surroundings.stripPlace.store = [this](QPoint place) {
            m_settings.setValue(preferences::kStripPlace, QVector<int>{place.x(), place.y()});
        };
        surroundings.menuView = makeMenuView;
        return surroundings;
    }

    std::optional<QPoint> storedStripPlace()
    {
        const std::optional<QVector<int>> place = m_settings.value(preferences::kStripPlace);
        if (!place || place->size() != 2)
            return std::nullopt;
        return QPoint(place->at(0), place->at(1));
    }

    static SamplerCommand samplerCommand(const QString &name)
    {
        return {[name] {
            return helperPath(name, helperFolders(QCoreApplication::applicationDirPath()));
        }};
    }

    std::unique_ptr<Platform> m_platform;
    Desktop m_desktop;
    Settings m_settings;
    PanelStatusItem m_statusItem;
    Sensors m_sensors;
    TopMonitor m_monitor;
    NettopMonitor m_networkMonitor;
    Graphs m_graphs;
    DetailWindow m_detailWindow;
    QuestionBoxes m_questions;
    AlertPanels m_alertPanels;
    ApplicationUtility m_application;
    Controller m_controller;
    Scripting m_scripting;
};

/// A display that dies takes the program with it by way of exit(); the preferences are saved even
/// then.
Controller *controllerToSave = nullptr;

void saveAtExit()
{
    if (controllerToSave != nullptr)
        controllerToSave->save();
}

/// @return the exit status when the program has nothing to do here
std::optional<int> joinSessionBus(QDBusConnection &bus, Scripting &scripting)
{
    // The object comes first: whoever sees the name may call at once.
    const bool registered = scripting.registerOn(bus);
    switch (claimName(bus, Scripting::kService)) {
    case NameClaim::Ours:
        if (!registered)
            qCWarning(lcApp,
                      "Scripts cannot reach this program: its object is taken on the session bus.");
        return std::nullopt;
    case NameClaim::AnotherRuns:
        if (!askRunningProgram(bus))
            std::fputs("pulsebar: it runs already, but does not answer\n", stderr);
        return 0;
    case NameClaim::NoBus:
        qCWarning(lcApp, "There is no session bus; scripts cannot reach this program.");
        return std::nullopt;
    }
    return std::nullopt;
}

/// What task lists show for the program's windows, whether the theme icon is installed or not.
QIcon windowIcon()
{
    QIcon icon;
    for (const int size : {16, 32, 48})
        icon.addFile(QStringLiteral(":/icons/%1.png").arg(size), QSize(size, size));
    return icon;
}

/// The command line as the toolkit is to see it; it keeps what it is given, and changes it.
struct ToolkitArguments
{
    ToolkitArguments(char *program, const QByteArray &platform)
        : option("-platform")
        , value(platform)
        , count(platform.isEmpty() ? 1 : 3)
        , words{program, option.data(), value.data(), nullptr}
    {
        words[static_cast<std::size_t>(count)] = nullptr;
    }

    QByteArray option;
    QByteArray value;
    int count;
    std::array<char *, 4> words;
};

/// At the end of the desktop session the preferences are saved. Whether the program is started with
/// the next one is for the login items to say, not for the session's memory of what ran.
void followSession(QApplication &application, Controller &controller)
{
    const auto takePart = [&controller](QSessionManager &session) {
        session.setRestartHint(QSessionManager::RestartNever);
        controller.save();
    };
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &controller, takePart,
                     Qt::DirectConnection);
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &controller, takePart,
                     Qt::DirectConnection);
}

int runProgram(QApplication &application)
{
    Program program;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (const std::optional<int> status = joinSessionBus(bus, program.scripting()))
        return *status;

    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &application,
                     &endProgram);
    Controller &controller = program.controller();
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &controller, &Controller::save);
    followSession(application, controller);
    controllerToSave = &controller;
    std::atexit(saveAtExit);

    controller.awakeFromNib();
    const int status = QCoreApplication::exec();
    controllerToSave = nullptr;
    return status;
}

} // namespace

int runApplication(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    if (const std::optional<int> status = handleCommandLine(arguments))
        return *status;
    const std::optional<QByteArray> platform = displayPlatform();
    if (!platform)
        return EXIT_FAILURE;

    QCoreApplication::setApplicationName(QStringLiteral("Pulsebar"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PULSEBAR_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.pulsebar.Pulsebar"));
    std::optional<DisplayErrors> displayErrors(std::in_place);
    ToolkitArguments toolkit(argv[0], *platform);
    QApplication application(toolkit.count, toolkit.words.data());
    displayErrors.reset();
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(windowIcon());
    return runProgram(application);
}

} // namespace pulsebar
