#pragma once

#include <QList>
#include <QVariant>
#include <QVariantMap>

#include <optional>

/// Between the program's values and those that travel over D-Bus.
namespace pulsebar::busvalues {

/// A value in its wire form: dictionaries `a{sv}`, arrays `av`, texts `s`, real numbers of either
/// precision `d`, 64-bit integers `x`/`t`, smaller ones `i`/`u`, booleans `b`. A NUL byte in a text
/// becomes U+FFFD, which the wire could not carry. Invalid for what has no wire form.
QVariant fromValue(const QVariant &value);
/// The same for a dictionary; entries without a wire form are left out.
QVariantMap fromDictionary(const QVariantMap &dictionary);
/// An array of dictionaries as `aa{sv}`; other elements are left out.
QList<QVariantMap> fromDictionaries(const QVariantList &array);
/// An array of numbers as `ad`.
QList<double> fromNumbers(const QVariantList &array);

/// What came in as `ai`; absent for any other type.
std::optional<QList<int>> toIntegers(const QVariant &wire);
/// What came in as `aa{sv}`; absent for any other type. Basic values are plain; what the program
/// has no type of its own for stays as the bus delivered it, so that it can be sent back unchanged.
std::optional<QVariantList> toDictionaries(const QVariant &wire);
/// The lists and dictionaries in what came in, of whatever types, as the program's own; basic
/// values as they are. Structures are lists.
QVariant toPlain(const QVariant &wire);
/// The reverse: a dictionary of which every value that came from the bus keeps its wire type.
QVariantMap toSender(const QVariantMap &dictionary);
/// The same for an array of dictionaries, as `aa{sv}`; other elements are left out.
QList<QVariantMap> toSenders(const QVariantList &array);
/// A whole number of any width that fits; absent for any other type or value.
std::optional<int> toInteger(const QVariant &wire);

} // namespace pulsebar::busvalues
