#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace pulsebar {

enum class SensorListKind { Temperature, Fan };

/// What stood in a list.
struct SensorListReading
{
    /// Dictionaries with "Key" (the name, unique) and "SMCKey" (texts), in the list's order.
    QVariantList elements;
    int leftOut = 0; ///< elements that could not be used
    QString problem; ///< why the list as a whole cannot be used; empty = it can
};

/// Reads a property list, in XML or binary form: an array of dictionaries.
///
/// "Key" is a text of 1 to 100 characters; the first element of a name counts. The "SMCKey" of a
/// temperature is a text of four printable ASCII characters; that of a fan's figure is a format
/// with one integer placeholder, the fan's number, which makes four such characters of fan 0
/// ("F%dAc"). Elements that are otherwise are left out. A list of fans' figures cannot do without
/// "ActualSpeed", and a list of which no element is left cannot be used, unless it was empty.
SensorListReading parseSensorList(const QByteArray &bytes, SensorListKind kind);

/// The lists of the sensors that are known by name.
struct SensorLists
{
    QVariantList temperature;
    QVariantList fan;
};

/// Reads "Temperature.plist" and "Fan.plist", each from the first folder that has it. One that
/// cannot be used (or is over 1 MiB, or no file) is said in the log, and the next folder's serves.
/// Without any the list is empty.
SensorLists readSensorLists(const QStringList &folders);

} // namespace pulsebar
