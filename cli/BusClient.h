#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

#include <optional>

namespace pulsebar::cli {

/// A property as the running program declares it.
struct DeclaredProperty
{
    QString interface;
    QString name;
    QString signature; ///< D-Bus signature of its value
};

/// What came of a call: a value, or the bus's error.
struct Answer
{
    QVariant value; ///< plain lists and maps
    QDBusError error;

    bool failed() const { return error.isValid(); }
};

/// The running program as seen over the session bus. Never starts it.
class BusClient
{
public:
    static constexpr QLatin1String kService{"org.pulsebar.Pulsebar"};
    static constexpr QLatin1String kPath{"/org/pulsebar/Pulsebar"};
    static constexpr QLatin1String kControl{"org.pulsebar.Pulsebar.Control1"};

    BusClient();

    /// Whether the program owns its name on the bus now.
    bool isRunning() const;
    /// Looks `name` up in what the program says of itself; absent when there is none of that name.
    std::optional<DeclaredProperty> findProperty(const QString &name) const;
    Answer get(const QString &interface, const QString &property) const;
    Answer set(const QString &interface, const QString &property, const QVariant &value) const;
    Answer callControl(const QString &method, const QVariantList &arguments = {}) const;

    const QDBusConnection &connection() const { return m_connection; }

private:
    Answer call(const QString &interface, const QString &method,
                const QVariantList &arguments) const;

    QDBusConnection m_connection;
};

/// Finds a property in D-Bus introspection XML.
std::optional<DeclaredProperty> propertyInXml(const QString &xml, const QString &name);

} // namespace pulsebar::cli
