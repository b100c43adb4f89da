#include "controller/Controller.h"

#include "controller/ApplicationUtility.h"
#include "controller/GraphWindows.h"
#include "controller/Settings.h"
#include "controller/TitleTexts.h"
#include "engine/TopMonitor.h"
#include "platform/Processes.h"
#include "util/GraphKeys.h"

#include <QDateTime>

#include <array>
#include <chrono>

namespace pulsebar {

namespace {

struct PanelWord
{
    TitleOnPanel how;
    const char *word;
};

constexpr std::array kPanelWords{
    PanelWord{TitleOnPanel::Automatic, "automatic"},
    PanelWord{TitleOnPanel::Text, "text"},
    PanelWord{TitleOnPanel::Icon, "icon"},
    PanelWord{TitleOnPanel::Strip, "strip"},
};

/// The rotation's list as it is after loading: short lists are filled up with members.
QVector<bool> paddedMembers(QVector<bool> members)
{
    static constexpr qsizetype kLongestPadded = 10;
    // One more than there are title types; older lists have that length too.
    static constexpr qsizetype kLength = 12;
    if (members.size() <= kLongestPadded)
        members.insert(members.size(), kLength - members.size(), true);
    // A rotation inside the rotation, and a title without text, make no sense.
    members[titles::kRotate - 1] = false;
    members[titles::kIconOnly - 1] = false;
    return members;
}

AlertWatch::ProcessRecord processRecordOf(const TopMonitor &monitor)
{
    return [&monitor](const QString &process) {
        const std::optional<QVariantMap> info = monitor.usageInfoDictForKey(process);
        return info ? info->value(QStringLiteral("usageInfo")).toMap() : QVariantMap();
    };
}

AlertWatch::ProcessKey processKeyOf(const TopMonitor &monitor)
{
    return [&monitor](const QString &process) { return monitor.processKeyFor(process); };
}

} // namespace

Controller::Controller(const ControllerParts &parts)
    : m_monitor(parts.monitor)
    , m_statusItem(parts.statusItem)
    , m_settings(parts.settings)
    , m_networkMonitor(parts.networkMonitor)
    , m_graphWindows(parts.graphWindows)
    , m_processes(parts.processes)
    , m_loginItems(parts.loginItems)
    , m_application(parts.application)
    , m_applicationPath(parts.applicationPath)
    , m_terminate(parts.terminate)
    , m_showDetailWindow(parts.showDetailWindow)
    , m_titles(parts.monitor, parts.statusItem, parts.programImage)
    , m_processActions(parts.monitor, parts.processActions)
    , m_alerts(parts.settings)
    , m_alertWatch(m_alerts, m_culprits, processRecordOf(parts.monitor),
                   processKeyOf(parts.monitor))
    , m_alertActions(parts.monitor, m_alerts, parts.editAlert)
    , m_alertTeller(parts.statusItem, alertTellerParts(parts.notifications))
{
    m_titles.setWidthListener(
        [this] { Q_EMIT itemWidthChanged(static_cast<double>(m_titles.itemWidth())); });
}

void Controller::awakeFromNib()
{
    static constexpr double kFirstLength = 60.0;
    if (m_application != nullptr)
        m_application->showManualIfItIsFirstLaunch(m_settings);
    // Alerts come and go; the title needs every collector all the same.
    m_monitor.setAutoEnableMonitor(false);
    for (const char *flag : {"monitorCPU", "monitorNetwork", "monitorBattery",
                             "monitorProcessUsage", "monitorTemperature", "monitorFanMove"})
        m_monitor.setProperty(flag, true);
    connect(&m_monitor, &TopMonitor::topDictChanged, this, &Controller::update);
    m_statusItem.setLength(kFirstLength);
    m_statusItem.setTitleGuide(QStringLiteral("Usage"));
    m_statusItem.setTitle(QStringLiteral("Usage"));
    loadPreference();
    if (m_titles.titleTypesToDisplay().value(0) == titles::kIconOnly)
        m_titles.changeStatusItemToIcon(true);
    m_monitor.startMonitoringTop();
    if (m_networkMax != 0)
        runNettop(true);
}

void Controller::loadPreference()
{
    loadTitleTypes();
    loadMonitorSettings();
    loadToggleTitleOptionArray();
    m_showIcon = m_settings.value(preferences::kShowIcon);
    loadItemWidth();
    m_networkMax = m_settings.value(preferences::kNetworkMax);
    const std::optional<QString> how = m_settings.value(preferences::kTitleOnPanel);
    if (how && !setTitleOnPanel(*how))
        m_settings.reportMalformed(preferences::kTitleOnPanel.key);
    loadGraphWindows();
    startAlerts();
    m_loaded = true;
}

void Controller::startAlerts()
{
    connect(&m_alerts, &Alerts::changed, &m_monitor,
            [this] { m_monitor.setObserveArray(m_alerts.observedEntries()); });
    connect(&m_monitor, &TopMonitor::hardwareEvent, &m_alertWatch, &AlertWatch::hardwareEvent);
    connect(&m_alertWatch, &AlertWatch::alarmTold, &m_alertTeller, &AlertTeller::tell);
    connect(&m_alertWatch, &AlertWatch::alarmEnded, &m_alertTeller, &AlertTeller::end);
    m_alerts.load();
}

void Controller::loadTitleTypes()
{
    const std::optional<int> single = m_settings.value(preferences::kTitleTypeToDisplay);
    if (single) {
        m_titles.setTitleTypesToDisplay({*single});
        m_settings.remove(preferences::kTitleTypeToDisplay);
        m_settings.synchronize();
        return;
    }
    const QVector<int> types =
        m_settings.value(preferences::kTitleTypesToDisplay).value_or(QVector<int>());
    m_titles.setTitleTypesToDisplay(types.isEmpty() ? QVector<int>{titles::kCpuUsage} : types);
}

void Controller::loadMonitorSettings()
{
    m_monitor.setCheckMemory(m_settings.value(preferences::kCheckMemory));
    m_monitor.setSortByMemory(m_settings.value(preferences::kSortByMemory));
    m_monitor.setListMax(m_settings.value(preferences::kListMax));
    setRefreshSec(m_settings.value(preferences::kRefreshSec));
    m_monitor.setFahrenheit(m_settings.value(preferences::kFahrenheit));
}

void Controller::loadToggleTitleOptionArray()
{
    const std::optional<QVector<bool>> stored =
        m_settings.value(preferences::kToggleTitleOptionArray);
    m_titles.setToggleTitleOptionArray(paddedMembers(stored.value_or(QVector<bool>{true})));
}

void Controller::loadItemWidth()
{
    const std::optional<float> stored = m_settings.value(preferences::kItemWidth);
    m_titles.setItemWidth(stored.value_or(static_cast<float>(m_statusItem.length())));
}

void Controller::loadGraphWindows()
{
    if (m_graphWindows == nullptr)
        return;
    const QStringList keys =
        m_settings.value(preferences::kGraphWindowKeys).value_or(QStringList());
    for (const QString &key : keys)
        m_graphWindows->showGraphViewForKey(key);
}

void Controller::saveGraphWindows()
{
    if (m_graphWindows == nullptr)
        return;
    const QStringList keys = m_graphWindows->graphWindowKeys();
    if (keys.isEmpty())
        m_settings.remove(preferences::kGraphWindowKeys);
    else
        m_settings.setValue(preferences::kGraphWindowKeys, keys);
    m_graphWindows->storeSettings();
}

void Controller::save()
{
    // Before the preferences are there, what would be stored are no preferences.
    if (!m_loaded)
        return;
    // Each graph window puts its settings on the disk when it has stored them; once is enough.
    const Settings::Batch batch(m_settings);
    m_settings.setValue(preferences::kTitleTypesToDisplay, m_titles.titleTypesToDisplay());
    m_settings.setValue(preferences::kCheckMemory, m_monitor.checkMemory());
    m_settings.setValue(preferences::kSortByMemory, m_monitor.sortByMemory());
    m_settings.setValue(preferences::kListMax, m_monitor.listMax());
    m_settings.setValue(preferences::kRefreshSec, m_monitor.refreshSec());
    m_settings.setValue(preferences::kFahrenheit, m_monitor.fahrenheit());
    m_settings.setValue(preferences::kToggleTitleOptionArray, m_titles.toggleTitleOptionArray());
    m_settings.setValue(preferences::kShowIcon, m_showIcon);
    m_settings.setValue(preferences::kItemWidth, m_titles.itemWidth());
    m_settings.setValue(preferences::kNetworkMax, m_networkMax);
    m_settings.setValue(preferences::kTitleOnPanel, titleOnPanel());
    saveGraphWindows();
    m_settings.synchronize();
}

void Controller::recordCulprits()
{
    m_culprits.add(m_monitor.topDict(), QDateTime::currentMSecsSinceEpoch(),
                   m_monitor.CPUTotalUsageCount());
}

QString Controller::sampleText(const QString &graphKey, std::size_t back) const
{
    // Who used a single core, nobody knows; and of a process's graph there is nothing to tell.
    if (graphKey != graphkeys::totalCpu())
        return {};
    const std::optional<CulpritSample> sample = m_culprits.ofLoad(back);
    return sample ? culpritText(*sample) : QString();
}

void Controller::watchAlerts()
{
    using namespace std::chrono;
    // Durations go by a clock that nobody sets.
    const auto now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch());
    m_alertWatch.sampleTaken(m_monitor.topDict(), now.count());
}

