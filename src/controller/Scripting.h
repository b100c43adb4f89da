#pragma once

#include "controller/BusObject.h"

#include <QObject>

#include <optional>

namespace pulsebar {

class Controller;

/// The program on the session bus: the interfaces Scripting1 and Control1 of data/dbus/.
class Scripting : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String kService{"org.pulsebar.Pulsebar"};
    static constexpr QLatin1String kPath{"/org/pulsebar/Pulsebar"};
    static constexpr QLatin1String kScripting{"org.pulsebar.Pulsebar.Scripting1"};
    static constexpr QLatin1String kControl{"org.pulsebar.Pulsebar.Control1"};

    /// The controller must outlive it.
    explicit Scripting(Controller &controller);

    /// Puts the program's object on a bus. Its name is claimed apart from that.
    bool registerOn(QDBusConnection connection) { return m_object.registerOn(connection); }

private:
    void addSettings();
    void addMeasuredValues();
    void addControlProperties();
    void addControlMethods();
    void addGraphWindows();
    void connectSignals();

    Controller &m_controller;
    BusObject m_object;
};

/// The title type that a script means by a number: 1 to 11, or one of the four-character codes
/// "kTy1" to "kTy9", "kT10" and "kT11" as a big-endian number. Absent for any other.
std::optional<int> titleTypeOfScript(int number);

} // namespace pulsebar
