#pragma once

#include "menu/AlertMenu.h"
#include "menu/Menu.h"
#include "menu/TitleMenu.h"

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
    qint64 networkMax = 0;
    bool showIcon = false;
    bool fahrenheit = false;
    bool autoLaunch = false;
    double itemWidth = 0.0; ///< the status item's length, in points
    QString titleOnPanel;   ///< "automatic", "text", "icon" or "strip"
    AlertMenuState alerts;
};

/// The "Preference" item with its submenu.
MenuItem makePreferenceOptionsMenu(const PreferenceMenuState &state);

MenuItem makeCheckMemoryMenu(bool checkMemory);
MenuItem makeSortByMemoryMenu(bool sortByMemory);
/// 1 to 5 seconds. A current value outside leaves every row unchecked, here and below.
MenuItem makeRefreshTimeMenu(int refreshSec);
/// 1 to 20 processes.
MenuItem makeProcessListMaxMenu(int listMax);
/// 0 to 20 processes; 0 switches the monitoring of their traffic off.
MenuItem makeNetworkListMaxMenu(qint64 networkMax);
MenuItem makeShowIconMenu(bool showIcon);
MenuItem makeFahrenheitMenu(bool fahrenheit);
MenuItem makeLaunchAtStartupMenu(bool autoLaunch);
/// The row of the view "widthSlider", whose tag is the current width. Its substitute is a submenu
/// of widths, 30 to 200 in steps of 10.
MenuItem makeItemWidthSliderMenu(double itemWidth);
/// How the title is shown in the panel.
MenuItem makeTitleOnPanelMenu(const QString &titleOnPanel);

} // namespace pulsebar
