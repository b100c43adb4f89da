#pragma once

#include "e2e/SensorMachine.h"
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

/// A process of a recorded machine that keeps one processor busy.
class TickingProcess
{
public:
    TickingProcess(SensorMachine &machine, int number, const QByteArray &name)
        : m_beginning(QByteArray::number(number) + " (" + name + ") R 1 1 1 0 -1 0 0 0 0 0 ")
    {
        const QString file = s("proc/%1/stat").arg(number);
        machine.write(file, "");
        m_stat.setFileName(machine.path(file));
        if (!m_stat.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
            throw std::runtime_error("the recorded machine cannot be written");
        work();
        QObject::connect(&m_timer, &QTimer::timeout, [this] { work(); });
        m_timer.start(100);
    }

private:
    void work()
    {
        m_ticks += 10;
        // In place and at one length, as the kernel's files look to a reader.
        m_stat.seek(0);
        m_stat.write(m_beginning + QByteArray::number(m_ticks).rightJustified(10, '0') +
                     " 0 0 0 20 0 1 0 100" + QByteArray(" 0").repeated(30) + "\n");
    }

    QByteArray m_beginning;
    QFile m_stat;
    QTimer m_timer;
    qint64 m_ticks = 0;
};

} // namespace pulsebar::e2e
