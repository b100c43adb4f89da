#pragma once

#include <QString>
#include <QVariantList>

#include <optional>

namespace pulsebar {

/// The programs that the desktop starts when the user logs in.
class LoginItems
{
public:
    virtual ~LoginItems() = default;

    /// The list: a QVariantMap per entry that is in force, in the list's own order.
    ///
    /// | key | type | meaning |
    /// |---|---|---|
    /// | "Path" | text | the program that is started, an absolute path where it can be told |
    /// | "Hide" | boolean | it is to start without showing its windows |
    ///
    /// More keys may be there; they belong to the system and are to be handed back as they came.
    /// An entry that starts this program in whatever words has `ownPath` as its "Path".
    /// Absent when the system keeps no such list, or keeps it where it cannot be read.
    virtual std::optional<QVariantList> items(const QString &ownPath) = 0;

    /// Makes the list what it is to be: entries of the answer of items() that are missing now are
    /// taken out, and one that was not there is put in for this program. Others are not touched.
    /// @return whether that worked; a failure is logged
    virtual bool setItems(const QVariantList &items) = 0;
};

} // namespace pulsebar
