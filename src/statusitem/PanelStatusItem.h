#pragma once

#include "statusitem/MenuViewFactory.h"
#include "statusitem/StatusItem.h"

#include <QPoint>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace pulsebar {

class ProcessNames;
class TrayDock;
class WindowHints;

/// Where the strip was left, in screen coordinates that count upward from the bottom of the main
/// screen; the point is the strip's lower left corner.
struct StripPlace
{
    /// Nothing when the strip was never moved.
    std::function<std::optional<QPoint>()> load;
    std::function<void(QPoint)> store;
};

/// What the item needs from its surroundings. Everything may be absent: without a dock there is no
/// XEmbed tray, without hints the strip stays on its workspace, without names every host is
/// unknown. The pointers must outlive the item.
struct PanelSurroundings
{
    TrayDock *trayDock = nullptr;
    WindowHints *windowHints = nullptr;
    ProcessNames *processNames = nullptr;
    StripPlace stripPlace;
    /// May be empty: then a row's substitute stands for its view in the program's own menu as well.
    MenuViewFactory menuView;
    /// How long nothing may serve before the strip stands in: at login the panel starts beside the
    /// program, and a panel that is started anew is back at once.
    std::chrono::milliseconds stripDelay{2000};
};

/// The status item on a freedesktop desktop: a StatusNotifierItem where a watcher runs, else a
/// docked window in the XEmbed tray, else the strip. Hosts are joined and left as they come and go.
///
/// Changes are collected and shown at the end of the run loop's turn. Until a delegate is set the
/// item is shown with a menu without rows.
class PanelStatusItem : public StatusItem
{
    Q_OBJECT

public:
    explicit PanelStatusItem(PanelSurroundings surroundings, QObject *parent = nullptr);
    ~PanelStatusItem() override;

    /// The image that stands for the program itself; drawn by the item, sharp at every size.
    static QString programImage();

    QString title() const override;
    void setTitle(const QString &title) override;
    void setTitleGuide(const QString &guide) override;
    void setImage(const QString &image) override;
    QString image() const override;
    double length() const override;
    void setLength(double length) override;
    void setTitleOnPanel(TitleOnPanel how) override;
    void setNeedsAttention(bool needed) override;
    void setMenuDelegate(MenuDelegate *delegate) override;
    bool hasMenu() const override;
    void openMenu() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace pulsebar
