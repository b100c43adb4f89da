#pragma once

#include "platform/TrayDock.h"
#include "statusitem/ItemContent.h"
#include "statusitem/ItemDrawing.h"

#include <QObject>
#include <QRect>

#include <optional>

namespace pulsebar {

/// The item as a window in an XEmbed tray: the whole title where the tray lets the window be wide,
/// else a short text in the square that it gives.
class TrayFace : public QObject, private TrayDock::Listener
{
    Q_OBJECT

public:
    /// `dock` may be absent: then there never is a tray. It must outlive the face.
    explicit TrayFace(TrayDock *dock, QObject *parent = nullptr);
    ~TrayFace() override;

    bool trayAvailable() const { return m_dock && m_dock->available(); }

    /// Docks the window and shows the content, or takes the window out of the tray.
    void show(const ItemContent &content, bool dark);
    void hide();

    bool docked() const { return m_dock && m_dock->docked(); }
    /// Docked, and with room for the title.
    bool showsWholeTitle() const;
    /// In device-independent pixels; empty while not docked.
    QRect geometry() const;

Q_SIGNALS:
    void trayChanged();
    /// `docked` or `showsWholeTitle` may have changed.
    void dockedChanged();
    void clicked();

private:
    struct Drawn
    {
        ItemContent content;
        QSize size;
        bool dark = false;
        bool operator==(const Drawn &other) const = default;
    };

    void trayAvailableChanged() override;
    void traySizeChanged() override;
    void trayClicked(Qt::MouseButton button) override;
    void askForRoom();
    void draw();
    Ink ink() const;

    TrayDock *m_dock;
    std::optional<ItemContent> m_content;
    bool m_dark = true;
    QSize m_wanted;
    std::optional<Drawn> m_drawn;
};

} // namespace pulsebar
