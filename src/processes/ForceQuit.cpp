#include "processes/ForceQuit.h"

#include "platform/AdministratorRights.h"
#include "platform/Processes.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logActions, "pulsebar.actions")

constexpr int patience = 5000; // milliseconds
constexpr auto timeBetweenLooks = std::chrono::milliseconds(250);

QStringList argumentsFor(const HeldProcess &process)
{
    return {QStringLiteral("-9"), QString::number(process.pid())};
}

bool mayBeSignalled(const HeldProcess &process)
{
    if (process.isRunning())
        return true;
    qCWarning(logActions) << "process" << process.pid() << "has ended; nothing is sent";
    return false;
}

} // namespace

/// What waits for the administrator, and for the end of the process meanwhile.
class ForceQuit::Request
{
public:
    Request(std::shared_ptr<HeldProcess> process, const std::function<void()> &processEnded)
        : m_process(std::move(process))
    {
        if (m_process->endDescriptor() >= 0) {
            m_end.emplace(m_process->endDescriptor(), QSocketNotifier::Read);
            QObject::connect(&*m_end, &QSocketNotifier::activated, &*m_end,
                             [this, processEnded] { reportEnd(processEnded); });
            return;
        }
        QObject::connect(&m_looks, &QTimer::timeout, &m_looks, [this, processEnded] {
            if (!m_process->isRunning())
                reportEnd(processEnded);
        });
        m_looks.start(timeBetweenLooks);
    }

    const HeldProcess &process() const { return *m_process; }
    void setRun(std::unique_ptr<PrivilegedRun> run) { m_run = std::move(run); }

private:
    void reportEnd(const std::function<void()> &processEnded)
    {
        m_looks.stop();
        if (m_end)
            m_end->setEnabled(false);
        // Before anything else; the object itself goes when its own signal is over.
        m_run.reset();
        QTimer::singleShot(0, &m_looks, processEnded);
    }

    std::shared_ptr<HeldProcess> m_process;
    std::optional<QSocketNotifier> m_end;
    QTimer m_looks;
    std::unique_ptr<PrivilegedRun> m_run;
};

ForceQuit::ForceQuit(AdministratorRights *rights, QString kill)
    : m_rights(rights)
    , m_kill(std::move(kill))
{
}

ForceQuit::~ForceQuit() = default;

void ForceQuit::kill(const HeldProcess &process)
{
    QProcess program;
    program.setProcessEnvironment({});
    program.setStandardInputFile(QProcess::nullDevice());
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    if (!mayBeSignalled(process))
        return;
    program.start(m_kill, argumentsFor(process), QIODevice::ReadOnly);
    if (!program.waitForFinished(patience))
        qCWarning(logActions).noquote() << m_kill << "did not run:" << program.errorString();
}

void ForceQuit::killAsRoot(const std::shared_ptr<HeldProcess> &process)
{
    const qint64 pid = process->pid();
    const auto waiting = m_requests.find(pid);
    if (waiting != m_requests.end() &&
        waiting->second->process().startTime() == process->startTime())
        return;
    if (!m_rights) {
        qCWarning(logActions) << "there is no way to ask for the administrator's rights";
        return;
    }
    auto request = std::make_unique<Request>(process, [this, pid] {
        // Be it of itself or of our signal: it ends before the program that has sent that.
        qCInfo(logActions) << "process" << pid << "has ended; the administrator is asked no more";
        m_requests.erase(pid);
    });
    if (!mayBeSignalled(*process))
        return;
    request->setRun(
        m_rights->run(m_kill, argumentsFor(*process), [this, pid] { m_requests.erase(pid); }));
    m_requests[pid] = std::move(request);
}

} // namespace pulsebar
