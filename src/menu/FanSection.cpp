#include "menu/FanSection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "menu/TitleTypes.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <utility>

namespace pulsebar {

namespace {

void addSpeedStatistics(Menu &menu, const QVariant &record)
{
    addOneMinuteStatics(record, localizedString(QStringLiteral("RPM")), &menu, 1.0F);
}

QString valueText(const QString &key, float speed)
{
    const QString format = key + QStringLiteral("_MenuTitle");
    // A list of the user's own may name values that nobody wrote a text for.
    if (localizedString(format) == format)
        return localizedFormat(QStringLiteral("%@: %.0f%@"), key, speed,
                               localizedString(QStringLiteral("RPM")));
    return localizedFormat(format, speed);
}

void addValues(Menu &menu, const QVariantMap &fan, const QVariantList &fanKeys)
{
    for (const QVariant &value : fanKeys) {
        const QString key = value.toMap().value(QStringLiteral("Key")).toString();
        if (fan.contains(key))
            menu.addItem(
                titleTypeItem(valueText(key, floatValueForKey(fan, key)), titles::kFanSpeed));
    }
}

std::shared_ptr<const Menu> averageAndFans(const QVariantList &fans, const FanMenuState &state)
{
    auto submenu = std::make_shared<Menu>(graphkeys::fanAverage());
    submenu->addItem(MenuItem::separatorItem());
    addSpeedStatistics(*submenu,
                       state.minuteStats.isEmpty() ? QVariant() : state.minuteStats.constLast());
    submenu->addItem(MenuItem::separatorItem());
    int number = 0;
    for (const QVariant &fan : fans)
        submenu->addItem(makeFanMoveMenuForFanDict(fan.toMap(), number++, state));
    return submenu;
}

} // namespace

MenuItem makeFanMoveMenuForFanDict(const QVariantMap &fan, int number, const FanMenuState &state)
{
    auto submenu = std::make_shared<Menu>(graphkeys::fan(number));
    addValues(*submenu, fan, state.fanKeys);
    submenu->addItem(MenuItem::separatorItem());
    addSpeedStatistics(*submenu, state.minuteStats.value(number));
    MenuItem item =
        submenuItem(localizedFormat(QStringLiteral("Fan #%d: %.0fRPM"), number + 1,
                                    floatValueForKey(fan, QStringLiteral("ActualSpeed"))),
                    std::move(submenu));
    // Without a target and a tag, as the row of the processor's average.
    item.action = QStringLiteral("changeTitleToDisplayType");
    return item;
}

std::optional<MenuItem> makeFanMoveMenuForDict(const QVariantMap &fanMove,
                                               const FanMenuState &state)
{
    const float average = floatValueForKey(fanMove, QStringLiteral("AverageSpeed"));
    if (average == 0.0F)
        return std::nullopt;
    MenuItem item =
        titleTypeItem(localizedFormat(QStringLiteral("Fan: %.0fRPM"), average), titles::kFanSpeed);
    const QVariantList fans = fanMove.value(QStringLiteral("DataArray")).toList();
    if (fans.size() == 1)
        item.submenu = makeFanMoveMenuForFanDict(fans.constFirst().toMap(), 0, state).submenu;
    else
        item.submenu = averageAndFans(fans, state);
    return item;
}

} // namespace pulsebar
