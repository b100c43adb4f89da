// The least that a program of this kind costs: a tray item and a small window whose drawing changes
// once per second, with the same toolkit. Prints "first paint" when the window was painted.
#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {

class Graph : public QWidget
{
public:
    Graph() { setFixedSize(200, 70); }

    void step()
    {
        ++m_step;
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        for (int x = 0; x < width(); x += 4)
            painter.fillRect(x, 70 - (x * 7 + m_step * 13) % 70, 3, 70, Qt::green);
        if (!m_painted) {
            std::puts("first paint");
            std::fflush(stdout);
        }
        m_painted = true;
    }

private:
    int m_step = 0;
    bool m_painted = false;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::green);
    QSystemTrayIcon tray{QIcon(pixmap)};
    tray.show();
    Graph graph;
    graph.show();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &graph, [&graph] { graph.step(); });
    timer.start(1000);
    return QApplication::exec();
}
