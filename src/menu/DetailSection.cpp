#include "menu/DetailSection.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"

#include <utility>

namespace pulsebar {

MenuItem makeDetailMenu(const QVariantMap &topDict)
{
    const QString title = QStringLiteral("Detail");
    // The view takes every click, so the action is never carried out.
    MenuItem row = actionItem(title, QStringLiteral("changeRefreshTime"));
    row.view = QStringLiteral("detailText");
    row.representedObject = topDict.value(QStringLiteral("topResult")).toString();
    row.substitute =
        std::make_shared<const MenuItem>(actionItem(title, QStringLiteral("showDetailWindow")));
    auto submenu = std::make_shared<Menu>(title);
    submenu->addItem(std::move(row));
    return submenuItem(localizedString(QStringLiteral("Detailed Information")), std::move(submenu));
}

} // namespace pulsebar
