#pragma once

#include <QObject>
#include <QTimer>

class QScreen;

namespace pulsebar {

/// Tells when screens came, went, moved, changed their size or another one became the main one.
/// A change of the setup is many events; it is told once, when the run loop has seen them all.
class ScreenChanges : public QObject
{
    Q_OBJECT

public:
    explicit ScreenChanges(QObject *parent = nullptr);

Q_SIGNALS:
    void changed();

private:
    void watch(QScreen *screen);
    void note();

    QTimer m_nextTurn;
};

} // namespace pulsebar
