// What a graph window costs: CPU and wake-ups per repaint, one per half second so that caches are
// as cold as in use, beside an identical window that is painted with the toolkit's antialiased
// painter; ten windows against one; a fade. On an X server of its own.
//   graph_bench [ROUNDS]    exits 1 when something costs more than it must
#include "graph/GraphPoints.h"
#include "graph/GraphView.h"
#include "graph/GraphViewSetting.h"
#include "graph/GraphViewWindow.h"
#include "graph/WindowServices.h"

#include <QApplication>
#include <QEventLoop>
#include <QPainter>
#include <QTimer>

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsebar;

constexpr int openGraphs = 10;
constexpr int samplesKept = 60;
constexpr std::chrono::milliseconds pause{500};

/// An X server that ends with the program.
class PrivateDisplay
{
public:
    PrivateDisplay()
    {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            std::abort();
        m_server = ::fork();
        if (m_server == 0) {
            const std::string descriptor = std::to_string(ends[1]);
            ::execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0",
                     "1280x1024x24", nullptr);
            std::_Exit(127);
        }
        ::close(ends[1]);
        char number[16] = {};
        if (::read(ends[0], number, sizeof number - 1) <= 0) {
            std::fputs("graph_bench: Xvfb does not start\n", stderr);
            std::exit(2);
        }
        ::close(ends[0]);
        qputenv("DISPLAY", QByteArray(":") + QByteArray(number).trimmed());
        qputenv("QT_QPA_PLATFORM", "xcb");
        qunsetenv("WAYLAND_DISPLAY");
    }
    ~PrivateDisplay()
    {
        ::kill(m_server, SIGTERM);
        ::waitpid(m_server, nullptr, 0);
    }
    PrivateDisplay(const PrivateDisplay &) = delete;
    PrivateDisplay &operator=(const PrivateDisplay &) = delete;

private:
    pid_t m_server = 0;
};

struct Cost
{
    double milliseconds = 0;
    double wakeUps = 0;
};

double cpuMilliseconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Of all threads. One that ends takes its number along, so the pool's threads are kept alive.
long voluntarySwitches()
{
    const std::string key = "voluntary_ctxt_switches:";
    long switches = 0;
    for (const auto &thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "status");
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(key))
                switches += std::atol(line.c_str() + key.size());
        }
    }
    return switches;
}

void runLoop(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// What happens from a change until everything that follows from it is done. The wake-up by which
/// the change comes about is counted as well: it stands for the one by which this ends.
Cost costOf(const std::function<void()> &change, std::chrono::milliseconds time)
{
    const long switches = voluntarySwitches();
    const double before = cpuMilliseconds();
    change();
    runLoop(time);
    const double after = cpuMilliseconds();
    return {after - before, double(voluntarySwitches() - switches)};
}

/// What one more sample brings; made before anything is measured.
struct Sample
{
    explicit Sample(int step)
    {
        for (int i = step; i < step + samplesKept; ++i)
            history.append(std::abs(std::sin(i * 0.7) * std::cos(i * 1.9)));
        text = QString::number(100 * history.last().toDouble(), 'f', 1) + u'%';
    }

    UsageCache history;
    QString text;
};

/// A graph with all that belongs to it.
class Graph
{
public:
    Graph(WindowServices &services, int index)
        : m_window(&services)
    {
        m_view.setViewSetting(&m_setting);
        m_window.initWithContentRect(
            QRectF(20 + 220 * (index % 5), 20 + 90 * (index / 5), 200, 70));
        m_window.setViewSetting(&m_setting);
        m_window.setGraphView(&m_view);
        m_window.setCaption(QStringLiteral("CPU Total"));
        m_window.updateBackgroundAlphaValue();
        m_window.orderFront();
    }

    /// As the newest sample does it.
    void take(const Sample &sample)
    {
        m_view.setUsageCacheArray(sample.history);
        m_window.setLastValue(sample.text);
    }
    GraphViewWindow &window() { return m_window; }

private:
    GraphViewSetting m_setting;
    CPUGraphView m_view;
    GraphViewWindow m_window;
};

/// The same window, painted as one would without thinking about it.
class PainterWindow : public ClearWindow
{
public:
    explicit PainterWindow(WindowServices &services)
        : ClearWindow(&services)
    {
        initWithContentRect(QRectF(20, 300, 200, 70));
        setAlphaValue(0.55F);
        orderFront();
    }

    void take(const Sample &sample)
    {
        m_sample = sample;
        setNeedsDisplay();
    }

protected:
    void paintContent(QPainter &painter, float opacity) override
    {
        painter.setOpacity(double(opacity));
        painter.fillRect(rect(), Qt::black);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::red, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        QPolygonF line;
        for (const QPointF point : cpuGraphPoints(m_sample.history, size()))
            line.append({point.x(), height() - point.y()});
        painter.drawPolyline(line);
        painter.setPen(Qt::white);
        painter.drawText(QRect(8, 2, 184, 20), Qt::AlignLeft, QStringLiteral("CPU Total"));
        painter.drawText(QRect(8, 2, 184, 20), Qt::AlignRight, m_sample.text);
    }

private:
    Sample m_sample{0};
};

/// Counts what was painted, so that nothing is praised for doing nothing.
class PaintCounter : public QObject
{
public:
    int count = 0;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<ClearWindow *>(object))
            ++count;
        return false;
    }
};

