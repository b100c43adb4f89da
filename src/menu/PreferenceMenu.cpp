#include "menu/PreferenceMenu.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <array>
#include <cmath>
#include <utility>

namespace pulsebar {

namespace {

MenuItem checkItem(const QString &key, const QString &action, bool on)
{
    MenuItem item = actionItem(localizedString(key), action);
    item.state = on ? ItemState::On : ItemState::Off;
    return item;
}

MenuItem valueItem(const QString &title, const QString &action, int value, qint64 current)
{
    MenuItem item = actionItem(title, action);
    item.tag = value;
    item.state = value == current ? ItemState::On : ItemState::Off;
    item.exclusive = true;
    return item;
}

QString secondsText(int seconds)
{
    const QString unit = seconds == 1 ? QStringLiteral(" Second") : QStringLiteral(" Seconds");
    return localizedFormat(QStringLiteral("%d%@"), seconds, localizedString(unit));
}

/// The submenu of a list of counts. Its title is never shown; all value lists share one.
std::shared_ptr<Menu> countMenu(int first, const QString &action, qint64 current)
{
    static constexpr int kLast = 20;
    auto submenu = std::make_shared<Menu>(QStringLiteral("Refresh Time"));
    for (int count = first; count <= kLast; ++count)
        submenu->addItem(valueItem(QString::number(count), action, count, current));
    return submenu;
}

/// The choice of widths that stands for the slider.
MenuItem widthChoice(int current)
{
    static constexpr int kNarrowest = 30;
    static constexpr int kWidest = 200;
    static constexpr int kStep = 10;
    const QString key = QStringLiteral("Width on menubar");
    auto submenu = std::make_shared<Menu>(localizedString(key));
    for (int width = kNarrowest; width <= kWidest; width += kStep)
        submenu->addItem(
            valueItem(QString::number(width), QStringLiteral("setItemWidth"), width, current));
    return submenuItem(localizedString(key), std::move(submenu));
}

struct PanelChoice
{
    const char *word;
    const char *title;
};

constexpr std::array kPanelChoices{
    PanelChoice{"automatic", "Automatic"},
    PanelChoice{"text", "Text"},
    PanelChoice{"icon", "Icon"},
    PanelChoice{"strip", "Strip"},
};

} // namespace

MenuItem makeCheckMemoryMenu(bool checkMemory)
{
    return checkItem(QStringLiteral("Check Memory"), QStringLiteral("switchCheckMemory"),
                     checkMemory);
}

MenuItem makeSortByMemoryMenu(bool sortByMemory)
{
    return checkItem(QStringLiteral("Sort by Memory"), QStringLiteral("switchSortByMemory"),
                     sortByMemory);
}

MenuItem makeRefreshTimeMenu(int refreshSec)
{
    static constexpr int kLongest = 5;
    auto submenu = std::make_shared<Menu>(QStringLiteral("Refresh Time"));
    for (int seconds = 1; seconds <= kLongest; ++seconds)
        submenu->addItem(valueItem(secondsText(seconds), QStringLiteral("changeRefreshTime"),
                                   seconds, refreshSec));
    return submenuItem(localizedString(QStringLiteral("Refresh Time")), std::move(submenu));
}

MenuItem makeProcessListMaxMenu(int listMax)
{
    return submenuItem(localizedString(QStringLiteral("Max of List")),
                       countMenu(1, QStringLiteral("changeProcessListMax"), listMax));
}

MenuItem makeNetworkListMaxMenu(qint64 networkMax)
{
    return submenuItem(localizedString(QStringLiteral("Max of Network")),
                       countMenu(0, QStringLiteral("changeNetworkListMax"), networkMax));
}

MenuItem makeShowIconMenu(bool showIcon)
{
    return checkItem(QStringLiteral("Show Icon"), QStringLiteral("switchShowIcon"), showIcon);
}

MenuItem makeFahrenheitMenu(bool fahrenheit)
{
    return checkItem(QStringLiteral("In Fahrenheit"), QStringLiteral("switchFahrenheit"),
                     fahrenheit);
}

MenuItem makeLaunchAtStartupMenu(bool autoLaunch)
{
    return checkItem(QStringLiteral("Auto Launch When Mac Starts up"),
                     QStringLiteral("switchAutoLaunch"), autoLaunch);
}

MenuItem makeItemWidthSliderMenu(double itemWidth)
{
    const int width = intValue(std::round(itemWidth));
    // The view hides the title.
    MenuItem item =
        actionItem(localizedString(QStringLiteral("Show Icon")), QStringLiteral("dummy"));
    item.tag = width;
    item.view = QStringLiteral("widthSlider");
    item.substitute = std::make_shared<const MenuItem>(widthChoice(width));
    return item;
}

MenuItem makeTitleOnPanelMenu(const QString &titleOnPanel)
{
    const QString key = QStringLiteral("Title on Panel");
    auto submenu = std::make_shared<Menu>(key);
    for (const PanelChoice &choice : kPanelChoices) {
        const QString word = QString::fromLatin1(choice.word);
        MenuItem item = checkItem(QString::fromLatin1(choice.title),
                                  QStringLiteral("changeTitleOnPanel"), word == titleOnPanel);
        item.exclusive = true;
        item.representedObject = word;
        submenu->addItem(std::move(item));
    }
    return submenuItem(localizedString(key), std::move(submenu));
}

MenuItem makePreferenceOptionsMenu(const PreferenceMenuState &state)
{
    const QString key = QStringLiteral("Preference");
    auto submenu = std::make_shared<Menu>(localizedString(key));
    submenu->addItem(makeCheckMemoryMenu(state.checkMemory));
    submenu->addItem(makeSortByMemoryMenu(state.sortByMemory));
    submenu->addItem(makeTitleOptionMenu(state.titles));
    submenu->addItem(makeRefreshTimeMenu(state.refreshSec));
    submenu->addItem(makeProcessListMaxMenu(state.listMax));
    submenu->addItem(makeNetworkListMaxMenu(state.networkMax));
    submenu->addItem(makeShowIconMenu(state.showIcon));
    submenu->addItem(makeFahrenheitMenu(state.fahrenheit));
    submenu->addItem(makeLaunchAtStartupMenu(state.autoLaunch));
    submenu->addItem(MenuItem::separatorItem());
    submenu->addItem(makeItemWidthSliderMenu(state.itemWidth));
    submenu->addItem(MenuItem::separatorItem());
    // Without a target it is for whoever knows the action.
    submenu->addItemWithTitle(localizedString(QStringLiteral("Show Manual")), ItemTarget::None,
                              QStringLiteral("showManual"));
    submenu->addItem(MenuItem::separatorItem());
    submenu->addItem(makeTitleOnPanelMenu(state.titleOnPanel));
    submenu->addItem(makeAlertsMenu(state.alerts));
    return submenuItem(localizedString(key), std::move(submenu));
}

} // namespace pulsebar
