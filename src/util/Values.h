#pragma once

#include <QString>
#include <QVariant>

class QObject;

namespace pulsebar {

/// Numeric readings of one value. A number is converted: towards zero for the integers, to the
/// nearest limit when it does not fit, not-a-number to 0. A text is read as DecimalText.h says.
/// Anything that is neither a number nor a text, and an invalid value, reads as 0.
int intValue(const QVariant &value);
qint64 longValue(const QVariant &value);
float floatValue(const QVariant &value);
double doubleValue(const QVariant &value);

/// A number is true when it is not 0; a text as DecimalText.h says.
bool boolValue(const QVariant &value);

/// Whether the value is a dictionary (a QVariantMap), be it an empty one.
bool isDictionary(const QVariant &value);

/// The value at a dotted path such as u"NetStatistics.InBytes". Each component is looked up in the
/// dictionary that the one before it answered; a link that is missing or is no dictionary gives
/// an invalid value, which is how "nothing" is written everywhere.
QVariant valueForKeyPath(const QVariantMap &holder, QStringView path);
/// The same; the first component names a property of the object.
QVariant valueForKeyPath(const QObject &holder, QStringView path);

/// Readings of the value under a key; the key is taken literally, dots and all. A missing key
/// reads as 0 or false.
bool boolValueForKey(const QVariantMap &holder, const QString &key);
int intValueForKey(const QVariantMap &holder, const QString &key);
qint64 longValueForKey(const QVariantMap &holder, const QString &key);
float floatValueForKey(const QVariantMap &holder, const QString &key);
double doubleValueForKey(const QVariantMap &holder, const QString &key);
bool boolValueForKey(const QObject &holder, const QString &key);
int intValueForKey(const QObject &holder, const QString &key);
qint64 longValueForKey(const QObject &holder, const QString &key);
float floatValueForKey(const QObject &holder, const QString &key);
double doubleValueForKey(const QObject &holder, const QString &key);

/// Reading at a dotted path; a missing link reads as 0.
float floatValueForKeyPath(const QVariantMap &holder, QStringView path);
float floatValueForKeyPath(const QObject &holder, QStringView path);

} // namespace pulsebar
