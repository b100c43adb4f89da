#pragma once

#include "support/Text.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTimer>

#include <stdexcept>

namespace pulsebar::e2e {

/// A recorded machine of two processors whose ticks go on.
class TickingMachine
{
public:
    explicit TickingMachine(const QString &folder)
        : m_stat(folder + s("/proc/stat"))
    {
        // In place and at one length, as the kernel's files look to a reader that keeps them open.
        if (!m_stat.open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !m_stat.resize(0))
            throw std::runtime_error("the recorded machine cannot be written");
        tick();
        QObject::connect(&m_timer, &QTimer::timeout, [this] { tick(); });
        m_timer.start(100);
    }

    /// Ticks of work and of rest that each processor gains per step.
    int work = 0;
    int rest = 10;

private:
    void tick()
    {
        m_user += work;
        m_idle += rest;
        QByteArray text = line("cpu ", 2 * m_user, 2 * m_idle);
        text += line("cpu0", m_user, m_idle);
        text += line("cpu1", m_user, m_idle);
        m_stat.seek(0);
        m_stat.write(text);
    }

    static QByteArray line(const char *name, qint64 user, qint64 idle)
    {
        return QString(s("%1 %2 0 0 %3 0 0 0 0 0 0\n"))
            .arg(s(name))
            .arg(user, 10, 10, QChar(u'0'))
            .arg(idle, 10, 10, QChar(u'0'))
            .toUtf8();
    }

    QFile m_stat;
    QTimer m_timer;
    qint64 m_user = 1000;
    qint64 m_idle = 1000;
};

} // namespace pulsebar::e2e
