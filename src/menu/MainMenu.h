#pragma once

#include "menu/Menu.h"
#include "menu/PreferenceMenu.h"
#include "menu/ProcessSection.h"

#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What the whole menu is built from.
struct MainMenuState
{
    QVariantMap topDict; ///< one sample; it may lack everything
    ProcessMenuState processes;
    /// Each process's traffic, as NetworkSection.h describes it; absent while it is not monitored.
    std::optional<QVariantMap> networkProcesses;
    QVariantList temperatureKeys; ///< as TemperatureSection.h describes them
    QVariantList fanKeys;         ///< as FanSection.h describes them
    bool hideGraphWindow = false;
    PreferenceMenuState preferences;
};

/// The tag of the row that hides and shows the graph windows.
inline constexpr int kHideGraphTag = 101;

/// Appends the sections in their order. What the sample does not have is left out.
void addMainMenu(Menu &menu, const MainMenuState &state);

} // namespace pulsebar
