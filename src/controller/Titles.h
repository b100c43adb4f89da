#pragma once

#include <QString>
#include <QVariantMap>
#include <QVector>

#include <functional>

namespace pulsebar {

class StatusItem;
class TopMonitor;

/// Decides what the status item shows: the chosen values side by side, one of them in turn, or an
/// icon; and how wide the item is.
///
/// A choice is seen at the next sample. Until then the item shows "Usage", or the program's icon.
class Titles
{
public:
    static constexpr float kIconWidth = 30.0F;

    /// Both must outlive the titles.
    /// @param programImage the image that stands for the program in icon mode
    Titles(const TopMonitor &monitor, StatusItem &statusItem, QString programImage);

    /// The chosen types in the order of their display; the first decides the mode.
    const QVector<int> &titleTypesToDisplay() const { return m_titleTypesToDisplay; }
    void setTitleTypesToDisplay(const QVector<int> &types);
    /// Entry n-1 says whether type n takes part in the rotation.
    const QVector<bool> &toggleTitleOptionArray() const { return m_toggleTitleOptionArray; }
    void setToggleTitleOptionArray(const QVector<bool> &members);
    /// The title type shown last; 0 before the first sample.
    int titleState() const { return m_titleState; }
    float itemWidth() const { return m_itemWidth; }
    /// Also makes the status item that long.
    void setItemWidth(float width);

    /// Shows the newest sample.
    void update();
    /// One step of the rotation. With no member switched on the title stays as it is.
    void toggleTitle();
    /// The choice of a type in the menu.
    /// @param alongside adds the type to the others, or takes it away again (the Command key)
    void changeTitleToDisplayType(int type, bool alongside);
    /// Chooses the whole list at once.
    void chooseTitleTypes(const QVector<int> &types);
    /// Takes a type into the rotation or out of it. @param index the type less one
    void changeToggleTitleOption(int index);
    /// Enters icon mode, or leaves it and recomputes the width.
    void changeStatusItemToIcon(bool icon);

    /// Told after each change of the item's width.
    void setWidthListener(std::function<void()> listener) { m_widthListener = std::move(listener); }

private:
    struct Shown
    {
        QString title;
        QString guide;
        QString image;
    };

    Shown shownForTypes();
    void appendType(int type, Shown &shown);
    Shown shownForRotation();
    QString rotationGuide() const;
    void show(const Shown &shown);
    bool advanceTitleState();
    bool isMember(int type) const;
    QString iconOfBusiestProcess() const;
    float widthForTypes() const;

    const TopMonitor &m_monitor;
    StatusItem &m_statusItem;
    QString m_programImage;
    QVector<int> m_titleTypesToDisplay;
    QVector<bool> m_toggleTitleOptionArray;
    int m_titleState = 0;
    float m_itemWidth = 0.0F;
    std::function<void()> m_widthListener;
};

/// The length that fits a title, by the rule of the fitted status item.
/// @param characters the title's length in characters
/// @param measuredWidth its width in points
/// @param shrink whether the item may become shorter than it is
double adjustWidthWithShrink(double currentLength, qsizetype characters, double measuredWidth,
                             bool hasImage, bool shrink);

} // namespace pulsebar
