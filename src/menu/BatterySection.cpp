#include "menu/BatterySection.h"

#include "menu/MenuRows.h"
#include "menu/TitleTypes.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

struct Figure
{
    const char *key;
    const char *format;
};

constexpr std::array kFigures{
    Figure{"BatteryVoltage", " Voltage:%dmV"},
    Figure{"BatteryAmperage", "Amperage:%dmA"},
    Figure{"BatteryCycleCount", "Cycle Count:%d"},
};

QString batteryTitle(const QVariantMap &battery)
{
    if (boolValueForKey(battery, QStringLiteral("FullyCharged")))
        return localizedString(QStringLiteral("Battery is charged"));
    const bool connected = boolValueForKey(battery, QStringLiteral("IsConnected"));
    return localizedFormat(connected ? QStringLiteral("Charging: ") : QStringLiteral("Battery: "),
                           floatValueForKey(battery, QStringLiteral("BatteryRemainPercent")));
}

} // namespace

MenuItem makeBatteryStatusMenu(const QVariantMap &topDict)
{
    const QVariantMap battery = topDict.value(QStringLiteral("BatteryStats")).toMap();
    MenuItem item = titleTypeItem(batteryTitle(battery), titles::kBattery);
    auto submenu = std::make_shared<Menu>(item.title);
    for (const Figure &figure : kFigures) {
        const QString key = QString::fromLatin1(figure.key);
        if (battery.contains(key))
            submenu->addDummyItemWithTitle(
                localizedFormat(QString::fromLatin1(figure.format), intValueForKey(battery, key)),
                ItemTarget::None);
    }
    if (!submenu->isEmpty())
        item.submenu = std::move(submenu);
    return item;
}

} // namespace pulsebar
