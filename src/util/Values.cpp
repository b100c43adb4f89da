#include "util/Values.h"

#include "util/DecimalText.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace pulsebar {

namespace {

template <typename Integer> Integer integerFromReal(double value)
{
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value))
        return 0;
    // The upper limit of 64 bits is not a double; the next one below it is.
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<Integer>(value);
}

template <typename Integer> Integer clampedTo(qint64 value)
{
    using Limits = std::numeric_limits<Integer>;
    return static_cast<Integer>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

bool isUnsigned(int type)
{
    return type == QMetaType::UInt || type == QMetaType::ULongLong || type == QMetaType::UShort ||
           type == QMetaType::UChar || type == QMetaType::ULong;
}

bool isReal(int type)
{
    return type == QMetaType::Double || type == QMetaType::Float;
}

bool isSigned(int type)
{
    return type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::Bool ||
           type == QMetaType::Short || type == QMetaType::SChar || type == QMetaType::Char ||
           type == QMetaType::Long;
}

template <typename Integer> Integer integerFrom(const QVariant &value)
{
    const int type = value.typeId();
    if (type == QMetaType::QString)
        return clampedTo<Integer>(longFromText(value.toString()));
    if (isReal(type))
        return integerFromReal<Integer>(value.toDouble());
    if (isUnsigned(type))
        return clampedTo<Integer>(static_cast<qint64>(
            std::min<quint64>(value.toULongLong(), std::numeric_limits<qint64>::max())));
    return isSigned(type) ? clampedTo<Integer>(value.toLongLong()) : Integer(0);
}

template <typename Real> Real realFromText(const QString &text)
{
    if constexpr (std::is_same_v<Real, float>)
        return floatFromText(text);
    else
        return doubleFromText(text);
}

template <typename Real> Real realFrom(const QVariant &value)
{
    const int type = value.typeId();
    if (type == QMetaType::Float)
        return static_cast<Real>(*static_cast<const float *>(value.constData()));
    if (type == QMetaType::Double)
        return static_cast<Real>(*static_cast<const double *>(value.constData()));
    if (type == QMetaType::QString)
        return realFromText<Real>(value.toString());
    if (isUnsigned(type))
        return static_cast<Real>(value.toULongLong());
    return isSigned(type) ? static_cast<Real>(value.toLongLong()) : Real(0);
}

QVariant propertyOf(const QObject &holder, QStringView key)
{
    return holder.property(key.toUtf8().constData());
}

QVariant walk(QVariant value, QStringView path)
{
    while (!path.isNull() && value.isValid()) {
        if (!isDictionary(value))
            return {};
        const qsizetype dot = path.indexOf(QLatin1Char('.'));
        const QStringView component = dot < 0 ? path : path.left(dot);
        value = static_cast<const QVariantMap *>(value.constData())->value(component.toString());
        path = dot < 0 ? QStringView() : path.mid(dot + 1);
    }
    return value;
}

} // namespace

int intValue(const QVariant &value)
{
    return integerFrom<int>(value);
}

qint64 longValue(const QVariant &value)
{
    return integerFrom<qint64>(value);
}

float floatValue(const QVariant &value)
{
    return realFrom<float>(value);
}

double doubleValue(const QVariant &value)
{
    return realFrom<double>(value);
}

bool boolValue(const QVariant &value)
{
    const int type = value.typeId();
    if (type == QMetaType::QString)
        return boolFromText(value.toString());
    if (isReal(type))
        return doubleValue(value) != 0.0;
    return isUnsigned(type) ? value.toULongLong() != 0 : longValue(value) != 0;
}

bool isDictionary(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

QVariant valueForKeyPath(const QVariantMap &holder, QStringView path)
{
    return walk(holder, path);
}

QVariant valueForKeyPath(const QObject &holder, QStringView path)
{
    const qsizetype dot = path.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return propertyOf(holder, path);
    return walk(propertyOf(holder, path.left(dot)), path.mid(dot + 1));
}

bool boolValueForKey(const QVariantMap &holder, const QString &key)
{
    return boolValue(holder.value(key));
}

int intValueForKey(const QVariantMap &holder, const QString &key)
{
    return intValue(holder.value(key));
}

qint64 longValueForKey(const QVariantMap &holder, const QString &key)
{
    return longValue(holder.value(key));
}

float floatValueForKey(const QVariantMap &holder, const QString &key)
{
    return floatValue(holder.value(key));
}

double doubleValueForKey(const QVariantMap &holder, const QString &key)
{
    return doubleValue(holder.value(key));
}

bool boolValueForKey(const QObject &holder, const QString &key)
{
    return boolValue(propertyOf(holder, key));
}

int intValueForKey(const QObject &holder, const QString &key)
{
    return intValue(propertyOf(holder, key));
}

qint64 longValueForKey(const QObject &holder, const QString &key)
{
    return longValue(propertyOf(holder, key));
}

float floatValueForKey(const QObject &holder, const QString &key)
{
    return floatValue(propertyOf(holder, key));
}

double doubleValueForKey(const QObject &holder, const QString &key)
{
    return doubleValue(propertyOf(holder, key));
}

float floatValueForKeyPath(const QVariantMap &holder, QStringView path)
{
    return floatValue(valueForKeyPath(holder, path));
}

float floatValueForKeyPath(const QObject &holder, QStringView path)
{
    return floatValue(valueForKeyPath(holder, path));
}

} // namespace pulsebar
