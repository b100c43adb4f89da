#include "controller/BusValues.h"

#include "util/Values.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>

#include <limits>

namespace pulsebar::busvalues {

namespace {

QString wireText(QString text)
{
    return text.replace(QChar(u'\0'), QChar(QChar::ReplacementCharacter));
}

QVariantList wireArray(const QVariantList &array)
{
    QVariantList wire;
    wire.reserve(array.size());
    for (const QVariant &item : array) {
        const QVariant value = fromValue(item);
        if (value.isValid())
            wire += value;
    }
    return wire;
}

bool isSmallInteger(int typeId)
{
    return typeId == QMetaType::Short || typeId == QMetaType::SChar || typeId == QMetaType::Char;
}

/// Whether the value has the type in which QtDBus delivers one that came over the bus and that
/// fromValue() would widen or could not convert.
bool isAsDelivered(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return value.metaType() == QMetaType::fromType<QDBusArgument>() ||
               value.metaType() == QMetaType::fromType<QDBusVariant>() ||
               value.metaType() == QMetaType::fromType<QDBusObjectPath>() ||
               value.metaType() == QMetaType::fromType<QDBusSignature>();
    }
}

/// The dictionaries of the array, each converted; other elements are left out.
QList<QVariantMap> eachDictionary(const QVariantList &array,
                                  QVariantMap (*convert)(const QVariantMap &))
{
    QList<QVariantMap> wire;
    wire.reserve(array.size());
    for (const QVariant &item : array) {
        if (item.typeId() == QMetaType::QVariantMap)
            wire += convert(item.toMap());
    }
    return wire;
}

QVariantMap plainMap(const QDBusArgument &wire)
{
    QVariantMap map;
    wire.beginMap();
    while (!wire.atEnd()) {
        wire.beginMapEntry();
        const QString key = wire.asVariant().toString();
        map.insert(key, toPlain(wire.asVariant()));
        wire.endMapEntry();
    }
    wire.endMap();
    return map;
}

QVariantList plainElements(const QDBusArgument &wire)
{
    const bool isArray = wire.currentType() == QDBusArgument::ArrayType;
    QVariantList list;
    isArray ? wire.beginArray() : wire.beginStructure();
    while (!wire.atEnd())
        list += toPlain(wire.asVariant());
    isArray ? wire.endArray() : wire.endStructure();
    return list;
}

QVariant plainArgument(const QDBusArgument &wire)
{
    switch (wire.currentType()) {
    case QDBusArgument::MapType:
        return plainMap(wire);
    case QDBusArgument::ArrayType:
    case QDBusArgument::StructureType:
        return plainElements(wire);
    default:
        return {};
    }
}

bool hasSignature(const QVariant &wire, const char *signature)
{
    return wire.metaType() == QMetaType::fromType<QDBusArgument>() &&
           qvariant_cast<QDBusArgument>(wire).currentSignature() == QLatin1String(signature);
}

} // namespace

QVariant fromValue(const QVariant &value)
{
    const int typeId = value.typeId();
    switch (typeId) {
    case QMetaType::QVariantMap:
        return fromDictionary(value.toMap());
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return wireArray(value.toList());
    case QMetaType::QString:
        return wireText(value.toString());
    case QMetaType::Float:
        return static_cast<double>(value.toFloat());
    case QMetaType::Double:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value;
    case QMetaType::Long:
        return value.toLongLong();
    case QMetaType::ULong:
        return value.toULongLong();
    case QMetaType::UShort:
    case QMetaType::UChar:
        return value.toUInt();
    default:
        return isSmallInteger(typeId) ? QVariant(value.toInt()) : QVariant();
    }
}

QVariantMap fromDictionary(const QVariantMap &dictionary)
{
    QVariantMap wire;
    for (auto it = dictionary.cbegin(); it != dictionary.cend(); ++it) {
        const QVariant value = fromValue(it.value());
        if (value.isValid())
            wire.insert(wireText(it.key()), value);
    }
    return wire;
}

QList<QVariantMap> fromDictionaries(const QVariantList &array)
{
    return eachDictionary(array, fromDictionary);
}

QList<double> fromNumbers(const QVariantList &array)
{
    QList<double> wire;
    wire.reserve(array.size());
    for (const QVariant &item : array)
        wire += item.typeId() == QMetaType::Double ? item.toDouble() : doubleValue(item);
    return wire;
}

std::optional<QList<int>> toIntegers(const QVariant &wire)
{
    if (!hasSignature(wire, "ai"))
        return std::nullopt;
    return qdbus_cast<QList<int>>(wire);
}

std::optional<QVariantList> toDictionaries(const QVariant &wire)
{
    if (!hasSignature(wire, "aa{sv}"))
        return std::nullopt;
    QVariantList array;
    const auto dictionaries = qdbus_cast<QList<QVariantMap>>(wire);
    for (const QVariantMap &dictionary : dictionaries)
        array += dictionary;
    return array;
}

QVariant toPlain(const QVariant &wire)
{
    if (wire.metaType() == QMetaType::fromType<QDBusArgument>())
        return plainArgument(qvariant_cast<QDBusArgument>(wire));
    if (wire.metaType() == QMetaType::fromType<QDBusVariant>())
        return toPlain(qvariant_cast<QDBusVariant>(wire).variant());
    if (wire.typeId() == QMetaType::QVariantList) {
        QVariantList list = wire.toList();
        for (QVariant &item : list)
            item = toPlain(item);
        return list;
    }
    if (!isDictionary(wire))
        return wire;
    QVariantMap map = wire.toMap();
    for (QVariant &value : map)
        value = toPlain(value);
    return map;
}

QVariantMap toSender(const QVariantMap &dictionary)
{
    QVariantMap wire;
    for (auto it = dictionary.cbegin(); it != dictionary.cend(); ++it) {
        const QVariant value = isAsDelivered(it.value()) ? it.value() : fromValue(it.value());
        if (value.isValid())
            wire.insert(wireText(it.key()), value);
    }
    return wire;
}

QList<QVariantMap> toSenders(const QVariantList &array)
{
    return eachDictionary(array, toSender);
}

std::optional<int> toInteger(const QVariant &wire)
{
    static constexpr qlonglong kLeast = std::numeric_limits<int>::min();
    static constexpr qlonglong kMost = std::numeric_limits<int>::max();
    switch (wire.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short: {
        const qlonglong number = wire.toLongLong();
        return number >= kLeast && number <= kMost ? std::optional<int>(static_cast<int>(number))
                                                   : std::nullopt;
    }
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar: {
        const qulonglong number = wire.toULongLong();
        return number <= static_cast<qulonglong>(kMost)
                   ? std::optional<int>(static_cast<int>(number))
                   : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace pulsebar::busvalues
