#include "menu/NetworkSection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Sizes.h"
#include "util/Values.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace pulsebar {

namespace {

QString sizeOf(const QVariantMap &holder, const char *key)
{
    return fileSizeString(holder.value(QString::fromLatin1(key)));
}

QString textOf(const QVariantMap &holder, const char *key)
{
    return holder.value(QString::fromLatin1(key)).toString();
}

QString connectionText(const QVariantMap &connection)
{
    return plainFormat(u"\u2193%@/\u2191%@:%@(%@) %@", sizeOf(connection, "bytes_in"),
                       sizeOf(connection, "bytes_out"), textOf(connection, "type"),
                       textOf(connection, "state"), textOf(connection, "address"));
}

/// A process's entry with what it is ordered by.
struct Traffic
{
    QVariantMap process;
    double current = 0.0;
    double total = 0.0;
};

double sumOf(const QVariantMap &process, const char *one, const char *other)
{
    const double sum = add(doubleValueForKey(process, QString::fromLatin1(one)),
                           doubleValueForKey(process, QString::fromLatin1(other)));
    // Not-a-number has no place in an order.
    return std::isnan(sum) ? 0.0 : sum;
}

bool hasMoreTraffic(const Traffic &one, const Traffic &other)
{
    return one.current != other.current ? one.current > other.current : one.total > other.total;
}

std::vector<Traffic> sortedByTraffic(const QVariantMap &processes)
{
    std::vector<Traffic> sorted;
    for (const QVariant &value : processes) {
        if (!isDictionary(value))
            continue;
        const QVariantMap process = value.toMap();
        sorted.push_back({process, sumOf(process, "bytes_in_delta", "bytes_out_delta"),
                          sumOf(process, "bytes_in", "bytes_out")});
    }
    std::stable_sort(sorted.begin(), sorted.end(), hasMoreTraffic);
    return sorted;
}

} // namespace

MenuItem makeNetworkMenuForDict(const QVariantMap &process)
{
    const QString name = textOf(process, "name");
    auto submenu = std::make_shared<Menu>(name);
    const QVariantList connections = process.value(QStringLiteral("subprocess")).toList();
    for (const QVariant &connection : connections)
        submenu->addDummyItemWithTitle(connectionText(connection.toMap()), ItemTarget::None);
    MenuItem item =
        submenuItem(plainFormat(u"\u2193%@(+%@)/\u2191%@(+%@):%@", sizeOf(process, "bytes_in"),
                                sizeOf(process, "bytes_in_delta"), sizeOf(process, "bytes_out"),
                                sizeOf(process, "bytes_out_delta"), name),
                    std::move(submenu));
    item.action = QStringLiteral("dummy");
    return item;
}

void addNetworkProcesses(Menu &menu, const QVariantMap &processes, qint64 networkMax)
{
    const std::vector<Traffic> sorted = sortedByTraffic(processes);
    const QString othersTitle = localizedString(QStringLiteral("Other Network Activities"));
    auto others = std::make_shared<Menu>(othersTitle);
    qint64 shown = 0;
    for (const Traffic &traffic : sorted) {
        Menu &holder = shown < networkMax ? menu : *others;
        holder.addItem(makeNetworkMenuForDict(traffic.process));
        ++shown;
    }
    if (!others->isEmpty())
        menu.addDummyItemWithTitle(othersTitle, ItemTarget::None).submenu = std::move(others);
    menu.addItem(MenuItem::separatorItem());
}

std::shared_ptr<Menu> menuForStaticsForNetwork(const QVariant &record, const QString &title)
{
    if (!isDictionary(record))
        return nullptr;
    const QVariantMap values = record.toMap();
    auto menu = std::make_shared<Menu>(graphkeys::traffic(title));
    for (const char *name : kStatisticsKeys) {
        const QString key = QString::fromLatin1(name);
        menu->addItem(actionItem(plainFormat(u"%@: %@", localizedString(key), sizeOf(values, name)),
                                 QStringLiteral("showGraphView")));
    }
    return menu;
}

} // namespace pulsebar
