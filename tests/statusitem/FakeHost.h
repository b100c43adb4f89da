#pragma once

#include "menu/Menu.h"
#include "platform/ProcessNames.h"

#include <QString>

namespace pulsebar::testing {

/// Every process, and so whoever is the panel, goes by one name.
class NamedHost : public ProcessNames
{
public:
    QString programName(qint64) const override { return name; }
    QString name = QStringLiteral("lxqt-panel");
};

/// A menu of a single row.
class OneRow : public MenuDelegate
{
public:
    void menuNeedsUpdate(Menu &menu) override
    {
        menu.removeAllItems();
        menu.addItemWithTitle(QStringLiteral("row"), ItemTarget::None, QStringLiteral("row"));
    }
    void performAction(const Menu &, const MenuItem &, Qt::KeyboardModifiers) override {}
};

} // namespace pulsebar::testing
