#pragma once

#include <QDBusConnection>
#include <QString>

namespace pulsebar {

/// What claiming the program's name came to.
enum class NameClaim {
    Ours,        ///< this is the program now
    AnotherRuns, ///< the program runs already
    NoBus,       ///< there is no session bus; nothing can be told apart
};

/// Claims a well-known name, without waiting for it where it is taken.
NameClaim claimName(QDBusConnection &bus, const QString &name);

/// Asks the running program to open its menu. @return whether it answered
bool askRunningProgram(const QDBusConnection &bus);

} // namespace pulsebar
