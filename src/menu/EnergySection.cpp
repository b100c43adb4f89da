#include "menu/EnergySection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Text.h"
#include "util/Values.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace pulsebar {

namespace {

float shareInText(const QString &text)
{
    return floatValue(substringTo(text, QStringLiteral("%")).value_or(QString()));
}

QStringList sortedRows(const QVariantMap &shares)
{
    QStringList rows;
    // Always with a point: the order reads the number back.
    for (auto share = shares.begin(); share != shares.end(); ++share)
        rows += plainFormat(u"%.1f%%:%@", floatValue(share.value()), share.key());
    std::stable_sort(rows.begin(), rows.end(), [](const QString &one, const QString &other) {
        return sortPowerUsageText(one, other) < 0;
    });
    return rows;
}

} // namespace

int sortPowerUsageText(const QString &one, const QString &other)
{
    const float oneShare = shareInText(one);
    const float otherShare = shareInText(other);
    if (oneShare == otherShare)
        return 0;
    return oneShare > otherShare ? -1 : 1;
}

MenuItem powerUsageMenuItem(const QVariantMap &shares, const QVariantMap &topDict)
{
    auto submenu = std::make_shared<Menu>(graphkeys::totalCpu());
    addOneMinuteStatics(topDict.value(QStringLiteral("EnergyConsumptionMinuteStats")),
                        QStringLiteral("%"), submenu.get(), 1.0F);
    submenu->addItem(MenuItem::separatorItem());
    const QStringList rows = sortedRows(shares);
    for (const QString &row : rows)
        submenu->addDummyItemWithTitle(row, ItemTarget::None);
    MenuItem item =
        submenuItem(localizedFormat(QStringLiteral("Energy Consumption: %.1f%%"),
                                    floatValueForKey(topDict, QStringLiteral("EnergyConsumption"))),
                    std::move(submenu));
    item.action = QStringLiteral("changeTitleToDisplayType");
    return item;
}

} // namespace pulsebar
