#pragma once

#include <QByteArray>
#include <QVariant>

#include <initializer_list>
#include <optional>

namespace pulsebar {

/// Reads a property list (plist(5)), in XML or binary form: arrays as QVariantList, texts as
/// QString, dictionaries as QVariantMap with those of the keys that they have. Values of other
/// types are there, but invalid. Absent when the bytes are no property list, or one with more than
/// about a thousand containers or 16 of them in one another: a few bytes can say of themselves that
/// they are millions.
std::optional<QVariant> parsePropertyList(const QByteArray &bytes,
                                          std::initializer_list<const char *> keys);

} // namespace pulsebar
