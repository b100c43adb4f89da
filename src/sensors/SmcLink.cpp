#include "sensors/SmcLink.h"

#include "sensors/smc/Smc.h"

#include <QLoggingCategory>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logSensors, "pulsebar.sensors", QtInfoMsg)

void tell(const QString &problem)
{
    // A machine without sensors, as virtual ones are, has nothing wrong with it.
    const std::string nothing = smcOpenMessage({SmcOpening::NoService, kSmcSuccess});
    if (problem.isEmpty())
        qCDebug(logSensors) << "SMC found";
    else if (problem == QString::fromStdString(nothing))
        qCDebug(logSensors).noquote() << problem;
    else
        qCWarning(logSensors).noquote() << problem;
}

} // namespace

SmcLink::Connection::Connection(SmcLink &link)
    : m_link(link)
    , m_opened(link.open())
{
}

SmcLink::Connection::~Connection()
{
    if (m_opened)
        SMCClose(m_link.m_transport);
}

SmcLink::SmcLink(SmcTransport &transport)
    : m_transport(transport)
{
}

bool SmcLink::open()
{
    QString problem;
    const int status = SMCOpen(m_transport, [&](std::string_view line) {
        problem = QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
    });
    if (problem != m_problem) {
        m_problem = problem;
        tell(problem);
    }
    return status == 0;
}

} // namespace pulsebar
