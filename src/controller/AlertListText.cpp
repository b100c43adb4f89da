#include "controller/AlertListText.h"

#include "controller/BusValues.h"
#include "menu/AlertRule.h"
#include "util/Values.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
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

/// Lists and dictionaries within each other; 0 for what is neither.
int depthOf(const QVariant &value)
{
    const bool isList = value.typeId() == QMetaType::QVariantList;
    if (!isList && !isDictionary(value))
        return 0;
    const QVariantList members = isList ? value.toList() : value.toMap().values();
    int inner = 0;
    for (const QVariant &member : members)
        inner = std::max(inner, depthOf(member));
    return inner + 1;
}

/// Bytes from the bus have no text in JSON, but are kept while the program runs.
qsizetype sizeOfBytes(const QVariantMap &dictionary)
{
    qsizetype size = 0;
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        if (it->typeId() == QMetaType::QByteArray)
            size += it.key().size() + it->toByteArray().size();
    }
    return size;
}

/// Why an entry is left out; empty when it is sound.
QString problemOf(const QVariant &entry)
{
    if (entry.typeId() != QMetaType::QVariantMap)
        return QStringLiteral("it is no dictionary");
    const QVariantMap dictionary = busvalues::toPlain(entry).toMap();
    if (!alertRuleFromEntry(entry.toMap()))
        return QStringLiteral("its type, threshold, duration or names are of no use");
    if (depthOf(dictionary) > kDeepestEntry)
        return QStringLiteral("it has more than %1 levels").arg(kDeepestEntry);
    if (sizeOfBytes(dictionary) > kLongestEntry ||
        QJsonDocument(jsonObject(dictionary)).toJson(QJsonDocument::Compact).size() > kLongestEntry)
        return QStringLiteral("it is longer than %1 bytes").arg(kLongestEntry);
    return {};
}

} // namespace

SoundEntries soundEntries(const QVariantList &entries)
{
    SoundEntries sound;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (sound.entries.size() == kMostAlerts || sound.problems.size() == kMostAlerts) {
            sound.problems +=
                QStringLiteral("Alerts from %1 on are left out: there are too many.").arg(i + 1);
            break;
        }
        const QString problem = problemOf(entries.at(i));
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
    return textOf(jsonArray(busvalues::toPlain(entries).toList()));
}

} // namespace pulsebar::alertlist
