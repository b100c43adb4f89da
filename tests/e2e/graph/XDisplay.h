#pragma once

#include "e2e/Desktop.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct xcb_connection_t;
struct xcb_screen_t;

namespace pulsebar::e2e {

/// A window as the X server has it.
struct XWindow
{
    quint32 id = 0;
    QString title;
    QRect frame; ///< on the screen, counted downward
    bool shown = false;
};

/// The display of a desktop: what the X server knows of windows, pixels of the screen, and the
/// pointer and keyboard of somebody who sits before it.
class XDisplay
{
public:
    explicit XDisplay(Desktop &desktop);

    /// The window with a title; absent when there is none, or several.
    std::optional<XWindow> window(const QString &title) const;
    /// The frame of a shown window; the null rectangle when it is not shown.
    QRect frame(const QString &title) const;
    /// The titles of all shown windows that have one, sorted.
    QStringList shownTitles() const;
    /// The frames of the shown windows that are of a type, the first one that they name.
    QList<QRect> shownOfType(const char *type) const;
    QImage look(const QRect &part) const;
    /// Gives the screen another size, at most the one that it started with.
    void resizeScreen(QSize size) const;

    void point(QPoint at) const;
    void press(int button = 1) const;
    void release(int button = 1) const;
    void click(QPoint at) const;
    /// Presses, goes there in some steps, and releases.
    void drag(QPoint from, QPoint to) const;
    void key(quint32 keysym) const;

    /// The names of the atoms in a window's property.
    QStringList atoms(quint32 window, const char *property) const;
    /// The first number in a window's property; absent when there is none.
    std::optional<quint32> number(quint32 window, const char *property) const;
    quint32 root() const;
    /// The window itself, or what a window manager has put around it.
    quint32 topLevel(quint32 window) const;
    /// Asks the window manager to close a window, as its own button does.
    void requestClose(quint32 window) const;
    /// Opens a window that window managers manage, and shows it.
    quint32 openWindow(const QRect &frame) const;

private:
    void collect(quint32 window, QList<XWindow> &into) const;
    QByteArray property(quint32 window, quint32 name) const;
    quint32 atom(const char *name) const;
    QString atomName(quint32 atom) const;
    void fake(int type, int detail, QPoint at = {}) const;

    Desktop &m_desktop;
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t *)> m_connection;
    const xcb_screen_t *m_screen;
};

} // namespace pulsebar::e2e
