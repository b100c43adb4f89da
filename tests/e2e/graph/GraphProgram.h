#pragma once

#include "e2e/RunningProgram.h"
#include "e2e/SensorMachine.h"
#include "e2e/graph/XDisplay.h"

#include <QList>

namespace pulsebar::e2e {

/// A desktop on which graphs are shown: a recorded machine whose processor has a temperature and
/// whose samples come quickly, until they are held.
class GraphDesktop
{
public:
    GraphDesktop();

    /// From now on no sample comes, or samples come again.
    void hold(bool held) const;
    void setTemperature(int degrees);

    Desktop desktop;
    SensorMachine machine;
    XDisplay display;

private:
    void installSampler();
};

/// The program, and its graphs as the X server shows them.
class GraphProgram : public RunningProgram
{
    Q_OBJECT

public:
    explicit GraphProgram(GraphDesktop &on);

    /// Opens a graph over the bus and waits for its window. @return the window's frame
    QRect show(const char *key, const char *title);
    bool waitForFrame(const char *title, const QRect &frame) const;
    bool waitUntilGone(const char *title) const;
    QStringList openKeys() const;
    QList<double> history(const char *key) const;

private:
    GraphDesktop &m_on;
};

} // namespace pulsebar::e2e
