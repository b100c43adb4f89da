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
/// What came in as `aa{sv}`, with plain values inside; absent for any other type and for values
/// that are neither basic types, `a{sv}`, `av` nor `as`.
std::optional<QVariantList> toDictionaries(const QVariant &wire);
/// A whole number of any width that fits; absent for any other type or value.
std::optional<int> toInteger(const QVariant &wire);

} // namespace pulsebar::busvalues
