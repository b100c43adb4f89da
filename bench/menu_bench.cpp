// What a click costs the application: building the menu of a large machine, and handing it to the
// panel over a connection of its own, until the panel holds the complete answer.

#include "menu/MainMenu.h"
#include "platform/Processes.h"
#include "statusitem/MenuExporter.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServer>
#include <QEventLoop>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace {

using namespace pulsebar;

constexpr int processCount = 20;
constexpr int coreCount = 64;
constexpr int diskCount = 8;
constexpr int networkCount = 20;
constexpr int connectionCount = 5;

class Held : public HeldProcess
{
public:
    explicit Held(qint64 pid)
        : m_pid(pid)
    {
    }
    qint64 pid() const override { return m_pid; }
    quint64 startTime() const override { return 1; }
    bool isRunning() const override { return true; }
    bool askToEnd() override { return false; }
    int endDescriptor() const override { return -1; }

private:
    qint64 m_pid;
};

QVariantMap record(double value)
{
    return {{QStringLiteral("CurrentValue"), value}, {QStringLiteral("LastValue"), value},
            {QStringLiteral("MaxValue"), value},     {QStringLiteral("MinValue"), value},
            {QStringLiteral("AverageValue"), value}, {QStringLiteral("PreAverage"), value}};
}

QVariantMap process(int index)
{
    QVariantMap entry{{QStringLiteral("PID"), QString::number(1000 + index)},
                      {QStringLiteral("ProcessName"), QStringLiteral("Web Content %1").arg(index)},
                      {QStringLiteral("CPUUsage"), QStringLiteral("0.125000")},
                      {QStringLiteral("User"), QStringLiteral("somebody")}};
    for (const char *key :
         {"CPUTime", "Thread", "RealMemorySize", "PageIns", "MachMessageSent", "MachMessageRecieve",
          "UNIXSystemCall", "MachSystemCall", "EnergyUsage"})
        entry.insert(QString::fromLatin1(key), QStringLiteral("123456"));
    return entry;
}

QVariantMap core(double load)
{
    return {{QStringLiteral("totalUsage"), load},
            {QStringLiteral("kernel"), load / 2},
            {QStringLiteral("user"), load / 2},
            {QStringLiteral("nice"), 0.0},
            {QStringLiteral("idle"), 1.0 - load},
            {QStringLiteral("CPUUsageMinuteStats"), record(load)}};
}

QVariantMap disk()
{
    QVariantMap entry;
    for (const char *key :
         {"IODiskReadBytesPerSec", "IODiskWrittenBytesPerSec", "IODiskReadBytes",
          "IODiskWrittenBytes", "IODiskReadNumber", "IODiskWrittenNumber", "IODiskReadError",
          "IODiskWrittenError", "IODiskReadRetries", "IODiskWrittenRetries", "IODiskReadTime",
          "IODiskWrittenTime", "IODiskReadLatent", "IODiskWrittenLatent"})
        entry.insert(QString::fromLatin1(key), qint64(123456789));
    return entry;
}

QVariantMap traffic(const QString &name)
{
    const QVariantMap connection{
        {QStringLiteral("type"), QStringLiteral("tcp4")},
        {QStringLiteral("address"), QStringLiteral("10.0.1.2:50123<->192.0.2.7:443")},
        {QStringLiteral("state"), QStringLiteral("Established")},
        {QStringLiteral("bytes_in"), qint64(123456)},
        {QStringLiteral("bytes_out"), qint64(654)}};
    QVariantList connections;
    for (int i = 0; i < connectionCount; ++i)
        connections.append(connection);
    return {{QStringLiteral("name"), name},
            {QStringLiteral("bytes_in"), qint64(1) << 30},
            {QStringLiteral("bytes_out"), qint64(1) << 20},
            {QStringLiteral("bytes_in_delta"), 2048.0},
            {QStringLiteral("bytes_out_delta"), 100.0},
            {QStringLiteral("subprocess"), connections}};
}

/// @param moment makes each sample another one
QVariantMap sample(int moment)
{
    const double load = double(moment % 997) / 1000.0;
    QVariantList processes;
    QVariantMap energy;
    for (int i = 0; i < processCount; ++i) {
        processes.append(process(i));
        energy.insert(QStringLiteral("Web Content %1").arg(i), QString::number(i * 0.7));
    }
    QVariantList cores;
    for (int i = 0; i < coreCount; ++i)
        cores.append(core(load));
    QVariantList disks;
    for (int i = 0; i < diskCount; ++i)
        disks.append(disk());
    return {{QStringLiteral("ProcessList"), processes},
            {QStringLiteral("EnergyUsageDict"), energy},
            {QStringLiteral("EnergyConsumption"), 50.0F},
            {QStringLiteral("EnergyConsumptionMinuteStats"), record(50.0)},
            {QStringLiteral("CPUUsage"), cores},
            {QStringLiteral("CPUUsageCoreAverage"), load},
            {QStringLiteral("CPUUsageMinuteStats"), record(load)},
            {QStringLiteral("DiskStatistics"), disks},
            {QStringLiteral("NetworkInMinuteStats"), record(1e6)},
            {QStringLiteral("NetworkOutMinuteStats"), record(1e5)},
            {QStringLiteral("MemoryStats"),
             QVariantMap{{QStringLiteral("wired"), QStringLiteral("1536M")},
                         {QStringLiteral("active"), QStringLiteral("3000M")},
                         {QStringLiteral("inactive"), QStringLiteral("2000M")},
                         {QStringLiteral("used"), QStringLiteral("6536M")},
                         {QStringLiteral("free"), QStringLiteral("1656M")}}},
            {QStringLiteral("BatteryStats"),
             QVariantMap{{QStringLiteral("BatteryEnabled"), true},
                         {QStringLiteral("BatteryRemainPercent"), 50.0F},
                         {QStringLiteral("BatteryVoltage"), 12000}}},
            {QStringLiteral("topResult"), QString(4000, u'x')}};
}

