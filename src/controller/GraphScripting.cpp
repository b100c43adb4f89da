#include "controller/GraphScripting.h"

#include "controller/BusValues.h"
#include "controller/GraphWindows.h"

namespace pulsebar {

namespace {

BusResult error(const char *name, const QString &text)
{
    return BusError{QStringLiteral("org.freedesktop.DBus.Error.") + QString::fromLatin1(name),
                    text};
}

BusResult show(GraphWindows *windows, const QString &key)
{
    if (windows == nullptr)
        return error("NotSupported", QStringLiteral("There are no graph windows here"));
    if (!GraphWindows::isKey(key))
        return error("InvalidArgs",
                     QStringLiteral("A key has 1 to %1 characters").arg(GraphWindows::kLongestKey));
    if (!windows->showGraphViewForKey(key))
        return error("LimitsExceeded",
                     QStringLiteral("%1 graph windows are open").arg(GraphWindows::kMostOpen));
    return QVariant();
}

BusResult close(GraphWindows *windows, const QString &key)
{
    if (windows != nullptr)
        windows->closeGraphViewForKey(key);
    return QVariant();
}

/// Keys in their wire form.
QStringList keysForSender(const GraphWindows *windows)
{
    QStringList keys;
    if (windows != nullptr) {
        for (const QString &key : windows->graphWindowKeys())
            keys += busvalues::fromValue(key).toString();
    }
    return keys;
}

} // namespace

BusProperty graphWindowKeysProperty(const QString &interface, GraphWindows *windows)
{
    return {interface,
            QStringLiteral("graphWindowKeys"),
            [windows]() -> BusResult { return QVariant(keysForSender(windows)); },
            {}};
}

QVector<BusMethod> graphWindowMethods(const QString &interface, GraphWindows *windows)
{
    return {{interface, QStringLiteral("showGraphViewForKey"), QStringLiteral("s"),
             [windows](const QVariantList &arguments) {
                 return show(windows, arguments.at(0).toString());
             }},
            {interface, QStringLiteral("closeGraphViewForKey"), QStringLiteral("s"),
             [windows](const QVariantList &arguments) {
                 return close(windows, arguments.at(0).toString());
             }}};
}

} // namespace pulsebar
