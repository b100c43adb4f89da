#include "menu/CpuSection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "menu/TitleTypes.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

struct Share
{
    const char *label;
    const char *key;
};

/// The blanks line the labels up.
constexpr std::array kShares{
    Share{"System", "kernel"},
    Share{"    User", "user"},
    Share{"    Nice", "nice"},
    Share{"     Idle", "idle"},
};

double percentOf(const QVariantMap &holder, const QString &key)
{
    return doubleValueForKey(holder, key) * 100.0;
}

void addLoadStatistics(Menu &menu, const QVariantMap &holder)
{
    addOneMinuteStatics(holder.value(QStringLiteral("CPUUsageMinuteStats")), QStringLiteral("%"),
                        &menu, 100.0F);
}

} // namespace

QString cpuMenuTitleWithLabelAndValue(const QString &label, double value)
{
    const QString format =
        value < 10.0 ? QStringLiteral("%@:   %.1f%%") : QStringLiteral("%@: %.1f%%");
    return localizedFormat(format, label, value);
}

MenuItem newCPUMenuItemWithTitle(const QString &title)
{
    return titleTypeItem(title, titles::kCpuUsage);
}

MenuItem usageMenuForCore(const QVariantMap &core, int coreNumber)
{
    auto submenu = std::make_shared<Menu>(graphkeys::core(coreNumber));
    for (const Share &share : kShares) {
        const double percent = percentOf(core, QString::fromLatin1(share.key));
        submenu->addItem(newCPUMenuItemWithTitle(
            cpuMenuTitleWithLabelAndValue(QString::fromLatin1(share.label), percent)));
    }
    submenu->addItem(MenuItem::separatorItem());
    addLoadStatistics(*submenu, core);
    MenuItem item =
        newCPUMenuItemWithTitle(localizedFormat(QStringLiteral("Core #%d: %.1f%%"), coreNumber,
                                                percentOf(core, QStringLiteral("totalUsage"))));
    item.submenu = std::move(submenu);
    return item;
}

MenuItem CPUMenuItem(const QVariantMap &topDict)
{
    auto submenu = std::make_shared<Menu>(graphkeys::totalCpu());
    addLoadStatistics(*submenu, topDict);
    submenu->addItem(MenuItem::separatorItem());
    int coreNumber = 0;
    const QVariantList cores = topDict.value(QStringLiteral("CPUUsage")).toList();
    for (const QVariant &core : cores)
        submenu->addItem(usageMenuForCore(core.toMap(), ++coreNumber));
    MenuItem item =
        submenuItem(localizedFormat(QStringLiteral("CPU Average: %.1f%%"),
                                    percentOf(topDict, QStringLiteral("CPUUsageCoreAverage"))),
                    std::move(submenu));
    item.action = QStringLiteral("changeTitleToDisplayType");
    return item;
}

} // namespace pulsebar
