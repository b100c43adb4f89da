#include "controller/Titles.h"

#include "controller/TitleTexts.h"
#include "engine/TopMonitor.h"
#include "statusitem/StatusItem.h"
#include "util/Localisation.h"

#include <cmath>
#include <utility>

namespace pulsebar {

namespace {

constexpr float kTextWidth = 60.0F;
constexpr float kTextAndIconWidth = 80.0F;
/// A process without an icon of its own is drawn as any program is.
const QString &anyProgramImage()
{
    static const QString name = QStringLiteral("application-x-executable");
    return name;
}

} // namespace

Titles::Titles(const TopMonitor &monitor, StatusItem &statusItem, QString programImage)
    : m_monitor(monitor)
    , m_statusItem(statusItem)
    , m_programImage(std::move(programImage))
{
}

void Titles::setTitleTypesToDisplay(const QVector<int> &types)
{
    m_titleTypesToDisplay = types;
}

void Titles::setToggleTitleOptionArray(const QVector<bool> &members)
{
    m_toggleTitleOptionArray = members;
}

void Titles::setItemWidth(float width)
{
    const bool changed = m_itemWidth != width;
    m_itemWidth = width;
    m_statusItem.setLength(static_cast<double>(width));
    if (changed && m_widthListener)
        m_widthListener();
}

void Titles::update()
{
    if (m_titleTypesToDisplay.value(0) == titles::kRotate)
        toggleTitle();
    else
        show(shownForTypes());
}

Titles::Shown Titles::shownForTypes()
{
    Shown shown;
    for (const int type : std::as_const(m_titleTypesToDisplay)) {
        // The separator comes before the type is looked at, so an icon leaves one behind too.
        if (!shown.title.isEmpty())
            shown.title += QLatin1String(" | ");
        if (!shown.guide.isEmpty())
            shown.guide += QLatin1String(" | ");
        appendType(type, shown);
    }
    return shown;
}

void Titles::appendType(int type, Shown &shown)
{
    const bool hasProcess = !titles::busiestProcess(m_monitor.topDict()).isEmpty();
    const bool isIconOnly = type == titles::kIconOnly;
    // Without a process there is no icon to show; its share then stands for it.
    const int textType = isIconOnly && !hasProcess ? int(titles::kBusiestProcess) : type;
    const bool hasText = !titles::widestTitleOfType(textType, false).isEmpty();
    if (hasText) {
        shown.title += titles::titleOfType(textType, m_monitor.topDict(), m_monitor.fahrenheit());
        shown.guide += titles::widestTitleOfType(textType, m_monitor.fahrenheit());
        m_titleState = textType;
    }
    if (type == titles::kBusiestProcess || isIconOnly)
        shown.image = hasProcess ? iconOfBusiestProcess() : QString();
}

QString Titles::iconOfBusiestProcess() const
{
    const QString icon = m_monitor.iconForPID(titles::busiestProcess(m_monitor.topDict()));
    return icon.isEmpty() ? anyProgramImage() : icon;
}

void Titles::toggleTitle()
{
    if (advanceTitleState())
        show(shownForRotation());
    setItemWidth(static_cast<float>(m_statusItem.length()));
}

/// Moves on to the next member of the rotation.
/// @return false, and nothing has changed, when there is none
bool Titles::advanceTitleState()
{
    const bool hasBattery = titles::batteryIsEnabled(m_monitor.topDict());
    int state = m_titleState;
    for (int tried = titles::kFirstType; tried <= titles::kLastType; ++tried) {
        state = state >= titles::kLastType ? int(titles::kFirstType) : state + 1;
        if (state == titles::kBattery && !hasBattery)
            ++state;
        if (isMember(state)) {
            m_titleState = state;
            return true;
        }
    }
    return false;
}

bool Titles::isMember(int type) const
{
    return m_toggleTitleOptionArray.value(type - 1, false);
}

Titles::Shown Titles::shownForRotation()
{
    Shown shown;
    appendType(m_titleState, shown);
    shown.guide = rotationGuide();
    return shown;
}

/// The widest of all that the rotation will show, so that the item keeps its width.
QString Titles::rotationGuide() const
{
    QString widest;
    for (int type = titles::kFirstType; type <= titles::kLastType; ++type) {
        const QString text =
            isMember(type) ? titles::widestTitleOfType(type, m_monitor.fahrenheit()) : QString();
        if (text.size() > widest.size())
            widest = text;
    }
    return widest;
}

void Titles::show(const Shown &shown)
{
    m_statusItem.setTitleGuide(shown.guide);
    m_statusItem.setImage(shown.image);
    m_statusItem.setTitle(shown.title);
}

void Titles::changeTitleToDisplayType(int type, bool alongside)
{
    const bool standsAlone = type == titles::kRotate || type == titles::kIconOnly;
    if (standsAlone || !alongside) {
        m_titleTypesToDisplay = {type};
    } else if (m_titleTypesToDisplay.contains(type)) {
        if (m_titleTypesToDisplay.size() >= 2)
            m_titleTypesToDisplay.removeOne(type);
    } else {
        m_titleTypesToDisplay.removeAll(int(titles::kRotate));
        m_titleTypesToDisplay.removeAll(int(titles::kIconOnly));
        if (type == titles::kBusiestProcess)
            m_titleTypesToDisplay.prepend(type);
        else
            m_titleTypesToDisplay.append(type);
    }
    changeStatusItemToIcon(type == titles::kIconOnly);
}

void Titles::chooseTitleTypes(const QVector<int> &types)
{
    m_titleTypesToDisplay = types;
    changeStatusItemToIcon(types.value(0) == titles::kIconOnly);
}

void Titles::changeToggleTitleOption(int index)
{
    if (index < 0 || index >= m_toggleTitleOptionArray.size())
        return;
    m_toggleTitleOptionArray[index] = !m_toggleTitleOptionArray[index];
    changeStatusItemToIcon(false);
}

void Titles::changeStatusItemToIcon(bool icon)
{
    if (icon) {
        if (m_itemWidth != kIconWidth)
            setItemWidth(kIconWidth);
        show({QString(), QString(), m_programImage});
        return;
    }
    setItemWidth(widthForTypes());
    const QString title = QStringLiteral("Usage");
    show({title, title, QString()});
}

float Titles::widthForTypes() const
{
    // The rotation's entry for the busiest process widens every type, not only the rotation.
    const bool rotatesIcon = isMember(titles::kBusiestProcess);
    float sum = 0.0F;
    for (const int type : m_titleTypesToDisplay)
        sum += type == titles::kBusiestProcess || rotatesIcon ? kTextAndIconWidth : kTextWidth;
    return m_titleTypesToDisplay.size() >= 2 ? std::trunc(sum / 2.0F) : sum;
}

double adjustWidthWithShrink(double currentLength, qsizetype characters, double measuredWidth,
                             bool hasImage, bool shrink)
{
    static constexpr double kShortestLength = 30.0;
    static constexpr double kImageWidth = 32.0;
    static constexpr double kMargin = 1.1;
    if (characters < 2)
        return kShortestLength;
    const double current = std::trunc(currentLength);
    if (!shrink && measuredWidth <= current)
        return current;
    return std::trunc((std::trunc(measuredWidth) + (hasImage ? kImageWidth : 0.0)) * kMargin);
}

} // namespace pulsebar
