#pragma once

#include "controller/TitleMenu.h"
#include "menu/Menu.h"

#include <QString>

namespace pulsebar {

/// What the "Preference" submenu is built from.
struct PreferenceMenuState
{
    bool checkMemory = false;
    bool sortByMemory = false;
    TitleMenuState titles;
    int refreshSec = 0;
    int listMax = 0;
    QString titleOnPanel; ///< "automatic", "text", "icon" or "strip"
};

/// The "Preference" item with its submenu.
MenuItem makePreferenceOptionsMenu(const PreferenceMenuState &state);

MenuItem makeCheckMemoryMenu(bool checkMemory);
MenuItem makeSortByMemoryMenu(bool sortByMemory);
/// 1 to 5 seconds. A current value outside leaves every row unchecked, here and below.
MenuItem makeRefreshTimeMenu(int refreshSec);
/// 1 to 20 processes.
MenuItem makeProcessListMaxMenu(int listMax);
/// How the title is shown in the panel.
MenuItem makeTitleOnPanelMenu(const QString &titleOnPanel);

} // namespace pulsebar
