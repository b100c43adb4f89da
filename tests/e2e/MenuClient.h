#pragma once

#include "e2e/Desktop.h"

#include <QDBusMessage>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

namespace pulsebar::e2e {

/// A row of the menu as a panel is told of it.
struct MenuRow
{
    int id = 0;
    QVariantMap properties;
    QVector<MenuRow> children;

    /// The title as a user reads it: without the marks of mnemonics.
    QString label() const;
    bool isSeparator() const;
    bool isEnabled() const;
    /// The check mark or radio mark is drawn.
    bool isOn() const;
    /// The titles of the rows below, "-" for a separator.
    QStringList labels() const;
    /// The titles of the rows below that carry a mark.
    QStringList labelsThatAreOn() const;
    /// The first row below of this title; nullptr when there is none.
    const MenuRow *child(const QString &label) const;
    /// The row at the end of the titles; nullptr when there is none.
    const MenuRow *at(const QStringList &path) const;
};

/// Opens the program's menu over com.canonical.dbusmenu and chooses from it, in the order in which
/// panels do. Needs a `Panel` on the same bus: without one the program exports no menu.
class MenuClient
{
public:
    /// @param programPid the process whose menu it is
    MenuClient(Desktop &desktop, qint64 programPid);

    /// Opens the menu and reads the whole of it. Waits until the program has put rows into it;
    /// throws when it does not.
    const MenuRow &open();
    void close();
    /// What was read at the last opening.
    const MenuRow &root() const { return m_root; }

    /// Clicks a row of what was read last. @return the error's name, empty when it was taken
    QString click(int id);
    /// Opens the menu, clicks the row at the end of the titles, and closes the menu, as a panel
    /// does. @return whether there is such a row that is enabled
    bool choose(const QStringList &path);
    /// Opens the menu, looks for a row and closes the menu again. @return the row with everything
    /// below it, and one without an identifier when there is none
    MenuRow look(const QStringList &path);

private:
    QDBusMessage call(const QString &method, const QVariantList &arguments);
    QString event(int id, const QString &name);
    MenuRow layout();

    Desktop &m_desktop;
    QString m_service;
    MenuRow m_root;
};

} // namespace pulsebar::e2e
