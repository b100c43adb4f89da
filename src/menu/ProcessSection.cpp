#include "menu/ProcessSection.h"

#include "menu/MenuRows.h"
#include "menu/StatisticsRows.h"
#include "platform/Processes.h"
#include "util/GraphKeys.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

/// When a line is drawn below the row of a detail.
enum class Line { Never, Always, AboveMessages };

struct Detail
{
    const char *key;
    Line below = Line::Never;
};

constexpr std::array kDetails{
    Detail{"PID"},
    Detail{"User", Line::Always},
    Detail{"CPUTime"},
    Detail{"Thread", Line::AboveMessages},
    Detail{"RealMemorySize"},
    Detail{"TotalMemorySize"},
    Detail{"PageIns", Line::Always},
    Detail{"MachMessageSent"},
    Detail{"MachMessageRecieve"},
    Detail{"UNIXSystemCall"},
    Detail{"MachSystemCall", Line::Always},
    Detail{"EnergyUsage"},
};

struct Names
{
    QString pid;
    QString name;
    QString key;
};

Names namesOf(const QVariantMap &process)
{
    Names names;
    names.pid = process.value(QStringLiteral("PID")).toString();
    names.name = process.value(QStringLiteral("ProcessName")).toString();
    names.key = names.pid.isEmpty() ? names.name : names.pid + QStringLiteral("//") + names.name;
    return names;
}

QString detailText(const QString &key, const QVariant &value)
{
    const QString label = localizedString(key);
    if (key == QLatin1String("EnergyUsage"))
        return localizedFormat(QStringLiteral("%@: %.1f%%"), label, floatValue(value));
    return localizedFormat(QStringLiteral("%@: %@"), label, value.toString());
}

bool hasLineBelow(const Detail &detail, const QVariantMap &process)
{
    return detail.below == Line::Always || (detail.below == Line::AboveMessages &&
                                            process.contains(QStringLiteral("MachMessageSent")));
}

void addDetails(Menu &menu, const QVariantMap &process)
{
    for (const Detail &detail : kDetails) {
        const QString key = QString::fromLatin1(detail.key);
        const QVariant value = process.value(key);
        if (!value.isValid())
            continue;
        menu.addDummyItemWithTitle(detailText(key, value), ItemTarget::Controller);
        if (hasLineBelow(detail, process))
            menu.addItem(MenuItem::separatorItem());
    }
}

void addUsage(Menu &menu, const QString &key, const ProcessMenuState &state)
{
    if (!state.monitorProcessUsage)
        return;
    menu.addItem(MenuItem::separatorItem());
    if (!state.usageInfoDictForKey)
        return;
    const std::optional<QVariantMap> usage = state.usageInfoDictForKey(key);
    if (usage)
        addOneMinuteStatics(usage->value(QStringLiteral("usageInfo")), QStringLiteral("%"), &menu,
                            100.0F);
}

/// Whether the user's own rights are not enough to end the process.
bool belongsToSystem(const QString &user)
{
    return user == QLatin1String("root") || user == QLatin1String("daemon") ||
           user.startsWith(u'_');
}

MenuItem forceItem(const QString &user)
{
    if (belongsToSystem(user))
        return actionItem(localizedString(QStringLiteral("Force Quit as root")),
                          QStringLiteral("killProcessAsRoot"));
    return actionItem(localizedString(QStringLiteral("Force Quit")), QStringLiteral("killProcess"));
}

void addActions(Menu &menu, const QVariantMap &process, const std::shared_ptr<HeldProcess> &held,
                bool hasPath)
{
    const auto add = [&menu, &held](MenuItem item) {
        item.process = held;
        menu.addItem(std::move(item));
    };
    if (hasPath) {
        menu.addItem(MenuItem::separatorItem());
        add(actionItem(localizedString(QStringLiteral("Show in Finder")),
                       QStringLiteral("showProcessInFinder")));
    }
    menu.addItem(MenuItem::separatorItem());
    add(actionItem(localizedString(QStringLiteral("Quit")), QStringLiteral("quitProcess")));
    add(forceItem(process.value(QStringLiteral("User")).toString()));
}

/// The number may carry a suffix behind a "-".
std::shared_ptr<HeldProcess> heldProcess(const QString &pid, const ProcessMenuState &state)
{
    return state.hold ? state.hold(pid.section(u'-', 0, 0)) : nullptr;
}

} // namespace

MenuItem processMenuItemForDictionary(const QVariantMap &process, const ProcessMenuState &state)
{
    const Names names = namesOf(process);
    const double percent =
        static_cast<double>(floatValueForKey(process, QStringLiteral("CPUUsage"))) * 100.0;
    MenuItem item = actionItem(localizedFormat(QStringLiteral("%.1f%% : %@"), percent, names.name),
                               QStringLiteral("chooseProcess"));
    if (state.showIcon && state.iconForPID)
        item.image = state.iconForPID(names.pid);
    item.process = heldProcess(names.pid, state);

    auto submenu = std::make_shared<Menu>(graphkeys::process(names.key));
    addDetails(*submenu, process);
    addUsage(*submenu, names.key, state);
    const bool hasPath = state.pathForPID && !state.pathForPID(names.pid).isEmpty();
    addActions(*submenu, process, item.process, hasPath);
    item.submenu = std::move(submenu);
    return item;
}

} // namespace pulsebar
