#pragma once

#include <QString>
#include <QVariant>

namespace pulsebar::cli {

/// The value that a command line means for a property.
///
/// @param text decimal numbers; `true`/`false`; integers separated by commas or a JSON array for
///        `ai`; a JSON array of objects for `aa{sv}`; any text for `s`
/// @param signature the property's D-Bus signature
/// @return a value of that signature, or `text` itself where it cannot be one, so that the
///         program refuses it in its own words
QVariant propertyValue(const QString &text, const QString &signature);

} // namespace pulsebar::cli
