#pragma once

#include <QString>
#include <QVariant>

namespace pulsebar::cli {

/// @return `value` as one line of JSON. Integers are printed in full whatever their width;
///         not-a-number and the infinities are `null`, as is a value of an unknown type.
QString jsonText(const QVariant &value);

/// @return `text` as a JSON string, quotes included
QString jsonString(const QString &text);

/// Unpacks what a D-Bus message carried (variants, arrays, dictionaries, structures) into plain
/// QVariant lists and maps.
QVariant plainValue(const QVariant &fromBus);

} // namespace pulsebar::cli
