#pragma once

#include "statusitem/StatusItem.h"

#include <QString>

namespace pulsebar {

/// Who draws StatusNotifierItems at the moment.
enum class HostKind {
    None, ///< no watcher, or a watcher without a host
    Gnome,
    Mate,
    AyatanaIndicators,
    Waybar,
    Xfce,
    Plasma,
    Lxqt,
    Swaybar,
    Unknown,
};

/// What the item's pixmaps show.
enum class PixmapStyle {
    Icon,      ///< squares with the image or the program's sign
    ShortText, ///< squares with the title's first number
    WideText,  ///< the same squares and the whole title beside them
    WideOnly,  ///< the whole title, image included, and no squares
};

/// What is around the item.
struct Surroundings
{
    HostKind host = HostKind::None;
    /// A tray of the XEmbed kind runs.
    bool tray = false;
    /// Windows can be placed by their program (X11).
    bool ownWindows = true;
    TitleOnPanel how = TitleOnPanel::Automatic;
    bool hasTitle = true;
    /// An image stands beside the title.
    bool hasPicture = false;
    /// The item is to be noticed.
    bool attention = false;
};

/// Which faces show the item, and how.
struct Faces
{
    /// Offered to the panel as a StatusNotifierItem.
    bool notifier = false;
    /// A window in the tray. With `notifier` too, the docked window stands for the item as long as
    /// it is shown at its full width, and the StatusNotifierItem steps back.
    bool tray = false;
    bool strip = false;
    /// The title goes out as a label.
    bool label = false;
    /// Icons are sent by name, for the host never reads pixmaps.
    bool iconByName = false;
    PixmapStyle pixmaps = PixmapStyle::Icon;

    bool operator==(const Faces &other) const = default;
};

/// The kind of host from the program name of the process that owns the watcher.
HostKind hostKindOf(const QString &programName);

/// Whether the host goes on showing a label that the item has given up, as long as it knows the
/// item.
bool keepsLabels(HostKind host);

/// The faces for these surroundings. At least one is always chosen.
Faces chooseFaces(const Surroundings &around);

/// How the host treats a click that reaches the item itself ("Activate").
enum class ClickAnswer {
    Refuse,  ///< an error, upon which the caller opens the exported menu
    Ignore,  ///< the caller has opened the menu already
    OpenMenu ///< the item opens a menu of its own
};
ClickAnswer clickAnswerFor(const QString &callerProgramName, bool ownWindows);

} // namespace pulsebar
