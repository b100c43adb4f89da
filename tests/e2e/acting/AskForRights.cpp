// Asks for the administrator's rights to end a process, and is the agent that the user would answer
// to: so far as the question goes, and not to a password.
//
// usage: ask_for_rights PID dismiss|wait
//
// Writes "asked ACTION: MESSAGE" when the agent is asked, "cancelled" when the question is taken
// back, and "ended" when the rights were not given. Ends on the last two.

#include "platform/AdministratorRights.h"
#include "platform/linux_/LinuxProcesses.h"
#include "platform/linux_/desktop/LinuxDesktop.h"
#include "processes/ForceQuit.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QTimer>

#include <cstdio>
#include <unistd.h>

/// A subject or an identity of polkit: a kind and what tells it apart.
struct Subject
{
    QString kind;
    QVariantMap details;
};
Q_DECLARE_METATYPE(Subject)

static QDBusArgument &operator<<(QDBusArgument &argument, const Subject &subject)
{
    argument.beginStructure();
    argument << subject.kind << subject.details;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, Subject &subject)
{
    argument.beginStructure();
    argument >> subject.kind >> subject.details;
    argument.endStructure();
    return argument;
}

namespace {

void say(const QString &line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

class Agent : public QDBusVirtualObject
{
public:
    explicit Agent(bool dismisses)
        : m_dismisses(dismisses)
    {
    }

    QString introspect(const QString & /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        if (message.member() == QLatin1String("CancelAuthentication")) {
            say(QStringLiteral("cancelled"));
            bus.send(message.createReply());
            QTimer::singleShot(0, this, &QCoreApplication::quit);
            return true;
        }
        if (message.member() != QLatin1String("BeginAuthentication"))
            return false;
        say(QStringLiteral("asked %1: %2")
                .arg(message.arguments().value(0).toString(),
                     message.arguments().value(1).toString()));
        // Otherwise the question stands unanswered.
        if (m_dismisses)
            bus.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.PolicyKit1.Error.Cancelled"),
                QStringLiteral("dismissed")));
        return true;
    }

private:
    bool m_dismisses;
};

/// So that the end of a request is seen; the rights themselves are the real ones.
class WatchedRights : public pulsebar::AdministratorRights
{
public:
    std::unique_ptr<pulsebar::PrivilegedRun>
    run(const QString &program, const QStringList &arguments, std::function<void()> ended) override
    {
        return m_rights->run(program, arguments, [ended = std::move(ended)] {
            say(QStringLiteral("ended"));
            ended();
            QCoreApplication::quit();
        });
    }

private:
    std::unique_ptr<pulsebar::AdministratorRights> m_rights = pulsebar::makeAdministratorRights();
};

bool registerAgent(Agent &agent, quint64 startTime)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    const QString path = QStringLiteral("/agent");
    bus.registerVirtualObject(path, &agent);
    const Subject self{QStringLiteral("unix-process"),
                       {{QStringLiteral("pid"), static_cast<uint>(::getpid())},
                        {QStringLiteral("start-time"), startTime},
                        {QStringLiteral("uid"), static_cast<int>(::getuid())}}};
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"),
                                       QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                       QStringLiteral("org.freedesktop.PolicyKit1.Authority"),
                                       QStringLiteral("RegisterAuthenticationAgent"));
    message.setArguments({QVariant::fromValue(self), QStringLiteral("C"), path});
    const QDBusMessage reply = bus.call(message);
    if (reply.type() == QDBusMessage::ErrorMessage)
        say(reply.errorMessage());
    return reply.type() != QDBusMessage::ErrorMessage;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    qDBusRegisterMetaType<Subject>();
    pulsebar::LinuxProcesses processes{pulsebar::Sysroot()};
    Agent agent(arguments.value(2) == QLatin1String("dismiss"));
    const auto self = processes.hold(QString::number(::getpid()), processes.now());
    const auto victim = processes.hold(arguments.value(1), processes.now());
    if (!self || !victim || !registerAgent(agent, self->startTime()))
        return 1;
    WatchedRights rights;
    pulsebar::ForceQuit forceQuit(&rights);
    forceQuit.killAsRoot(victim);
    return QCoreApplication::exec();
}
