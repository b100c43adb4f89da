#pragma once

#include "menu/Menu.h"

#include <QIcon>
#include <QObject>
#include <QString>

namespace pulsebar {

/// How the title is shown in the panel. The words are the values of the setting "titleOnPanel".
enum class TitleOnPanel { Automatic, Text, Icon, Strip };

/// The program's one item in the desktop's panel: a title, an image, a length and a menu.
/// It knows nothing of samples; how it reaches the screen (a StatusNotifierItem, a docked window
/// in the XEmbed tray, or a strip of its own) is chosen by the host that serves it at the moment.
class StatusItem : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual QString title() const = 0;
    /// Nothing is drawn or sent when neither title, guide nor image differ from what is shown.
    virtual void setTitle(const QString &title) = 0;
    /// The title with every value at its widest; what the item's width is made for.
    virtual void setTitleGuide(const QString &guide) = 0;
    /// `image` is a themed icon's name or the path of an image file. Empty removes it.
    virtual void setImage(const QString &image) = 0;
    virtual QString image() const = 0;
    /// Width in device-independent pixels; a host that decides widths by itself ignores it.
    virtual double length() const = 0;
    virtual void setLength(double length) = 0;
    virtual void setTitleOnPanel(TitleOnPanel how) = 0;
    /// Draws the user's eye to the item, until it is taken back.
    virtual void setNeedsAttention(bool needed) = 0;
    /// The delegate must outlive the item.
    virtual void setMenuDelegate(MenuDelegate *delegate) = 0;
    virtual bool hasMenu() const = 0;
    /// Pops the menu up at the item, or at the pointer where the item's place is unknown.
    virtual void openMenu() = 0;

Q_SIGNALS:
    void titleChanged(const QString &title);
    void lengthChanged(double length);
    /// The user has opened the menu, whoever draws it.
    void menuOpened();
};

} // namespace pulsebar
