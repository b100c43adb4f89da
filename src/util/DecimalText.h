#pragma once

#include <QString>

namespace pulsebar {

/// Numbers in texts. A text is read as a leading decimal number after leading white space, up to
/// the first stranger; 0 when there is none. "inf", "nan" and "0x10" are not decimal; a number
/// too large for its type becomes the largest one. The user's locale has no say.
int intFromText(QStringView text);
qint64 longFromText(QStringView text);
float floatFromText(QStringView text);
double doubleFromText(QStringView text);

/// True when the text begins, after leading blanks, with "Y", "y", "T", "t" or a digit other than
/// 0.
bool boolFromText(QStringView text);

/// The shortest plain decimal text that reads back as `value`: "60", "62.5", never an exponent.
QString decimalText(float value);
QString decimalText(double value);

} // namespace pulsebar
