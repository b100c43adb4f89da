#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace pulsebar {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal of the run loop, so that the program ends as
/// from its menu. At most one of these may live.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    void readPipe();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace pulsebar
