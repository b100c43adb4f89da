#pragma once

#include <QWidget>

#include <functional>

class QSlider;

namespace pulsebar {

/// A label and a slider for the width of the item in the panel, in a row of a menu. Arrow keys to
/// the sides move the slider; the ones up and down are left to the menu.
class WidthSliderView : public QWidget
{
    Q_OBJECT

public:
    /// @param width the slider's place at first; one outside its range puts it at that end
    /// @param moved told every width that the user moves the slider to, while it moves
    WidthSliderView(int width, std::function<void(int width)> moved, QWidget *parent = nullptr);

    QSlider *slider() const { return m_slider; }

    static constexpr int kNarrowest = 30;
    static constexpr int kWidest = 200;

private:
    QSlider *m_slider;
};

} // namespace pulsebar
