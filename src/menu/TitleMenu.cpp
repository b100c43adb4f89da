#include "menu/TitleMenu.h"

#include "menu/MenuRows.h"
#include "menu/TitleTypes.h"
#include "util/Localisation.h"

#include <utility>

namespace pulsebar {

namespace {

MenuItem typeItem(int type, const QString &action, int tag, bool checked)
{
    MenuItem item = actionItem(localizedString(QStringLiteral("TitleOption_%1").arg(type)), action);
    item.tag = tag;
    item.state = checked ? ItemState::On : ItemState::Off;
    return item;
}

bool isOffered(int type, const TitleMenuState &state)
{
    switch (type) {
    case titles::kBattery:
        return state.batteryEnabled;
    case titles::kTemperature:
        return state.monitorTemperature;
    case titles::kFanSpeed:
        return state.monitorFanMove;
    default:
        return true;
    }
}

bool canRotate(int type, const TitleMenuState &state)
{
    if (type == titles::kRotate || type == titles::kIconOnly)
        return false;
    // Temperature and fans are offered here even where they are not measured.
    return type != titles::kBattery || state.batteryEnabled;
}

void addTypes(Menu &menu, const TitleMenuState &state)
{
    for (int type = titles::kFirstType; type <= titles::kLastType; ++type) {
        if (isOffered(type, state))
            menu.addItem(typeItem(type, QStringLiteral("changeTitleToDisplayType"), type,
                                  state.titleTypesToDisplay.contains(type)));
    }
}

void addMembers(Menu &menu, const TitleMenuState &state)
{
    menu.addItem(MenuItem::separatorItem());
    for (int type = titles::kFirstType; type <= titles::kLastType; ++type) {
        if (canRotate(type, state))
            menu.addItem(typeItem(type, QStringLiteral("changeToggleTitleOption"), type - 1,
                                  state.toggleTitleOptionArray.value(type - 1, false)));
    }
}

} // namespace

MenuItem makeTitleOptionMenu(const TitleMenuState &state)
{
    auto submenu = std::make_shared<Menu>(QStringLiteral("Title type to Display"));
    addTypes(*submenu, state);
    if (state.titleTypesToDisplay.value(0) == titles::kRotate)
        addMembers(*submenu, state);
    return submenuItem(localizedString(QStringLiteral("Top Title")), std::move(submenu));
}

} // namespace pulsebar