class Costs
{
public:
    void add(const Cost &cost)
    {
        m_milliseconds.push_back(cost.milliseconds);
        m_wakeUps.push_back(cost.wakeUps);
    }
    double milliseconds() const { return median(m_milliseconds); }
    double wakeUps() const { return median(m_wakeUps); }
    void print(const char *name) const
    {
        std::printf("%-44s %7.3f ms CPU (mean %.3f), %5.1f wake-ups (mean %.1f)\n", name,
                    milliseconds(), mean(m_milliseconds), wakeUps(), mean(m_wakeUps));
    }

private:
    static double median(std::vector<double> values)
    {
        if (values.empty())
            return std::nan("");
        const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }
    static double mean(const std::vector<double> &values)
    {
        double sum = 0;
        for (const double value : values)
            sum += value;
        return sum / double(values.size());
    }

    std::vector<double> m_milliseconds;
    std::vector<double> m_wakeUps;
};

bool holds(const char *name, double value, double limit)
{
    const bool held = value <= limit;
    std::printf("%-44s %7.2f  must %-5g %s\n", name, value, limit, held ? "held" : "MISSED");
    return held;
}

class Bench
{
public:
    explicit Bench(int rounds)
        : m_rounds(rounds)
    {
        qApp->installEventFilter(&m_paints);
        m_graphs.push_back(std::make_unique<Graph>(m_services, 0));
        runLoop(std::chrono::seconds(1));
    }

    bool run()
    {
        measureOne();
        measureFade();
        openTheOthers();
        measureAll();
        m_idle.print("nothing");
        m_one.print("repaint of a 200 x 70 graph");
        m_painter.print("the same with an antialiased painter");
        m_all.print("repaint of ten");
        m_fade.print("fade of ten steps");
        bool held = holds("CPU per repaint / 0.6 ms", m_one.milliseconds() / 0.6, 1);
        held &= holds("wake-ups per repaint", m_one.wakeUps(), 4);
        held &= holds("repaint / antialiased painter",
                      m_one.milliseconds() / m_painter.milliseconds(), 1);
        held &= holds("ten graphs / one", m_all.milliseconds() / m_one.milliseconds(), 3);
        held &= holds("fade / 10 ms", m_fade.milliseconds() / 10, 1);
        return held;
    }

private:
    void measure(Costs &costs, int paints, const std::function<void()> &change,
                 std::chrono::milliseconds time = pause)
    {
        m_paints.count = 0;
        const Cost cost = costOf(change, time);
        if (m_paints.count != paints) {
            std::fprintf(stderr, "graph_bench: painted %d times instead of %d\n", m_paints.count,
                         paints);
            std::exit(2);
        }
        costs.add(cost);
    }

    /// In turns, so that whatever else the machine does hits all of them.
    void measureOne()
    {
        PainterWindow painterWindow(m_services);
        runLoop(std::chrono::seconds(1));
        for (int round = 0; round < m_rounds; ++round) {
            measure(m_idle, 0, [] {});
            const Sample first(++m_step);
            measure(m_one, 1, [&] { m_graphs.front()->take(first); });
            const Sample second(++m_step);
            measure(m_painter, 1, [&] { painterWindow.take(second); });
        }
    }

    void measureFade()
    {
        for (int round = 0; round < m_rounds; ++round) {
            const float target = round % 2 == 0 ? 1.0F : 0.55F;
            measure(
                m_fade, 10,
                [&] { m_graphs.front()->window().changeAlphaValueTo(target, Fade::usualSteps); },
                2 * pause);
        }
    }

    void openTheOthers()
    {
        for (int index = 1; index < openGraphs; ++index)
            m_graphs.push_back(std::make_unique<Graph>(m_services, index));
        runLoop(std::chrono::seconds(1));
    }

    void measureAll()
    {
        for (int round = 0; round < m_rounds; ++round) {
            std::vector<Sample> samples;
            for (int index = 0; index < openGraphs; ++index)
                samples.emplace_back(++m_step);
            measure(m_all, openGraphs, [&] {
                for (std::size_t index = 0; index < samples.size(); ++index)
                    m_graphs[index]->take(samples[index]);
            });
        }
    }

    int m_rounds;
    int m_step = 0;
    PaintCounter m_paints;
    WindowServices m_services{WindowServices::Parts{}};
    std::vector<std::unique_ptr<Graph>> m_graphs;
    Costs m_idle;
    Costs m_one;
    Costs m_painter;
    Costs m_all;
    Costs m_fade;
};

} // namespace

int main(int argc, char **argv)
{
    const PrivateDisplay display;
    const QApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    return Bench(rounds).run() ? 0 : 1;
}
