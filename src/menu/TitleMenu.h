#pragma once

#include "menu/Menu.h"

#include <QVector>

namespace pulsebar {

/// What the "Top Title" submenu is built from.
struct TitleMenuState
{
    QVector<int> titleTypesToDisplay;
    QVector<bool> toggleTitleOptionArray;
    bool batteryEnabled = false;
    bool monitorTemperature = false;
    bool monitorFanMove = false;
};

/// The "Top Title" item: a row per title type, and while the title rotates a second block with the
/// members of the rotation.
MenuItem makeTitleOptionMenu(const TitleMenuState &state);

} // namespace pulsebar
