#include "controller/PreferenceMenu.h"

#include "util/Localisation.h"

#include <array>

namespace pulsebar {

namespace {

MenuItem actionItem(const QString &title, const QString &action)
{
    MenuItem item;
    item.title = title;
    item.action = action;
    item.target = ItemTarget::Controller;
    return item;
}

MenuItem checkItem(const QString &key, const QString &action, bool on)
{
    MenuItem item = actionItem(localizedString(key), action);
    item.state = on ? ItemState::On : ItemState::Off;
    return item;
}

MenuItem submenuItem(const QString &key, std::shared_ptr<Menu> submenu)
{
    MenuItem item;
    item.title = localizedString(key);
    item.submenu = std::move(submenu);
    return item;
}

MenuItem valueItem(const QString &title, const QString &action, int value, int current)
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
    return submenuItem(QStringLiteral("Refresh Time"), std::move(submenu));
}

MenuItem makeProcessListMaxMenu(int listMax)
{
    static constexpr int kLongest = 20;
    // The submenu's title is never shown; all value lists share one.
    auto submenu = std::make_shared<Menu>(QStringLiteral("Refresh Time"));
    for (int count = 1; count <= kLongest; ++count)
        submenu->addItem(valueItem(QString::number(count), QStringLiteral("changeProcessListMax"),
                                   count, listMax));
    return submenuItem(QStringLiteral("Max of List"), std::move(submenu));
}

MenuItem makeTitleOnPanelMenu(const QString &titleOnPanel)
{
    auto submenu = std::make_shared<Menu>(QStringLiteral("Title on Panel"));
    for (const PanelChoice &choice : kPanelChoices) {
        const QString word = QString::fromLatin1(choice.word);
        MenuItem item = checkItem(QString::fromLatin1(choice.title),
                                  QStringLiteral("changeTitleOnPanel"), word == titleOnPanel);
        item.exclusive = true;
        item.representedObject = word;
        submenu->addItem(std::move(item));
    }
    return submenuItem(QStringLiteral("Title on Panel"), std::move(submenu));
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
    submenu->addItem(MenuItem::separatorItem());
    submenu->addItem(makeTitleOnPanelMenu(state.titleOnPanel));
    return submenuItem(key, std::move(submenu));
}

} // namespace pulsebar
