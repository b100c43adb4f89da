#pragma once

#include <QString>

namespace pulsebar {

/// What the item says, whichever face shows it.
struct ItemContent
{
    QString title;
    /// The title at its widest; empty means the title itself.
    QString guide;
    /// A themed icon's name or an image file's path; empty for none.
    QString image;
    /// Width asked for, in device-independent pixels; 0 lets the text decide.
    double length = 0;
    /// The text leaves room for an image even while there is none, for the next title may have one.
    bool roomForImage = false;
    /// Something is the matter that the user wants to know.
    bool attention = false;

    bool operator==(const ItemContent &other) const = default;
};

} // namespace pulsebar
