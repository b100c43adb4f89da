#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <optional>
#include <variant>

namespace pulsebar {

/// An error answered over the bus.
struct BusError
{
    QString name; ///< such as "org.freedesktop.DBus.Error.InvalidArgs"
    QString text; ///< for people
};

/// A value in its wire form, or an error.
using BusResult = std::variant<QVariant, BusError>;

struct BusProperty
{
    QString interface;
    QString name;
    std::function<BusResult()> read;
    /// Empty for a property that cannot be written. Answers an error, or nothing when it is done.
    std::function<std::optional<BusError>(const QVariant &value)> write;
};

struct BusMethod
{
    QString interface;
    QString name;
    QString signature; ///< of the arguments
    /// An invalid value is an empty reply.
    std::function<BusResult(const QVariantList &arguments)> call;
};

/// An object on the bus whose properties may answer errors of their own. QtDBus's adaptors know
/// one error for all, so the calls are taken here one by one; values are made when they are asked
/// for and not before.
class BusObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// @param interfaces the `<interface>` elements that describe it
    BusObject(QString path, QString interfaces, QObject *parent = nullptr);

    void addProperty(BusProperty property) { m_properties += std::move(property); }
    void addMethod(BusMethod method) { m_methods += std::move(method); }

    /// Puts the object on the bus. @return whether that worked
    bool registerOn(QDBusConnection &connection);
    void emitSignal(const QString &interface, const QString &name,
                    const QVariantList &arguments = {});
    /// Announces a property's present value.
    void emitPropertyChanged(const QString &interface, const QString &name);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage answer(const QDBusMessage &message) const;
    QDBusMessage answerProperties(const QDBusMessage &message) const;
    QDBusMessage answerGet(const QDBusMessage &message) const;
    QDBusMessage answerGetAll(const QDBusMessage &message) const;
    QDBusMessage answerSet(const QDBusMessage &message) const;
    const BusProperty *findProperty(const QString &interface, const QString &name) const;
    bool knowsInterface(const QString &interface) const;

    QString m_path;
    QString m_interfaces;
    QVector<BusProperty> m_properties;
    QVector<BusMethod> m_methods;
    std::optional<QDBusConnection> m_connection;
};

} // namespace pulsebar
