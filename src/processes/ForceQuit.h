#pragma once

#include <QString>

#include <map>
#include <memory>

namespace pulsebar {

class AdministratorRights;
class HeldProcess;

/// Ends processes for good: `/bin/kill -9 NUMBER`, with the user's rights or the administrator's.
/// The number is written anew from the held process, and only while that runs.
class ForceQuit
{
public:
    /// @param rights null where the system has no way to ask for them; must live longer
    /// @param kill absolute path of the program that sends the signal
    explicit ForceQuit(AdministratorRights *rights, QString kill = QStringLiteral("/bin/kill"));
    /// Takes the requests back that the administrator has not answered.
    ~ForceQuit();
    ForceQuit(const ForceQuit &) = delete;
    ForceQuit &operator=(const ForceQuit &) = delete;

    /// Sends the signal and waits for that, which is short. A process that has ended is left alone.
    void kill(const HeldProcess &process);

    /// Asks for the administrator's rights to send the signal, and waits for nothing. The request
    /// is taken back when the process ends while the password is asked for: its number may belong
    /// to another by the time it is given. A second request for the same process is none.
    void killAsRoot(const std::shared_ptr<HeldProcess> &process);

private:
    class Request;

    AdministratorRights *m_rights;
    QString m_kill;
    std::map<qint64, std::unique_ptr<Request>> m_requests; ///< by process number
};

} // namespace pulsebar
