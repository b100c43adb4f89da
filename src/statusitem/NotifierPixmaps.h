#pragma once

#include "statusitem/FaceChooser.h"
#include "statusitem/ItemDrawing.h"

namespace pulsebar {

/// Everything that the item's pixmaps depend on, and nothing else: equal means that the pixmaps
/// are equal too, so that a host need not be told.
struct PixmapContent
{
    PixmapStyle style = PixmapStyle::Icon;
    /// What is drawn: the whole title, its short form, or nothing.
    ItemContent drawn;
    bool dark = true;

    bool operator==(const PixmapContent &other) const = default;
};

PixmapContent pixmapContentOf(const ItemContent &content, PixmapStyle style, bool dark);

/// The pixmaps, smallest first. Squares are among them unless the style leaves them out.
ItemPixmapList renderPixmaps(const PixmapContent &content);

} // namespace pulsebar
