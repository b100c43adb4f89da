#pragma once

#include "e2e/panel/Screen.h"

#include <QRegularExpression>

namespace pulsebar::e2e {

/// A menu on the screen, whoever draws it, with the submenus that were opened from it.
class ShownMenu
{
public:
    /// @param closed the screen as it was before the menu was opened
    /// @param above what lies above this line (a panel with a live title) is not looked at
    ShownMenu(const Screen &screen, const QImage &closed, int above);

    /// Waits for a row in what was opened last, and remembers how large that is.
    /// Letters of either case will do.
    /// @return what matched of the row; throws when there is none in time
    ReadLine row(const QString &pattern);
    /// Clicks a row of what was opened last, to open its submenu.
    void openSubmenu(const QString &pattern);
    /// Clicks a row of what was opened last, to choose it.
    void choose(const QString &pattern, const QString &held = {});

    /// All rows of what was opened last, as they were read.
    QStringList texts();
    /// The menu with all its open submenus, as it looks now, and as it looks when it is drawn.
    QImage picture() const;
    QImage pictureWhenStill() const;
    /// Waits until nothing of the menu can be seen. @return whether that came
    bool waitUntilClosed() const;

private:
    QVector<ReadLine> readNewest();
    QImage masked(QImage image) const;
    QImage withoutTop(QImage image) const;

    const Screen &m_screen;
    QImage m_before; ///< as the screen was before the newest menu was opened
    QImage m_closed; ///< as it was before the first
    int m_above;
    QVector<QRect> m_others; ///< where the menus that were opened earlier are
    QRect m_newest;
};

} // namespace pulsebar::e2e
