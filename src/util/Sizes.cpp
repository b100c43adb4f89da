#include "util/Sizes.h"

#include "util/Format.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace pulsebar {

namespace {

constexpr double SecondsPerMinute = 60.0;
constexpr double SecondsPerHour = 3600.0;
constexpr double SecondsPerDay = 86400.0;

struct SizeUnit
{
    double bytes;
    const char16_t *name;
};

constexpr std::array SizeUnits{SizeUnit{0x1p40, u"TB"}, SizeUnit{0x1p30, u"GB"},
                               SizeUnit{0x1p20, u"MB"}, SizeUnit{0x1p10, u"KB"}};

/// @param largest index of the largest unit that may be used
QString sizeText(double bytes, std::size_t largest, const QString &decimalPoint)
{
    QString unit = QStringLiteral("B");
    for (std::size_t i = largest; i < SizeUnits.size(); ++i) {
        if (bytes > SizeUnits[i].bytes) {
            bytes /= SizeUnits[i].bytes;
            unit = QString::fromUtf16(SizeUnits[i].name);
            break;
        }
    }
    const QString format = 10.0 > bytes ? QStringLiteral("%.1f%@") : QStringLiteral("%.0f%@");
    return formatChecked(format, {bytes, unit}, decimalPoint).value_or(QString());
}

QString unitText(const QString &unit)
{
    return localizedString(unit, QStringLiteral("NumberUtility"), QString());
}

QString daysText()
{
    return unitText(QStringLiteral(" Days"));
}

QString hoursText()
{
    return unitText(QStringLiteral(" Hours"));
}

QString minutesText()
{
    return unitText(QStringLiteral(" Minutes"));
}

QString secondsText()
{
    return unitText(QStringLiteral(" Seconds"));
}

/// The shortest decimal text that reads back as the number, never with an exponent.
QString shortestText(double number)
{
    std::array<char, 400> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                            std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

qsizetype integerDigits(double number)
{
    qsizetype digits = 0;
    for (; number >= 1.0 && std::isfinite(number); number /= 10.0)
        ++digits;
    return digits;
}

/// A whole number of at most 64 bits out of a real one.
qint64 wholePart(double number)
{
    return longValue(QVariant(number));
}

QString paddedCount(qint64 count, const QString &unit)
{
    return plainFormat(count > 9 ? u"%d%@" : u"0%d%@", count, unit);
}

/// Takes whole units out of a remainder of seconds and tells how they are written.
/// @param always write "00" when there is none, because a larger unit was written
QString takeUnits(double &remainder, double unitSeconds, const QString &unit, bool always,
                  qint64 &count)
{
    count = 0;
    if (remainder > unitSeconds) {
        count = wholePart(remainder / unitSeconds);
        remainder -= std::trunc(remainder / unitSeconds) * unitSeconds;
        return paddedCount(count, unit);
    }
    return always ? plainFormat(u"00%@", unit) : QString();
}

} // namespace

QString fileSizeString(double bytes)
{
    return sizeText(bytes, 1, QLocale().decimalPoint());
}

QString fileSizeString(const QVariant &bytes)
{
    return fileSizeString(doubleValue(bytes));
}

QString stringWithByteSize(double bytes)
{
    return sizeText(bytes, 0, QStringLiteral("."));
}

QString stringWithTimeLong(quint64 seconds)
{
    const quint64 inHour = seconds % 3600;
    const quint64 inMinute = seconds % 60;
    const quint64 minutes = inHour / 60;
    const QString hours = seconds >= 3600 ? plainFormat(u"%llu:", seconds / 3600) : QString();
    return hours + plainFormat(u"%02llu:%02llu", minutes, inMinute);
}

QString timeStringFromSecond(double seconds)
{
    if (!(seconds >= 0))
        return {};
    double value = seconds;
    qsizetype length = 0;
    QString unit;
    if (seconds > SecondsPerHour) {
        value = seconds / SecondsPerHour;
        unit = hoursText();
        length = 10.0 > value ? 3 : integerDigits(value);
    } else if (seconds > SecondsPerMinute) {
        value = seconds / SecondsPerMinute;
        unit = minutesText();
        length = 10.0 > value ? 3 : 2;
    } else {
        unit = secondsText();
        length = 1.0 > seconds ? 3 : (10.0 > seconds ? 1 : 2);
    }
    return shortestText(value).left(std::isfinite(value) ? length : 3) + unit;
}

QString detailedTimeStringFromSecond(double seconds)
{
    if (!(seconds >= 0))
        return {};
    QString result;
    double remainder = seconds;
    qint64 days = 0;
    if (seconds > SecondsPerDay) {
        days = wholePart(seconds / SecondsPerDay);
        remainder = seconds - std::trunc(seconds / SecondsPerDay) * SecondsPerDay;
        result += plainFormat(u"%d%@", days, daysText());
    }
    qint64 hours = 0;
    qint64 minutes = 0;
    result += takeUnits(remainder, SecondsPerHour, hoursText(), days >= 1, hours);
    result +=
        takeUnits(remainder, SecondsPerMinute, minutesText(), days > 0 || hours >= 1, minutes);
    if (remainder >= 0)
        result += plainFormat(10.0 > remainder ? u"0%.2f%@" : u"%.2f%@", remainder, secondsText());
    return result;
}

double add(double left, double right)
{
    return left + right;
}

double subtract(double left, double right)
{
    return left - right;
}

double multiply(double left, double right)
{
    return left * right;
}

double divide(double left, double right)
{
    return left / right;
}

double increment(double number)
{
    return number + 1.0;
}

double decrement(double number)
{
    return number - 1.0;
}

bool hasAnyKey(double number, const QVariantList &array)
{
    return std::any_of(array.begin(), array.end(), [number](const QVariant &element) {
        return doubleValue(element) == number;
    });
}

bool hasAnyKey(double number, const QVariantList &array, int /*options*/)
{
    return hasAnyKey(number, array);
}

} // namespace pulsebar
