#include "e2e/graph/GraphProgram.h"

#include "support/Text.h"

#include <QDBusArgument>
#include <QDir>
#include <QFile>

#include <stdexcept>

namespace pulsebar::e2e {

namespace {

// One report after the other instead of one per interval, as long as the program is there: one that
// is killed in a test ends no helper of its own.
constexpr const char *kSampler = R"(#!/bin/sh
shift 2
program=$PPID
while kill -0 "$program" 2>/dev/null; do
    [ -e "$HOME/hold" ] || %1/pulsebar-top -l 1 "$@" || exit
    sleep 0.05
done
)";

} // namespace

GraphDesktop::GraphDesktop()
    : machine(desktop.useMachine(s("vm")))
    , display(desktop)
{
    machine.addChip(0, "coretemp");
    machine.setChip(0, s("temp1_label"), "Package id 0");
    setTemperature(45);
    installSampler();
    desktop.writeSettings("[General]\nrefreshSec=1\nNotFirstLaunch=true\n");
    display.point({0, 0});
}

void GraphDesktop::installSampler()
{
    const QDir folder(desktop.folder() + s("/helpers"));
    folder.mkpath(folder.path());
    QFile file(folder.filePath(s("pulsebar-top")));
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("the test's sampler cannot be written");
    file.write(s(kSampler).arg(s(PULSEBAR_HELPERS)).toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile::link(s(PULSEBAR_HELPERS "/pulsebar-nettop"), folder.filePath(s("pulsebar-nettop")));
    desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), folder.path());
}

void GraphDesktop::hold(bool held) const
{
    QFile file(desktop.folder() + s("/hold"));
    if (held ? !file.open(QIODevice::WriteOnly) : !file.remove())
        throw std::runtime_error("the test's sampler cannot be held");
}

void GraphDesktop::setTemperature(int degrees)
{
    machine.setChip(0, s("temp1_input"), QByteArray::number(degrees * 1000));
}

GraphProgram::GraphProgram(GraphDesktop &on)
    : RunningProgram(on.desktop)
    , m_on(on)
{
}

QRect GraphProgram::show(const char *key, const char *title)
{
    control("showGraphViewForKey", {s(key)});
    if (!waitFor([&] { return !m_on.display.frame(s(title)).isNull(); }))
        throw std::runtime_error("no graph is shown: " + process().log().toStdString());
    return m_on.display.frame(s(title));
}

bool GraphProgram::waitForFrame(const char *title, const QRect &frame) const
{
    return waitFor([&] { return m_on.display.frame(s(title)) == frame; });
}

bool GraphProgram::waitUntilGone(const char *title) const
{
    return waitFor([&] { return m_on.display.frame(s(title)).isNull(); });
}

QStringList GraphProgram::openKeys() const
{
    return get(kControl, "graphWindowKeys").value.toStringList();
}

QList<double> GraphProgram::history(const char *key) const
{
    return qdbus_cast<QList<double>>(control("cacheDataForKey", {s(key)}).value);
}

} // namespace pulsebar::e2e
