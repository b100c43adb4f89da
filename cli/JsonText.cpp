#include "JsonText.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QLocale>
#include <QStringList>

#include <cmath>

namespace pulsebar::cli {

namespace {

void appendEscaped(QString &json, QChar c)
{
    switch (c.unicode()) {
    case '"':
    case '\\':
        json += u'\\';
        json += c;
        break;
    case '\n':
        json += QLatin1String("\\n");
        break;
    case '\t':
        json += QLatin1String("\\t");
        break;
    default:
        if (c < u' ' || c == QChar(0x7F))
            json += QLatin1String("\\u") + QString::number(c.unicode(), 16).rightJustified(4, u'0');
        else
            json += c;
    }
}

QString jsonNumber(double number)
{
    if (!std::isfinite(number))
        return QStringLiteral("null");
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString jsonArray(const QVariantList &list)
{
    QStringList items;
    items.reserve(list.size());
    for (const QVariant &item : list)
        items += jsonText(item);
    return u'[' + items.join(u',') + u']';
}

QString jsonObject(const QVariantMap &map)
{
    QStringList members;
    members.reserve(map.size());
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        members += jsonString(it.key()) + u':' + jsonText(it.value());
    return u'{' + members.join(u',') + u'}';
}

QVariant plainMap(const QDBusArgument &argument)
{
    QVariantMap map;
    argument.beginMap();
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        const QVariant key = plainValue(argument.asVariant());
        map.insert(key.toString(), plainValue(argument.asVariant()));
        argument.endMapEntry();
    }
    argument.endMap();
    return map;
}

QVariant plainArray(const QDBusArgument &argument)
{
    QVariantList list;
    argument.beginArray();
    while (!argument.atEnd())
        list += plainValue(argument.asVariant());
    argument.endArray();
    return list;
}

QVariant plainStructure(const QDBusArgument &argument)
{
    QVariantList members;
    argument.beginStructure();
    while (!argument.atEnd())
        members += plainValue(argument.asVariant());
    argument.endStructure();
    return members;
}

QVariant plainArgument(const QDBusArgument &argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
        return plainArray(argument);
    case QDBusArgument::MapType:
        return plainMap(argument);
    case QDBusArgument::StructureType:
        return plainStructure(argument);
    default:
        return plainValue(argument.asVariant());
    }
}

} // namespace

QString jsonString(const QString &text)
{
    QString json(u'"');
    for (const QChar c : text)
        appendEscaped(json, c);
    return json + u'"';
}

QString jsonText(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return jsonObject(value.toMap());
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonArray(value.toList());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double:
    case QMetaType::Float:
        return jsonNumber(value.toDouble());
    case QMetaType::ULongLong:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return QString::number(value.toULongLong());
    case QMetaType::LongLong:
    case QMetaType::Int:
    case QMetaType::Short:
        return QString::number(value.toLongLong());
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return jsonString(value.toString());
    default:
        return QStringLiteral("null");
    }
}

QVariant plainValue(const QVariant &fromBus)
{
    if (fromBus.metaType() == QMetaType::fromType<QDBusArgument>())
        return plainArgument(qvariant_cast<QDBusArgument>(fromBus));
    if (fromBus.metaType() == QMetaType::fromType<QDBusVariant>())
        return plainValue(qvariant_cast<QDBusVariant>(fromBus).variant());
    if (fromBus.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return qvariant_cast<QDBusObjectPath>(fromBus).path();
    if (fromBus.metaType() == QMetaType::fromType<QDBusSignature>())
        return qvariant_cast<QDBusSignature>(fromBus).signature();
    return fromBus;
}

} // namespace pulsebar::cli
