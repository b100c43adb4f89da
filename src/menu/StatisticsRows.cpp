#include "menu/StatisticsRows.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"
#include "util/Values.h"

namespace pulsebar {

void addOneMinuteStatics(const QVariant &record, const QString &unit, Menu *menu, float scale)
{
    if (menu == nullptr || !isDictionary(record))
        return;
    const QString action = QStringLiteral("showGraphView");
    const QVariantMap values = record.toMap();
    for (const char *name : kStatisticsKeys) {
        const QString key = QString::fromLatin1(name);
        menu->addItem(actionItem(localizedFormat(QStringLiteral("%@: %.1f%@"), localizedString(key),
                                                 floatValueForKey(values, key) * scale, unit),
                                 action));
    }
    menu->addItem(actionItem(localizedString(QStringLiteral("Show Graph")), action));
}

} // namespace pulsebar
