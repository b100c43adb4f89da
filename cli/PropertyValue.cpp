#include "PropertyValue.h"

#include <QDBusMetaType>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace pulsebar::cli {

namespace {

std::optional<QVariant> integerValue(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber ? std::optional<QVariant>(number) : std::nullopt;
}

std::optional<QVariant> doubleValue(const QString &text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? std::optional<QVariant>(number) : std::nullopt;
}

std::optional<QVariant> booleanValue(const QString &text)
{
    if (text == QLatin1String("true"))
        return QVariant(true);
    if (text == QLatin1String("false"))
        return QVariant(false);
    return std::nullopt;
}

/// "1,2,3", "[1, 2, 3]" or nothing at all.
std::optional<QVariant> integerListValue(const QString &text)
{
    QString inside = text.trimmed();
    if (inside.startsWith(u'[') && inside.endsWith(u']'))
        inside = inside.mid(1, inside.size() - 2).trimmed();
    QList<int> list;
    if (!inside.isEmpty()) {
        const QStringList words = inside.split(u',');
        for (const QString &word : words) {
            bool isNumber = false;
            list += word.trimmed().toInt(&isNumber);
            if (!isNumber)
                return std::nullopt;
        }
    }
    return QVariant::fromValue(list);
}

/// Whole numbers travel as integers, which is what they were meant as.
QVariant wireValue(const QJsonValue &value)
{
    if (value.isObject()) {
        QVariantMap map;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (!it.value().isNull())
                map.insert(it.key(), wireValue(it.value()));
        }
        return map;
    }
    if (value.isArray()) {
        QVariantList list;
        const QJsonArray array = value.toArray();
        for (const QJsonValue item : array) {
            if (!item.isNull())
                list += wireValue(item);
        }
        return list;
    }
    QVariant plain = value.toVariant();
    if (plain.typeId() != QMetaType::LongLong)
        return plain;
    const qlonglong number = plain.toLongLong();
    const bool isShort = number == static_cast<int>(number);
    return isShort ? QVariant(static_cast<int>(number)) : QVariant(number);
}

std::optional<QVariant> dictionaryListValue(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray())
        return std::nullopt;
    QList<QVariantMap> list;
    const QJsonArray array = document.array();
    for (const QJsonValue entry : array) {
        if (!entry.isObject())
            return std::nullopt;
        list += wireValue(entry).toMap();
    }
    qDBusRegisterMetaType<QList<QVariantMap>>();
    return QVariant::fromValue(list);
}

} // namespace

QVariant propertyValue(const QString &text, const QString &signature)
{
    std::optional<QVariant> value;
    if (signature == QLatin1String("i"))
        value = integerValue(text);
    else if (signature == QLatin1String("d"))
        value = doubleValue(text);
    else if (signature == QLatin1String("b"))
        value = booleanValue(text);
    else if (signature == QLatin1String("ai"))
        value = integerListValue(text);
    else if (signature == QLatin1String("aa{sv}"))
        value = dictionaryListValue(text);
    return value.value_or(text);
}

} // namespace pulsebar::cli
