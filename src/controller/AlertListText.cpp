#include "controller/AlertListText.h"

#include "menu/AlertRule.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace pulsebar::alertlist {

namespace {

QJsonValue jsonValue(const QVariant &value);

QJsonObject jsonObject(const QVariantMap &dictionary)
{
    QJsonObject object;
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        const QJsonValue value = jsonValue(it.value());
        if (!value.isUndefined())
            object.insert(it.key(), value);
    }
    return object;
}

QJsonArray jsonArray(const QVariantList &list)
{
    QJsonArray array;
    for (const QVariant &item : list) {
        const QJsonValue value = jsonValue(item);
        if (!value.isUndefined())
            array.append(value);
    }
    return array;
}

/// A finite number; JSON has no others.
QJsonValue jsonNumber(double number)
{
    return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
}

/// Undefined for what JSON cannot hold, such as bytes from the bus.
QJsonValue jsonValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return jsonObject(value.toMap());
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonArray(value.toList());
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Float:
    case QMetaType::Double:
        return jsonNumber(value.toDouble());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULongLong: {
        // Beyond 63 bits JSON's numbers are no longer whole.
        const quint64 number = value.toULongLong();
        const auto whole = static_cast<qint64>(number);
        return whole >= 0 ? QJsonValue(whole) : QJsonValue(static_cast<double>(number));
    }
    default:
        return QJsonValue(QJsonValue::Undefined);
    }
}

QString textOf(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

/// Why an entry is left out; empty when it is sound.
QString problemOf(const QVariant &entry)
{
    if (entry.typeId() != QMetaType::QVariantMap)
        return QStringLiteral("it is no dictionary");
    const QVariantMap dictionary = entry.toMap();
    if (!alertRuleFromEntry(dictionary))
        return QStringLiteral("its type, threshold, duration or names are of no use");
    if (QJsonDocument(jsonObject(dictionary)).toJson(QJsonDocument::Compact).size() > kLongestEntry)
        return QStringLiteral("it is longer than %1 bytes").arg(kLongestEntry);
    return {};
}

} // namespace

SoundEntries soundEntries(const QVariantList &entries)
{
    SoundEntries sound;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        QString problem = problemOf(entries.at(i));
        if (problem.isEmpty() && sound.entries.size() == kMostAlerts)
            problem = QStringLiteral("there are %1 before it").arg(kMostAlerts);
        if (problem.isEmpty())
            sound.entries += entries.at(i);
        else
            sound.problems += QStringLiteral("Alert %1 is left out: %2.").arg(i + 1).arg(problem);
    }
    return sound;
}

std::optional<QVariantList> entriesFromText(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray())
        return std::nullopt;
    return document.array().toVariantList();
}

QString textFromEntries(const QVariantList &entries)
{
    return textOf(jsonArray(entries));
}

} // namespace pulsebar::alertlist