void Controller::update()
{
    m_listedAt = m_processes != nullptr ? m_processes->now() : 0;
    m_titles.update();
    if (!m_statusItem.hasMenu())
        m_statusItem.setMenuDelegate(this);
    // Graphs that are fed may ask about the newest sample at once.
    recordCulprits();
    if (m_graphWindows != nullptr)
        m_graphWindows->feed();
    watchAlerts();
    Q_EMIT sampleShown();
}

QString Controller::titleOnPanel() const
{
    for (const PanelWord &entry : kPanelWords) {
        if (entry.how == m_titleOnPanel)
            return QString::fromLatin1(entry.word);
    }
    return {};
}

bool Controller::setTitleOnPanel(const QString &word)
{
    for (const PanelWord &entry : kPanelWords) {
        if (word == QLatin1String(entry.word)) {
            m_titleOnPanel = entry.how;
            m_statusItem.setTitleOnPanel(entry.how);
            return true;
        }
    }
    return false;
}

void Controller::openMenu()
{
    // Asked for before the first sample: the menu is due then, but not yet attached.
    if (!m_statusItem.hasMenu())
        m_statusItem.setMenuDelegate(this);
    m_statusItem.openMenu();
}

void Controller::quit()
{
    m_terminate();
}

} // namespace pulsebar
