#include "menu/MemorySection.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"
#include "util/Text.h"
#include "util/Values.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::array kShown{"free", "wired", "active", "inactive"};

double megabytesOf(const QVariantMap &memory, const QString &key)
{
    const QString text = memory.value(key).toString();
    return static_cast<double>(floatValue(removeString(text, QStringLiteral("M"))));
}

} // namespace

std::optional<MenuItem> makeMemoryStatsMenu(const QVariantMap &topDict)
{
    static constexpr qsizetype kFewest = 3;
    static constexpr qsizetype kMost = 5;
    const QVariantMap memory = topDict.value(QStringLiteral("MemoryStats")).toMap();
    if (memory.size() < kFewest || memory.size() > kMost)
        return std::nullopt;
    const double whole =
        megabytesOf(memory, QStringLiteral("free")) + megabytesOf(memory, QStringLiteral("used"));
    auto submenu = std::make_shared<Menu>(QStringLiteral("Memory"));
    for (const char *name : kShown) {
        const QString key = QString::fromLatin1(name);
        const QVariant value = memory.value(key);
        if (value.isValid())
            submenu->addDummyItemWithTitle(
                localizedFormat(key, value.toString(), megabytesOf(memory, key) * 100.0 / whole),
                ItemTarget::Controller);
    }
    MenuItem item =
        actionItem(localizedString(QStringLiteral("System Memory")), QStringLiteral("dummy"));
    item.submenu = std::move(submenu);
    return item;
}

} // namespace pulsebar
