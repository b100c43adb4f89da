#include "graph/ScreenChanges.h"

#include <QGuiApplication>
#include <QScreen>

namespace pulsebar {

ScreenChanges::ScreenChanges(QObject *parent)
    : QObject(parent)
{
    m_nextTurn.setSingleShot(true);
    m_nextTurn.setInterval(0);
    connect(&m_nextTurn, &QTimer::timeout, this, &ScreenChanges::changed);
    for (QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        note();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &ScreenChanges::note);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &ScreenChanges::note);
}

void ScreenChanges::watch(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &ScreenChanges::note);
}

void ScreenChanges::note()
{
    m_nextTurn.start();
}

} // namespace pulsebar
