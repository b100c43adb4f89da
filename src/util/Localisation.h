#pragma once

#include "util/Format.h"

#include <QString>

namespace pulsebar {

/// The user's text for a key of the default table. A translation (context "Default" of an installed
/// catalogue, the key as source text) wins; else the built-in English text; else the key itself.
QString localizedString(const QString &key);

/// The same for a named table (the catalogue's context is the table's name). Without a translation
/// the default value is answered, or the key when the default value is empty.
QString localizedString(const QString &key, const QString &table, const QString &defaultValue);

/// The built-in English text of a key of the default table; the key itself when they are equal.
QString englishString(const QString &key);

/// localizedFormat(key, arguments...): the key's text in the user's language as a format, filled
/// with the arguments, numbers with the user's decimal separator. A translation whose
/// placeholders do not fit the arguments is not used: English is, and the log says so once per key.
QString localizedFormatList(const QString &key, const FormatArguments &arguments);

template <typename... Values> QString localizedFormat(const QString &key, const Values &...values)
{
    return localizedFormatList(key, {FormatArgument(values)...});
}

} // namespace pulsebar
