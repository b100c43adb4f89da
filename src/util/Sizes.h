#pragma once

#include <QString>
#include <QVariant>

namespace pulsebar {

/// Size text of a number of bytes, such as 1.5MB, with the user's decimal separator; units B, KB,
/// MB, GB in powers of 1024, one decimal below 10. Exactly 1024 of a unit stays in it (1024B).
QString fileSizeString(double bytes);
/// The same for a boxed number; nothing reads as 0.
QString fileSizeString(const QVariant &bytes);

/// Size text as above with one more unit, TB, and always a decimal point.
QString stringWithByteSize(double bytes);

/// Clock text of whole seconds: MM:SS, from an hour on H:MM:SS with the hours unpadded.
QString stringWithTimeLong(quint64 seconds);

/// Duration in its largest unit, such as "2.5 Hours": digits cut, never rounded. Empty for a
/// negative number and not-a-number.
QString timeStringFromSecond(double seconds);

/// Duration in all its units, such as "1 Days02 Hours03 Minutes04.50 Seconds". Empty for a negative
/// number and not-a-number.
QString detailedTimeStringFromSecond(double seconds);

/// Arithmetic on boxed numbers, all read as double. Dividing by zero gives an infinity or
/// not-a-number.
double add(double left, double right);
double subtract(double left, double right);
double multiply(double left, double right);
double divide(double left, double right);
double increment(double number);
double decrement(double number);

/// Whether any element of the array equals the number. The options have no effect.
bool hasAnyKey(double number, const QVariantList &array);
bool hasAnyKey(double number, const QVariantList &array, int options);

} // namespace pulsebar
