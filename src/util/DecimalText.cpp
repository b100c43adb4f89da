#include "util/DecimalText.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <charconv>
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

template <typename Real> QString shortestDecimal(Real value)
{
    // The smallest double has 1074 digits behind its point.
    std::array<char, 1100> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
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

} // namespace

int intFromText(QStringView text)
{
    return integerFromText<int>(text);
}

qint64 longFromText(QStringView text)
{
    return integerFromText<qint64>(text);
}

float floatFromText(QStringView text)
{
    return realFromText<float>(text);
}

double doubleFromText(QStringView text)
{
    return realFromText<double>(text);
}

bool boolFromText(QStringView text)
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

QString decimalText(float value)
{
    return shortestDecimal(value);
}

QString decimalText(double value)
{
    return shortestDecimal(value);
}

} // namespace pulsebar
