#pragma once

#include <QString>
#include <QVariantList>

#include <optional>

namespace pulsebar {

class LoginItems;

/// What becomes of a list of login items when this program is to be started at login, or no longer.
///
/// Entries are dictionaries with a text "Path"; anything else in the list is left alone. Entries of
/// an obsolete sibling of this program, known by its path, are taken out on the occasion.
/// @param items the list; absent when the system has none
/// @param path  this program's path, as entries spell it
/// @return the new list; absent when there is nothing to write
std::optional<QVariantList> loginItemsAfterChange(const std::optional<QVariantList> &items,
                                                  bool enable, const QString &path);

/// Puts the program at `path` on the list of login items, or takes it off.
void ChangeOurApplicationsLoginSetting(LoginItems &list, bool enable, const QString &path);

} // namespace pulsebar
