#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace pulsebar {

/// A program that waits for the administrator's consent. Destroying it takes the request back; once
/// consent was given, the program runs to its end.
class PrivilegedRun
{
public:
    virtual ~PrivilegedRun() = default;
};

/// Runs single programs with the administrator's rights, after the system has asked the user for a
/// password.
class AdministratorRights
{
public:
    virtual ~AdministratorRights() = default;

    /// Does not wait, neither for the password nor for the program. That it was declined or is
    /// impossible is for the log only.
    /// @param program absolute path
    /// @param ended called later, once, when the program has run or will not be run; not after the
    ///        answer was destroyed. The answer may be destroyed in it.
    virtual std::unique_ptr<PrivilegedRun> run(const QString &program, const QStringList &arguments,
                                               std::function<void()> ended) = 0;
};

} // namespace pulsebar
