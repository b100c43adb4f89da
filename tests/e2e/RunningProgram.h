#pragma once

#include "e2e/Desktop.h"

#include <QObject>
#include <QVariantMap>
#include <QVector>

namespace pulsebar::e2e {

/// The answer to a call: a value, or the name of an error.
struct Reply
{
    QVariant value;
    QString error;
};

/// The program under test, driven over the bus as a script would.
class RunningProgram : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String kScripting{"org.pulsebar.Pulsebar.Scripting1"};
    static constexpr QLatin1String kControl{"org.pulsebar.Pulsebar.Control1"};

    /// Starts it and waits for its name on the bus.
    explicit RunningProgram(Desktop &desktop);

    Process &process() { return *m_process; }
    /// Waits for `count` samples from now on. @return whether they came
    bool waitForSamples(int count = 1);

    Reply get(QLatin1String interface, const char *property) const;
    /// @return the error's name, empty when it was done
    QString set(QLatin1String interface, const char *property, const QVariant &value) const;
    Reply control(const char *method, const QVariantList &arguments = {}) const;
    Reply call(const QString &interface, const QString &method,
               const QVariantList &arguments) const;
    QString title() const { return get(kControl, "title").value.toString(); }
    /// Ends it as the menu does. @return the exit status
    int quit();

    int samples = 0;
    QVector<QVariantMap> events;
    /// What PropertiesChanged told, in order.
    QVector<QVariantMap> changes;

private:
    Q_SLOT void countSample() { ++samples; }
    Q_SLOT void keepEvent(const QVariantMap &entry) { events += entry; }
    Q_SLOT void keepChange(const QString &interface, const QVariantMap &changed,
                           const QStringList &invalidated);

    Desktop &m_desktop;
    std::unique_ptr<Process> m_process;
};

} // namespace pulsebar::e2e
