#include "controller/BusValues.h"

#include "util/Values.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QStringList>

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

QVariant plainValue(const QVariant &wire, bool &understood);

QVariantMap plainDictionary(const QVariantMap &wire, bool &understood)
{
    QVariantMap dictionary;
    for (auto it = wire.cbegin(); it != wire.cend(); ++it)
        dictionary.insert(it.key(), plainValue(it.value(), understood));
    return dictionary;
}

QVariantList plainArray(const QVariantList &wire, bool &understood)
{
    QVariantList array;
    for (const QVariant &item : wire)
        array += plainValue(item, understood);
    return array;
}

QVariant plainArgument(const QDBusArgument &argument, bool &understood)
{
    const QString signature = argument.currentSignature();
    if (signature == QLatin1String("a{sv}"))
        return plainDictionary(qdbus_cast<QVariantMap>(argument), understood);
    if (signature == QLatin1String("av"))
        return plainArray(qdbus_cast<QVariantList>(argument), understood);
    understood = false;
    return {};
}

QVariant plainValue(const QVariant &wire, bool &understood)
{
    if (wire.metaType() == QMetaType::fromType<QDBusArgument>())
        return plainArgument(qvariant_cast<QDBusArgument>(wire), understood);
    if (wire.metaType() == QMetaType::fromType<QDBusVariant>())
        return plainValue(qvariant_cast<QDBusVariant>(wire).variant(), understood);
    if (wire.typeId() == QMetaType::QStringList)
        return QVariant(wire.toList());
    const bool isBasic = wire.typeId() < QMetaType::FirstGuiType && fromValue(wire).isValid();
    understood = understood && isBasic;
    return wire;
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
    QList<QVariantMap> wire;
    wire.reserve(array.size());
    for (const QVariant &item : array) {
        if (item.typeId() == QMetaType::QVariantMap)
            wire += fromDictionary(item.toMap());
    }
    return wire;
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
    bool understood = true;
    QVariantList array;
    const auto dictionaries = qdbus_cast<QList<QVariantMap>>(wire);
    for (const QVariantMap &dictionary : dictionaries)
        array += plainDictionary(dictionary, understood);
    return understood ? std::optional<QVariantList>(array) : std::nullopt;
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