MainMenuState stateAt(int moment)
{
    MainMenuState state;
    state.topDict = sample(moment);
    state.processes.showIcon = true;
    state.processes.monitorProcessUsage = true;
    state.processes.iconForPID = [](const QString & /*pid*/) { return QStringLiteral("firefox"); };
    state.processes.pathForPID = [](const QString & /*pid*/) { return QStringLiteral("/bin/x"); };
    state.processes.usageInfoDictForKey = [](const QString & /*key*/) {
        return QVariantMap{{QStringLiteral("usageInfo"), record(0.5)}};
    };
    state.processes.hold = [](const QString &pid) {
        return std::make_shared<Held>(pid.toLongLong());
    };
    QVariantMap network;
    for (int i = 0; i < networkCount; ++i) {
        const QString name = QStringLiteral("Web Content.%1").arg(1000 + i);
        network.insert(name, traffic(name));
    }
    state.networkProcesses = network;
    state.preferences.networkMax = 5;
    state.preferences.titles.titleTypesToDisplay = {1};
    return state;
}

qsizetype rowCount(const Menu &menu)
{
    qsizetype count = menu.items().size();
    for (const MenuItem &item : menu.items())
        count += item.submenu ? rowCount(*item.submenu) : 0;
    return count;
}

/// Answers with the menu of a sample that was taken before anybody asked.
class LargeMachine : public MenuDelegate
{
public:
    void takeSample() { m_state = stateAt(++m_moment); }
    void menuNeedsUpdate(Menu &menu) override
    {
        menu.removeAllItems();
        addMainMenu(menu, m_state);
    }
    void performAction(const Menu & /*menu*/, const MenuItem & /*item*/,
                       Qt::KeyboardModifiers /*modifiers*/) override
    {
    }

private:
    MainMenuState m_state;
    int m_moment = 0;
};

/// The panel's end of a connection without a bus in between.
class Panel
{
public:
    explicit Panel(MenuExporter &exporter)
        : m_server(QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("socket")))
    {
        bool connected = false;
        QObject::connect(&m_server, &QDBusServer::newConnection, &exporter,
                         [&](const QDBusConnection &connection) {
                             connected =
                                 exporter.registerOn(connection, QStringLiteral("/MenuBar"));
                         });
        m_bus = QDBusConnection::connectToPeer(m_server.address(), QStringLiteral("panel"));
        while (!connected)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QDBusMessage call(const QString &method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            {}, QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), method);
        message.setArguments(arguments);
        QDBusPendingCallWatcher pending(m_bus->asyncCall(message));
        QEventLoop loop;
        QObject::connect(&pending, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (!pending.isFinished())
            loop.exec();
        const QDBusMessage answer = pending.reply();
        if (answer.type() != QDBusMessage::ReplyMessage) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(method), qPrintable(answer.errorMessage()));
            std::exit(EXIT_FAILURE);
        }
        return answer;
    }

private:
    QTemporaryDir m_folder;
    QDBusServer m_server;
    std::optional<QDBusConnection> m_bus;
};

void buildMenu(benchmark::State &state)
{
    LargeMachine machine;
    machine.takeSample();
    Menu menu;
    for (auto _ : state) {
        machine.menuNeedsUpdate(menu);
        benchmark::DoNotOptimize(menu);
    }
    state.counters["rows"] = double(rowCount(menu));
}
BENCHMARK(buildMenu)->Unit(benchmark::kMillisecond);

/// Both ends are in this process and all of its threads count, so the panel's part is in it too.
void clickToAnswer(benchmark::State &state)
{
    LargeMachine machine;
    MenuSource source;
    source.setDelegate(&machine);
    MenuExporter exporter(source);
    exporter.setIconProperties([](const QString &image) {
        return QVariantMap{{QStringLiteral("icon-name"), image}};
    });
    machine.takeSample();
    Panel panel(exporter);
    for (auto _ : state) {
        state.PauseTiming();
        machine.takeSample();
        state.ResumeTiming();
        panel.call(QStringLiteral("AboutToShow"), {0});
        benchmark::DoNotOptimize(
            panel.call(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments());
    }
}
BENCHMARK(clickToAnswer)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->Iterations(300);

/// Remembers what each benchmark took, to set it against the limit at the end.
class Ratios : public benchmark::ConsoleReporter
{
public:
    Ratios()
        : ConsoleReporter(OO_Tabular)
    {
    }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            m_milliseconds[run.run_name.function_name] =
                run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e3;
        ConsoleReporter::ReportRuns(runs);
    }
    void print() const
    {
        std::printf("from the click to the complete answer / 10 ms: %.2f\n",
                    of("clickToAnswer") / 10.0);
    }

private:
    double of(const std::string &name) const
    {
        const auto found = m_milliseconds.find(name);
        return found == m_milliseconds.end() ? std::nan("") : found->second;
    }
    std::map<std::string, double> m_milliseconds;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    Ratios ratios;
    benchmark::RunSpecifiedBenchmarks(&ratios);
    ratios.print();
    benchmark::Shutdown();
    return 0;
}
