#include "util/Values.h"

#include <QObject>
#include <QVarLengthArray>

#include <charconv>
#include <cmath>
#include <limits>

namespace pulsebar {

namespace {

/// The characters of a text as ASCII, everything else as NUL, so that no locale and no exotic
/// digit takes part in reading numbers.
char asciiAt(QStringView text, qsizetype index)
{
    if (index >= text.size())
        return '\0';
    const char16_t unit = text[index].unicode();
    return unit < 0x80 ? static_cast<char>(unit) : '\0';
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

qsizetype skipSpace(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size() && text[at].isSpace())
        ++at;
    return at;
}

using NumberText = QVarLengthArray<char, 64>;

qsizetype appendDigits(QStringView text, qsizetype at, NumberText &out)
{
    while (isDigit(asciiAt(text, at)))
        out.append(asciiAt(text, at++));
    return at;
}

/// The sign is kept apart: from_chars knows no "+".
struct DecimalPrefix
{
    bool negative = false;
    NumberText digits; ///< empty when the text does not begin with a number
};

qsizetype readSign(QStringView text, DecimalPrefix &prefix)
{
    const qsizetype at = skipSpace(text);
    const char sign = asciiAt(text, at);
    prefix.negative = sign == '-';
    return sign == '-' || sign == '+' ? at + 1 : at;
}

void readExponent(QStringView text, qsizetype at, NumberText &out)
{
    const char mark = asciiAt(text, at);
    if (mark != 'e' && mark != 'E')
        return;
    const char sign = asciiAt(text, at + 1);
    const bool isSigned = sign == '-' || sign == '+';
    if (!isDigit(asciiAt(text, at + (isSigned ? 2 : 1))))
        return;
    out.append('e');
    if (sign == '-')
        out.append('-');
    appendDigits(text, at + (isSigned ? 2 : 1), out);
}

DecimalPrefix decimalPrefix(QStringView text)
{
    DecimalPrefix prefix;
    qsizetype at = appendDigits(text, readSign(text, prefix), prefix.digits);
    bool any = !prefix.digits.isEmpty();
    if (asciiAt(text, at) == '.') {
        prefix.digits.append('.');
        const qsizetype fraction = at + 1;
        at = appendDigits(text, fraction, prefix.digits);
        any = any || at > fraction;
    }
    if (!any) {
        prefix.digits.clear();
        return prefix;
    }
    readExponent(text, at, prefix.digits);
    return prefix;
}

/// Out of range is either far too large or far too small; the mantissa and exponent tell which.
template <typename Real> Real outOfRangeValue(const NumberText &digits)
{
    const auto exponent = std::find(digits.begin(), digits.end(), 'e');
    if (exponent != digits.end())
        return exponent + 1 != digits.end() && exponent[1] == '-'
                   ? Real(0)
                   : std::numeric_limits<Real>::max();
    const bool large = std::any_of(digits.begin(), std::find(digits.begin(), digits.end(), '.'),
                                   [](char digit) { return digit != '0'; });
    return large ? std::numeric_limits<Real>::max() : Real(0);
}

template <typename Real> Real realFromText(QStringView text)
{
    const DecimalPrefix prefix = decimalPrefix(text);
    if (prefix.digits.isEmpty())
        return 0;
    Real value = 0;
    const auto [end, error] = std::from_chars(prefix.digits.begin(), prefix.digits.end(), value);
    if (error == std::errc::result_out_of_range)
        value = outOfRangeValue<Real>(prefix.digits);
    return prefix.negative ? -value : value;
}

template <typename Integer> Integer integerFromText(QStringView text)
{
    using Limits = std::numeric_limits<Integer>;
    DecimalPrefix prefix;
    NumberText digits;
    const qsizetype at = readSign(text, prefix);
    if (prefix.negative)
        digits.append('-');
    appendDigits(text, at, digits);
    Integer value = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error == std::errc::result_out_of_range)
        return prefix.negative ? Limits::min() : Limits::max();
    return value;
}

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
        return integerFromText<Integer>(value.toString());
    if (isReal(type))
        return integerFromReal<Integer>(value.toDouble());
    if (isUnsigned(type))
        return clampedTo<Integer>(static_cast<qint64>(
            std::min<quint64>(value.toULongLong(), std::numeric_limits<qint64>::max())));
    return isSigned(type) ? clampedTo<Integer>(value.toLongLong()) : Integer(0);
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
        if (value.typeId() != QMetaType::QVariantMap)
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
        return boolValue(QStringView(value.toString()));
    if (isReal(type))
        return doubleValue(value) != 0.0;
    return isUnsigned(type) ? value.toULongLong() != 0 : longValue(value) != 0;
}

int intValue(QStringView text)
{
    return integerFromText<int>(text);
}

qint64 longValue(QStringView text)
{
    return integerFromText<qint64>(text);
}

float floatValue(QStringView text)
{
    return realFromText<float>(text);
}

double doubleValue(QStringView text)
{
    return realFromText<double>(text);
}

bool boolValue(QStringView text)
{
    switch (const char first = asciiAt(text, skipSpace(text))) {
    case 'Y':
    case 'y':
    case 'T':
    case 't':
        return true;
    default:
        return isDigit(first) && first != '0';
    }
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
