#pragma once

#include "controller/AlertActions.h"
#include "controller/AlertTeller.h"
#include "controller/AlertWatch.h"
#include "controller/Alerts.h"
#include "controller/ProcessActions.h"
#include "controller/Titles.h"
#include "engine/CulpritHistory.h"
#include "menu/MainMenu.h"
#include "statusitem/StatusItem.h"

#include <QObject>
#include <QVector>

#include <functional>

namespace pulsebar {

class ApplicationUtility;
class GraphWindows;
class LoginItems;
class NetworkMonitor;
class Processes;
class Settings;
class TopMonitor;

/// What the controller is made of. Everything must outlive it; what is null is not there.
struct ControllerParts
{
    TopMonitor &monitor;
    StatusItem &statusItem;
    Settings &settings;
    QString programImage;                     ///< stands for the program in icon mode
    std::function<void()> terminate;          ///< ends the program; save() is called on the way
    NetworkMonitor *networkMonitor = nullptr; ///< null: no process's traffic is known
    GraphWindows *graphWindows = nullptr;     ///< null: no graph can be shown
    Processes *processes = nullptr;
    LoginItems *loginItems = nullptr;          ///< null: the system keeps no list of them
    ApplicationUtility *application = nullptr; ///< null: there is no manual to show
    /// The path under which login items know this program; asked when it is needed.
    std::function<QString()> applicationPath = [] { return QString(); };
    /// Opens the window with the newest raw report; may be empty.
    std::function<void()> showDetailWindow = {};
    ProcessActionParts processActions = {};
    Notifications *notifications = nullptr; ///< null: the item alone tells of alerts
    EditAlert editAlert = {};               ///< empty: alerts cannot be edited
};

/// Ties the monitor, the status item and the settings together: starts them in order, shows every
/// sample, carries out what the user chooses and stores the preferences at the end.
class Controller : public QObject, public MenuDelegate
{
    Q_OBJECT

public:
    explicit Controller(const ControllerParts &parts);

    /// Start-up; sampling runs when it returns.
    void awakeFromNib();
    /// Stores the preferences. Nothing else does; called whenever the program may be about to end.
    void save();
    /// Shows the newest sample.
    void update();

    TopMonitor &monitor() { return m_monitor; }
    /// Null where no process's traffic is known.
    const NetworkMonitor *networkMonitor() const { return m_networkMonitor; }
    StatusItem &statusItem() { return m_statusItem; }
    /// Null where there are no graph windows.
    GraphWindows *graphWindows() { return m_graphWindows; }
    const Titles &titles() const { return m_titles; }
    Alerts &alerts() { return m_alerts; }
    AlertWatch &alertWatch() { return m_alertWatch; }
    const CulpritHistory &culprits() const { return m_culprits; }
    /// What there is to say of a sample of a graph's series, in one line: for the load of all cores
    /// when it was, how much, and who used most. Process names stand in it as they are.
    /// @param back counted from the series' newest sample, which is 0
    /// @return empty where there is nothing to say
    QString sampleText(const QString &graphKey, std::size_t back) const;

    bool showIcon() const { return m_showIcon; }
    qint64 networkMax() const { return m_networkMax; }
    /// The program is to be started at login, as far as its own settings say.
    bool autoLaunch() const;

    /// "automatic", "text", "icon" or "strip".
    QString titleOnPanel() const;
    /// @return false, and nothing has changed, for any other word
    bool setTitleOnPanel(const QString &word);
    /// Chooses the title types as the menu would; the list must not be empty.
    void chooseTitleTypes(const QVector<int> &types) { m_titles.chooseTitleTypes(types); }

    void openMenu();
    /// Ends the program as the menu's Quit does.
    void quit();

    void menuNeedsUpdate(Menu &menu) override;
    void performAction(const Menu &menu, const MenuItem &item,
                       Qt::KeyboardModifiers modifiers) override;

Q_SIGNALS:
    /// A sample was published, and the status item shows it.
    void sampleShown();
    void itemWidthChanged(double width);

private:
    /// What the user chose: a row, the menu that holds it and the keys held.
    struct Choice
    {
        const Menu &menu;
        const MenuItem &item;
        Qt::KeyboardModifiers modifiers;
    };
    using Action = void (Controller::*)(const Choice &choice);
    static Action actionNamed(const QString &name);

    void loadPreference();
    void loadTitleTypes();
    void loadMonitorSettings();
    void loadToggleTitleOptionArray();
    void loadItemWidth();
    void loadGraphWindows();
    void startAlerts();
    void recordCulprits();
    void watchAlerts();
    void saveGraphWindows();
    void setRefreshSec(int seconds);
    void runNettop(bool on);
    TitleMenuState titleMenuState() const;
    PreferenceMenuState preferenceMenuState() const;
    ProcessMenuState processMenuState() const;
    MainMenuState mainMenuState() const;

    void switchCheckMemory(const Choice &choice);
    void switchSortByMemory(const Choice &choice);
    void changeTitleToDisplayType(const Choice &choice);
    void changeToggleTitleOption(const Choice &choice);
    void changeRefreshTime(const Choice &choice);
    void changeProcessListMax(const Choice &choice);
    void changeNetworkListMax(const Choice &choice);
    void switchShowIcon(const Choice &choice);
    void switchFahrenheit(const Choice &choice);
    void switchAutoLaunch(const Choice &choice);
    void setItemWidth(const Choice &choice);
    void changeTitleOnPanel(const Choice &choice);
    void showManual(const Choice &choice);
    void showGraphView(const Choice &choice);
    void switchGraphWindow(const Choice &choice);
    void dummy(const Choice &choice);
    void showDetailWindow(const Choice &choice);
    void chooseProcess(const Choice &choice);
    void showProcessInFinder(const Choice &choice);
    void quitProcess(const Choice &choice);
    void killProcess(const Choice &choice);
    void killProcessAsRoot(const Choice &choice);
    void terminate(const Choice &choice);

    void switchAlert(const Choice &choice);
    void addAlert(const Choice &choice);
    void editAlert(const Choice &choice);
    void removeAlert(const Choice &choice);

    AlertTellerParts alertTellerParts(Notifications *notifications);
    bool showGraphViewForKey(const QString &key);

    TopMonitor &m_monitor;
    StatusItem &m_statusItem;
    Settings &m_settings;
    NetworkMonitor *m_networkMonitor;
    GraphWindows *m_graphWindows;
    Processes *m_processes;
    quint64 m_listedAt = 0; ///< when the newest sample was published, as Processes::now() tells
    LoginItems *m_loginItems;
    ApplicationUtility *m_application;
    std::function<QString()> m_applicationPath;
    std::function<void()> m_terminate;
    std::function<void()> m_showDetailWindow;
    Titles m_titles;
    ProcessActions m_processActions;
    CulpritHistory m_culprits;
    Alerts m_alerts;
    AlertWatch m_alertWatch;
    AlertActions m_alertActions;
    AlertTeller m_alertTeller;
    TitleOnPanel m_titleOnPanel = TitleOnPanel::Automatic;
    bool m_showIcon = false;
    qint64 m_networkMax = 0;
    bool m_loaded = false;
};

} // namespace pulsebar
