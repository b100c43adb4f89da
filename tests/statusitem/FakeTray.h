#pragma once

#include "platform/TrayDock.h"
#include "statusitem/StripFace.h"

#include <QApplication>

#include <vector>

namespace pulsebar::testing {

/// A tray that gives what the test says.
class FakeTray : public TrayDock
{
public:
    void setListener(Listener *listener) override { m_listener = listener; }
    bool available() const override { return present; }
    void dock(QSize size) override { wanted = size; }
    void undock() override
    {
        wanted = {};
        place = {};
    }
    bool docked() const override { return !place.isEmpty(); }
    QRect geometry() const override { return place; }
    std::optional<std::uint32_t> foreground() const override { return std::nullopt; }
    std::optional<std::uint32_t> background() const override { return colour; }
    void draw(QSize size, std::span<const std::uint32_t> pixels) override
    {
        picture.assign(pixels.begin(), pixels.end());
        ++drawings;
        drawn = size;
    }

    void setPresent(bool now)
    {
        present = now;
        place = {};
        m_listener->trayAvailableChanged();
    }
    void give(QSize size)
    {
        place = QRect(QPoint(300, 0), size);
        m_listener->traySizeChanged();
    }
    void click() { m_listener->trayClicked(Qt::LeftButton); }

    bool present = false;
    QSize wanted;
    QRect place;
    QSize drawn;
    std::vector<std::uint32_t> picture;
    std::optional<std::uint32_t> colour;
    int drawings = 0;

private:
    Listener *m_listener = nullptr;
};

/// The strip on the screen, if there is one.
inline StripFace *visibleStrip()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *strip = qobject_cast<StripFace *>(widget); strip && strip->isVisible()) {
            return strip;
        }
    }
    return nullptr;
}

} // namespace pulsebar::testing
