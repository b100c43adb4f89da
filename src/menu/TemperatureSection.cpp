#include "menu/TemperatureSection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "menu/TitleTypes.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <utility>

namespace pulsebar {

namespace {

QString sensorLabel(const QString &key)
{
    return localizedString(key, QStringLiteral("Temperature"), {});
}

QString unitSign(bool fahrenheit)
{
    return fahrenheit ? QStringLiteral("\u2109") : QStringLiteral("\u2103");
}

QString temperatureText(const QString &format, const QString &key, const QVariant &degrees,
                        bool fahrenheit)
{
    return localizedFormat(format, sensorLabel(key), floatValue(degrees), unitSign(fahrenheit));
}

QString temperatureTitle(const QVariantMap &temperatures, bool fahrenheit)
{
    const QString die = QStringLiteral("CPU Die");
    const auto degrees = temperatures.constFind(die);
    if (degrees == temperatures.constEnd())
        return sensorLabel(QStringLiteral("Temperature"));
    return temperatureText(QStringLiteral("%@: %.1f%@"), die, *degrees, fahrenheit);
}

std::shared_ptr<const Menu> statisticsBelow(const QString &key, const TemperatureMenuState &state)
{
    const QVariant record = state.minuteStats.value(key);
    if (!isDictionary(record))
        return nullptr;
    auto submenu = std::make_shared<Menu>(graphkeys::temperature(key));
    addOneMinuteStatics(record, unitSign(state.fahrenheit), submenu.get(), 1.0F);
    return submenu;
}

} // namespace

std::optional<MenuItem> newTemperatureMenuItemForKey(const QString &key,
                                                     const QVariantMap &temperatures,
                                                     const TemperatureMenuState &state)
{
    const auto degrees = temperatures.constFind(key);
    if (degrees == temperatures.constEnd())
        return std::nullopt;
    // No blank behind the colon here, unlike in the title of the whole section.
    MenuItem item =
        titleTypeItem(temperatureText(QStringLiteral("%@:%.1f%@"), key, *degrees, state.fahrenheit),
                      titles::kTemperature);
    item.submenu = statisticsBelow(key, state);
    return item;
}

std::optional<MenuItem> makeTemperatureMenuForDict(const QVariantMap &temperatures,
                                                   const TemperatureMenuState &state)
{
    if (temperatures.isEmpty())
        return std::nullopt;
    MenuItem item =
        titleTypeItem(temperatureTitle(temperatures, state.fahrenheit), titles::kTemperature);
    auto submenu = std::make_shared<Menu>(item.title);
    for (const QVariant &sensor : state.temperatureKeys) {
        const QString key = sensor.toMap().value(QStringLiteral("Key")).toString();
        if (std::optional<MenuItem> row = newTemperatureMenuItemForKey(key, temperatures, state))
            submenu->addItem(*std::move(row));
    }
    item.submenu = std::move(submenu);
    return item;
}

} // namespace pulsebar
